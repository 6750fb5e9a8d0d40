// A real HTTPS server on a free loopback port, for tests: it records what it is asked and leaves
// each answer to the test, down to the bytes. One thread per connection, HTTP/1.1, TLS by OpenSSL;
// its certificate comes from an authority that is made anew by every process.
//
//   HttpsServer server([](const HttpsServer::Request&, HttpsServer::Exchange& exchange) {
//     exchange.respond(200, R"({"data":"{}"})");
//   });
//   ScopedVariable trust("SSL_CERT_FILE", HttpsServer::authorityFile());
//   ... fetch server.address("/invoice") ...
//   EXPECT_EQ(server.requests().at(0).header("Authorization"), "abc");
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

class HttpsServer {
 public:
  using Headers = std::vector<std::pair<std::string, std::string>>;

  struct Request {
    std::string method;
    std::string path;
    Headers headers;
    std::string body;
    int connection = 0;  // counted from 1 in the order in which they were accepted

    // The value of the field, named in any case; nothing where it is absent.
    std::optional<std::string> header(std::string_view field) const;
    int headerCount(std::string_view field) const;
  };

  // The server's side of one request. Used by the handler, on the connection's thread.
  class Exchange {
   public:
    virtual ~Exchange() = default;
    // A whole answer with its Content-Length.
    virtual void respond(int status, std::string_view body, const Headers& headers = {}) = 0;
    // Raw bytes. False where the client is gone.
    virtual bool send(std::string_view bytes) = 0;
    // Waits until HttpsServer::release() was called, or the server ends.
    virtual void hold() = 0;
    virtual void pause(std::chrono::milliseconds duration) = 0;
    // Ends the connection, in good order or with a reset.
    virtual void close() = 0;
    virtual void reset() = 0;
  };

  enum class Certificate { valid, forAnotherHost, expired, fromUnknownAuthority };

  using Handler = std::function<void(const Request& request, Exchange& exchange)>;

  explicit HttpsServer(Handler handler, Certificate certificate = Certificate::valid, int port = 0);
  ~HttpsServer();
  HttpsServer(const HttpsServer&) = delete;
  HttpsServer& operator=(const HttpsServer&) = delete;

  // A PEM file with the authority of the valid certificate, for SSL_CERT_FILE.
  static std::string authorityFile();

  int port() const;
  // "https://localhost:<port><path>"
  std::string address(std::string_view path) const;

  // Lets every Exchange::hold(), present and to come, go on.
  void release();

  std::vector<Request> requests() const;
  // Waits until so many requests came. False after ten seconds without.
  bool waitForRequests(std::size_t count) const;

  int connections() const;
  int mostConnectionsAtOnce() const;
  int handshakes() const;         // that succeeded
  int resumedHandshakes() const;  // those among them that took up an earlier TLS session

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace support
