// One request on its way: what libcurl is told of it, the answer as it arrives, the redirects it
// follows and how it ended. Made on the thread that resumes the task, then of whichever drives the
// transfers, and at last of the one that delivers. Private to the session.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/net/Curl.h"
#include "platform/net/TransportErrors.h"
#include "platform/net/URLRequest.h"
#include "platform/net/URLSession.h"

namespace quillpad {

// The certificates to trust: a file, a hashed folder, or both.
struct TrustStore {
  std::string file;
  std::string folder;

  // SSL_CERT_FILE and SSL_CERT_DIR where either is set, else the system's folder, which is read
  // certificate by certificate and thus faster than the system's file.
  static TrustStore fromEnvironment();
};

class Transfer {
 public:
  using Clock = std::chrono::steady_clock;

  Transfer(URLRequest request, URLSession::Completion completion, URLSession::Timeouts timeouts);
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // Why the address may not be asked at all, if so.
  std::optional<TransportErrorCode> refusal() const;

  // Host and port of the address to ask next.
  const std::string& authority() const { return authority_; }

  // Sets the fresh handle up for the next exchange.
  void prepare(CURL* handle);

  // When the transfer has stood still, or lasted, for too long.
  Clock::time_point deadline() const;

  // Takes in how the handle's exchange ended. True if another exchange is wanted: it was answered
  // with a redirect that is followed, maybe to another host, or nothing was sent because the kept
  // connection had ended.
  bool endExchange(CURL* handle, CURLcode result);

  // Ends the transfer with an error.
  void fail(TransportErrorCode code);

  // Calls the watcher, then the completion.
  void deliver(const std::function<void(const TransferReport&)>& watcher);

 private:
  static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* transfer);
  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* transfer);
  static int onProgress(
      void* transfer,
      curl_off_t toReceive,
      curl_off_t received,
      curl_off_t toSend,
      curl_off_t sent);

  // Called by libcurl before it asks, also before it would ask a second time by itself.
  static curl_socket_t onConnect(void* transfer, curlsocktype purpose, curl_sockaddr* address);
  static int onRequest(void* transfer, char* peer, char* local, int peerPort, int localPort);

  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  bool refuseRepetition();
  void setConnection(CURL* handle);
  void setMethod(CURL* handle);
  void setHeaders(CURL* handle);
  void setReceivers(CURL* handle);
  bool follow(CURL* handle);

  URLRequest request_;
  URLSession::Completion completion_;
  std::string address_;
  std::string authority_;
  std::string languages_;
  TrustStore trust_ = TrustStore::fromEnvironment();
  std::unique_ptr<curl_slist, FreeList> headers_;

  URLSession::Timeouts timeouts_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point lastProgress_ = begin_;
  curl_off_t movedBytes_ = 0;  // by which progress is told
  int redirects_ = 0;
  CURL* handle_ = nullptr;  // of the exchange under way
  bool isSent_ = false;     // in this exchange
  bool isStale_ = false;    // the connection at hand, or the last one

  std::string body_;
  std::size_t headerBytes_ = 0;
  std::optional<TransportErrorCode> failure_;
  TransferReport report_;
};

}  // namespace quillpad
