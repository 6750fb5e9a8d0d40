// libcurl, and OpenSSL beneath it, loaded at the first transfer. Private to the session.
#pragma once

#include <curl/curl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>

#include "platform/foundation/LateLibrary.h"

namespace quillpad {

inline constexpr const char* libcurl = "libcurl.so.4";
QUILLPAD_LATE_FUNCTION(libcurl, curl_easy_cleanup);
QUILLPAD_LATE_FUNCTION(libcurl, curl_easy_getinfo);
QUILLPAD_LATE_FUNCTION(libcurl, curl_easy_init);
QUILLPAD_LATE_FUNCTION(libcurl, curl_easy_setopt);
QUILLPAD_LATE_FUNCTION(libcurl, curl_free);
QUILLPAD_LATE_FUNCTION(libcurl, curl_global_init);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_add_handle);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_info_read);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_init);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_remove_handle);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_setopt);
QUILLPAD_LATE_FUNCTION(libcurl, curl_multi_socket_action);
QUILLPAD_LATE_FUNCTION(libcurl, curl_share_init);
QUILLPAD_LATE_FUNCTION(libcurl, curl_share_setopt);
QUILLPAD_LATE_FUNCTION(libcurl, curl_slist_append);
QUILLPAD_LATE_FUNCTION(libcurl, curl_slist_free_all);
QUILLPAD_LATE_FUNCTION(libcurl, curl_strequal);
QUILLPAD_LATE_FUNCTION(libcurl, curl_url);
QUILLPAD_LATE_FUNCTION(libcurl, curl_url_cleanup);
QUILLPAD_LATE_FUNCTION(libcurl, curl_url_get);
QUILLPAD_LATE_FUNCTION(libcurl, curl_url_set);

inline constexpr const char* libcrypto = "libcrypto.so.3";
QUILLPAD_LATE_FUNCTION(libcrypto, ERR_clear_error);

inline constexpr const char* libssl = "libssl.so.3";
QUILLPAD_LATE_FUNCTION(libssl, SSL_get0_alpn_selected);
QUILLPAD_LATE_FUNCTION(libssl, SSL_get_error);
QUILLPAD_LATE_FUNCTION(libssl, SSL_get_shutdown);
QUILLPAD_LATE_FUNCTION(libssl, SSL_peek);

}  // namespace quillpad
