// libmicrohttpd, loaded by the first server: it brings GnuTLS, which no other command needs.
#pragma once

#include <microhttpd.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad::home {

inline constexpr const char* libmicrohttpd = "libmicrohttpd.so.12";
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_add_response_header);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_create_response_from_buffer);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_create_response_from_callback);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_destroy_response);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_get_connection_info);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_get_connection_values);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_get_daemon_info);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_get_response_header);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_get_timeout);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_lookup_connection_value);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_queue_response);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_quiesce_daemon);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_resume_connection);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_run);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_start_daemon);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_stop_daemon);
QUILLPAD_LATE_FUNCTION(libmicrohttpd, MHD_suspend_connection);

}  // namespace quillpad::home
