// Between libmicrohttpd's requests and responses and the server's values. Of the server's thread.
#pragma once

#include "home/server/Microhttpd.h"
#include "home/server/RequestPolicy.h"
#include "home/server/WebMessages.h"

namespace quillpad::home {

// The head's texts are the connection's and last as long as its request.
RequestHead headOf(MHD_Connection* connection, const char* path, const char* method);

WebRequest requestOf(MHD_Connection* connection, const char* path, const char* method);

int descriptorOf(MHD_Connection* connection);

// Those of the answer, and those that keep every answer to this server's own page.
void addHeaders(MHD_Response* response, const WebAnswer& answer);

// Has the answer sent to the connection's request.
MHD_Result queueAnswer(MHD_Connection* connection, const WebAnswer& answer);

}  // namespace quillpad::home
