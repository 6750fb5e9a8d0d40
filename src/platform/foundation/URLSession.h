// The shared URL session: asynchronous HTTPS with the phone's rules (60 s without progress is a
// time-out, status codes are no errors, at most 20 redirects and none carries the Authorization
// header on). One thread drives all transfers; completions are called one at a time on one other
// thread, never on the caller's. Connections and TLS sessions are kept and reused; there is no
// cache and no cookie is kept. All operations are callable from any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/URLRequest.h"

namespace foundation {

// The error of a transfer, in the numbers and words of the phone's URL error domain (-1001 is a
// time-out).
struct TransportError {
  int code = 0;
  std::string localizedDescription;
};

struct URLResponse {
  int statusCode = 0;
};

// How a transfer ended, for who watches from outside: no address beyond the path, no header and no
// body.
struct TransferReport {
  std::uint64_t activity = 0;  // the activity of the thread that resumed the task
  std::string path;
  std::optional<TransportError> error;
  int statusCode = 0;  // 0 where no response came
  std::chrono::microseconds duration{};
  std::uint64_t sentBytes = 0;
  std::uint64_t receivedBytes = 0;
};

class URLSession {
 public:
  // Exactly one of data (which may be empty) and error is there; the response wherever one came.
  using Completion = std::move_only_function<void(
      std::optional<std::string> data,
      std::optional<URLResponse> response,
      std::optional<TransportError> error)>;

  // A request that is ready to start. Dropping it unstarted drops its completion uncalled.
  class DataTask {
   public:
    // Starts the transfer and returns at once; nothing of it is kept by the caller.
    void resume() &&;

   private:
    friend class URLSession;
    DataTask(URLSession& session, URLRequest request, Completion completion);
    URLSession& session_;
    URLRequest request_;
    Completion completion_;
  };

  // The one session of the process, made at first use.
  static URLSession& shared();

  DataTask dataTask(URLRequest request, Completion completionHandler);

  // Has every transfer's end reported to the watcher, on the thread of the completions and before
  // the task's own.
  void watchTransfers(std::function<void(const TransferReport&)> watcher);

  // For tests: how long a transfer may stand still. 60 seconds unless set; holds for transfers
  // resumed afterwards.
  void setIdleTimeout(std::chrono::milliseconds timeout);

  URLSession(const URLSession&) = delete;
  URLSession& operator=(const URLSession&) = delete;

 private:
  URLSession();
  ~URLSession();
  class Engine;
  std::unique_ptr<Engine> engine_;
};

}  // namespace foundation
