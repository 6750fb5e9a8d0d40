#include "home/server/HttpMessages.h"

#include <string>
#include <utility>

namespace quillpad::home {
namespace {

std::string_view header(MHD_Connection* connection, const char* name) {
  const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

}  // namespace

RequestHead headOf(MHD_Connection* connection, const char* path, const char* method) {
  return {
      .method = method,
      .path = path,
      .hasQuery =
          MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, nullptr, nullptr) >
          (MHD_lookup_connection_value(connection, MHD_GET_ARGUMENT_KIND, "key") != nullptr ? 1
                                                                                            : 0),
      .host = header(connection, MHD_HTTP_HEADER_HOST),
      .origin = header(connection, "Origin"),
      .fetchSite = header(connection, "Sec-Fetch-Site"),
      .fetchMode = header(connection, "Sec-Fetch-Mode"),
      .fetchDest = header(connection, "Sec-Fetch-Dest"),
      .contentLength = header(connection, MHD_HTTP_HEADER_CONTENT_LENGTH),
      .transferEncoding = header(connection, MHD_HTTP_HEADER_TRANSFER_ENCODING)};
}

WebRequest requestOf(MHD_Connection* connection, const char* path, const char* method) {
  WebRequest request{
      .method = method,
      .path = path,
      .pageToken = std::string(header(connection, "X-Page-Token")),
      .acceptLanguage = std::string(header(connection, MHD_HTTP_HEADER_ACCEPT_LANGUAGE))};
  const auto take = [&](MHD_ValueKind what, decltype(request.parameters)& values) {
    MHD_get_connection_values(
        connection,
        what,
        [](void* into, MHD_ValueKind, const char* name, const char* value) {
          static_cast<decltype(request.parameters)*>(into)->emplace(
              name, value == nullptr ? "" : value);
          return MHD_YES;
        },
        &values);
  };
  take(MHD_GET_ARGUMENT_KIND, request.parameters);
  take(MHD_COOKIE_KIND, request.cookies);
  return request;
}

int descriptorOf(MHD_Connection* connection) {
  return MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
}

void addHeaders(MHD_Response* response, const WebAnswer& answer) {
  MHD_add_response_header(response, "Content-Type", answer.contentType.c_str());
  for (const auto& [name, value] : answer.headers) {
    MHD_add_response_header(response, name.c_str(), value.c_str());
  }
  static constexpr std::pair<const char*, const char*> always[] = {
      {"Cache-Control", "no-store"},
      {"X-Content-Type-Options", "nosniff"},
      {"X-Frame-Options", "DENY"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
  };
  for (const auto& [name, value] : always) {
    MHD_add_response_header(response, name, value);
  }
  if (MHD_get_response_header(response, "Content-Security-Policy") == nullptr) {
    MHD_add_response_header(
        response, "Content-Security-Policy", "default-src 'none'; frame-ancestors 'none'");
  }
}

MHD_Result queueAnswer(MHD_Connection* connection, const WebAnswer& answer) {
  MHD_Response* response = MHD_create_response_from_buffer(
      answer.body.size(),
      const_cast<char*>(answer.body.data()),  // NOLINT: copied
      MHD_RESPMEM_MUST_COPY);
  addHeaders(response, answer);
  const MHD_Result queued =
      MHD_queue_response(connection, static_cast<unsigned>(answer.status), response);
  MHD_destroy_response(response);
  return queued;
}

}  // namespace quillpad::home
