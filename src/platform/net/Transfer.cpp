#include "platform/net/Transfer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <sys/socket.h>
#include <utility>

#include "platform/foundation/Activity.h"
#include "platform/foundation/Locale.h"

namespace quillpad {
namespace {

constexpr int maxRedirects = 20;
constexpr std::size_t maxHeaderBytes = std::size_t{256} << 10;
// What is not taken of an answer could not be passed on either: the home screen takes lines of
// 8 MiB.
constexpr std::size_t maxBodyBytes = std::size_t{8} << 20;

struct FreeURL {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

struct FreeText {
  void operator()(char* text) const { curl_free(text); }
};

// The parts of an address as libcurl reads them; empty where it cannot be read.
struct Parts {
  std::string scheme;
  std::string authority;  // host and port
  std::string path;
};

Parts partsOf(const std::string& address) {
  const std::unique_ptr<CURLU, FreeURL> url(curl_url());
  if (curl_url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_NON_SUPPORT_SCHEME) !=
      CURLUE_OK) {
    return {};
  }
  const auto part = [&](CURLUPart which) -> std::string {
    char* found = nullptr;
    curl_url_get(url.get(), which, &found, CURLU_DEFAULT_PORT);
    const std::unique_ptr<char, FreeText> text(found);
    return text ? text.get() : "";
  };
  return {
      .scheme = part(CURLUPART_SCHEME),
      .authority = part(CURLUPART_HOST) + ":" + part(CURLUPART_PORT),
      .path = part(CURLUPART_PATH)};
}

// Why an address of this scheme may not be asked, if so.
std::optional<TransportErrorCode> refusalOf(const std::string& scheme) {
  if (curl_strequal(scheme.c_str(), "https") != 0) {
    return {};
  }
  return curl_strequal(scheme.c_str(), "http") != 0 ? secureConnectionRequired : unsupportedURL;
}

// Fields that the session writes itself, or that would change how the message is framed.
bool isReserved(const std::string& field) {
  static constexpr std::array reserved = {
      "connection",
      "expect",
      "host",
      "proxy-authenticate",
      "proxy-authorization",
      "transfer-encoding",
      "www-authenticate"};
  return std::ranges::any_of(
      reserved, [&](const char* name) { return curl_strequal(name, field.c_str()) != 0; });
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  return first == text.npos ? std::string_view{}
                            : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool fitsOnOneLine(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

// The current locale, of this thread, as Accept-Language has it: "de-DE, de;q=0.9".
std::string acceptedLanguages() {
  std::string tag = currentLocale();
  tag.erase(std::min(tag.find("_POSIX"), tag.size()));
  std::ranges::replace(tag, '_', '-');
  const std::string language = tag.substr(0, tag.find('-'));
  return language == tag ? tag : tag + ", " + language + ";q=0.9";
}

// Whether the server has meanwhile closed the kept connection that the handle is about to use.
// libcurl's own check only looks whether the socket is at its end, and so overlooks a TLS
// close-notify or a late answer that waits to be read. On HTTP/2 libcurl does the reading, since
// other streams may wait for what comes.
bool isClosedByServer(CURL* handle) {
  long newConnections{};
  curl_easy_getinfo(handle, CURLINFO_NUM_CONNECTS, &newConnections);
  if (newConnections > 0) {
    return false;
  }
  curl_tlssessioninfo* session = nullptr;
  curl_easy_getinfo(handle, CURLINFO_TLS_SSL_PTR, &session);
  SSL* tls = static_cast<SSL*>(session->internals);
  const unsigned char* protocol = nullptr;
  unsigned length{};
  SSL_get0_alpn_selected(tls, &protocol, &length);
  if (std::string_view(reinterpret_cast<const char*>(protocol), length) == "h2") {
    return (SSL_get_shutdown(tls) & SSL_RECEIVED_SHUTDOWN) != 0;
  }
  ERR_clear_error();
  char byte{};
  return SSL_get_error(tls, SSL_peek(tls, &byte, 1)) != SSL_ERROR_WANT_READ;
}

const char* orNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

TrustStore TrustStore::fromEnvironment() {
  const auto variable = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  TrustStore trust{.file = variable("SSL_CERT_FILE"), .folder = variable("SSL_CERT_DIR")};
  if (trust.file.empty() && trust.folder.empty()) {
    trust.folder = "/etc/ssl/certs";
  }
  return trust;
}

Transfer::Transfer(
    URLRequest request, URLSession::Completion completion, URLSession::Timeouts timeouts)
    : request_(std::move(request)),
      completion_(std::move(completion)),
      address_(request_.url.absoluteString()),
      languages_(acceptedLanguages()),
      timeouts_(timeouts) {
  report_.activity = currentActivity();
  Parts parts = partsOf(address_);
  authority_ = std::move(parts.authority);
  report_.path = std::move(parts.path);
}

std::optional<TransportErrorCode> Transfer::refusal() const {
  return refusalOf(std::string(request_.url.scheme()));
}

void Transfer::prepare(CURL* handle) {
  body_.clear();
  headerBytes_ = 0;
  handle_ = handle;
  isSent_ = false;
  curl_easy_setopt(handle, CURLOPT_URL, address_.c_str());
  setConnection(handle);
  setMethod(handle);
  setHeaders(handle);
  setReceivers(handle);
}

void Transfer::setConnection(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "https");
  curl_easy_setopt(handle, CURLOPT_PROXY, "");
  curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_NONE);
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name lookup that outlasts its transfer is left to end by itself.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
  curl_easy_setopt(handle, CURLOPT_CAINFO, orNull(trust_.file));
  curl_easy_setopt(handle, CURLOPT_CAPATH, orNull(trust_.folder));

  curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, isStale_ ? 1L : 0L);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, &Transfer::onConnect);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &Transfer::onRequest);
  curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
  isStale_ = false;
}

void Transfer::setMethod(CURL* handle) {
  if (request_.httpMethod == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  } else if (request_.httpMethod != "GET") {
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request_.httpBody.size()));
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request_.httpBody.c_str());
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request_.httpMethod.c_str());
  }
}

void Transfer::setHeaders(CURL* handle) {
  headers_.reset();
  const auto add = [this](const std::string& line) {
    headers_.reset(curl_slist_append(headers_.release(), line.c_str()));
  };
  add("Expect:");
  add("Accept-Language: " + languages_);
  for (const auto& [field, text] : request_.headers) {
    const std::string_view value = trimmed(text);
    // The length is sent as the sender spelled it, but only if it is the body's.
    const bool isWrongLength = curl_strequal(field.c_str(), "content-length") != 0 &&
                               value != std::to_string(request_.httpBody.size());
    if (isReserved(field) || isWrongLength || !fitsOnOneLine(field) || !fitsOnOneLine(value)) {
      continue;
    }
    // libcurl takes "Field:" as a request not to send it, and "Field;" as an empty value.
    add(value.empty() ? field + ";" : field + ": " + std::string(value));
  }
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers_.get());
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "Quillpad/1");
  curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "gzip, deflate, br");
}

void Transfer::setReceivers(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &Transfer::onBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &Transfer::onProgress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
}

Transfer::Clock::time_point Transfer::deadline() const {
  return std::min<Clock::time_point>(lastProgress_ + timeouts_.idle, begin_ + timeouts_.whole);
}

bool Transfer::endExchange(CURL* handle, CURLcode result) {
  curl_off_t sent{};
  curl_off_t received{};
  long status{};
  curl_easy_getinfo(handle, CURLINFO_SIZE_UPLOAD_T, &sent);
  curl_easy_getinfo(handle, CURLINFO_SIZE_DOWNLOAD_T, &received);
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  report_.sentBytes += static_cast<std::uint64_t>(sent);
  report_.receivedBytes += static_cast<std::uint64_t>(received);
  report_.statusCode = static_cast<int>(status);
  lastProgress_ = Clock::now();

  if (result == CURLE_OK) {
    return follow(handle);
  }
  if (isStale_) {
    return true;
  }
  if (!failure_) {
    failure_ = transportErrorCode(result, handle);
  }
  return false;
}

// By hand, because libcurl would carry the Authorization field on and follow other answers than
// the phone does.
bool Transfer::follow(CURL* handle) {
  const int status = report_.statusCode;
  if (status != 301 && status != 302 && status != 303 && status != 307 && status != 308) {
    return false;
  }
  const char* location = nullptr;
  curl_easy_getinfo(handle, CURLINFO_REDIRECT_URL, &location);
  if (location == nullptr) {
    return false;
  }
  address_ = location;
  Parts parts = partsOf(address_);
  authority_ = std::move(parts.authority);
  failure_ = refusalOf(parts.scheme);
  if (failure_) {
    return false;
  }
  if (++redirects_ > maxRedirects) {
    failure_ = tooManyRedirects;
    return false;
  }
  const std::string& method = request_.httpMethod;
  if ((status == 303 && method != "HEAD") || (status < 303 && method == "POST")) {
    request_.httpMethod = "GET";
    request_.httpBody.clear();
    request_.setValue(std::nullopt, "Content-Type");
  }
  request_.setValue(std::nullopt, "Authorization");
  return true;
}

// Where a kept connection ends without an answer, libcurl asks again on another one. Whether the
// server has acted on the first request is unknown, so this is a failure.
bool Transfer::refuseRepetition() {
  if (isSent_) {
    failure_ = networkConnectionLost;
  }
  return isSent_;
}

curl_socket_t Transfer::onConnect(
    void* transfer, curlsocktype /*purpose*/, curl_sockaddr* address) {
  if (static_cast<Transfer*>(transfer)->refuseRepetition()) {
    return CURL_SOCKET_BAD;
  }
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

int Transfer::onRequest(
    void* transfer, char* /*peer*/, char* /*local*/, int /*peerPort*/, int /*localPort*/) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  if (self.refuseRepetition()) {
    return CURL_PREREQFUNC_ABORT;
  }
  if (isClosedByServer(self.handle_)) {
    self.isStale_ = true;
    curl_easy_setopt(self.handle_, CURLOPT_FORBID_REUSE, 1L);
    return CURL_PREREQFUNC_ABORT;
  }
  self.isSent_ = true;
  return CURL_PREREQFUNC_OK;
}

void Transfer::fail(TransportErrorCode code) { failure_ = code; }

void Transfer::deliver(const std::function<void(const TransferReport&)>& watcher) {
  const ActivityScope scope(report_.activity);
  std::optional<std::string> data;
  if (failure_) {
    report_.error = transportError(*failure_);
  } else {
    data = std::move(body_);
  }
  report_.duration = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin_);
  if (watcher) {
    watcher(report_);
  }
  std::optional<URLResponse> response;
  if (report_.statusCode != 0) {
    response = URLResponse{report_.statusCode};
  }
  completion_(std::move(data), response, std::move(report_.error));
}

std::size_t Transfer::onHeader(
    char* /*bytes*/, std::size_t size, std::size_t count, void* transfer) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  self.lastProgress_ = Clock::now();
  self.headerBytes_ += size * count;
  if (self.headerBytes_ > maxHeaderBytes) {
    self.failure_ = cannotParseResponse;
    return CURL_WRITEFUNC_ERROR;
  }
  return size * count;
}

std::size_t Transfer::onBody(char* bytes, std::size_t size, std::size_t count, void* transfer) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  if (self.body_.size() + size * count > maxBodyBytes) {
    self.failure_ = dataLengthExceedsMaximum;
    return CURL_WRITEFUNC_ERROR;
  }
  self.body_.append(bytes, size * count);
  return size * count;
}

int Transfer::onProgress(
    void* transfer,
    curl_off_t /*toReceive*/,
    curl_off_t received,
    curl_off_t /*toSend*/,
    curl_off_t sent) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  if (std::exchange(self.movedBytes_, received + sent) != received + sent) {
    self.lastProgress_ = Clock::now();
  }
  return 0;
}

}  // namespace quillpad
