// The shared URL session: asynchronous HTTPS with the phone's rules (60 s without progress is a
// time-out, and 85 s in all, after which nobody waits for the answer any more; status codes are no
// errors, at most 20 redirects and none carries the Authorization header on). No request is sent
// twice: one that is lost on its way is an error. Completions are called one at a time on the
// session's two threads, never within the call that starts a task, and a slow one holds no transfer
// up. Connections and TLS sessions are kept and reused; there is no cache and no cookie is kept.
// All operations are callable from any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/TransferReport.h"
#include "platform/net/URLRequest.h"

namespace quillpad {

struct URLResponse {
  int statusCode = 0;
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

  // Has every transfer's end reported to the watcher, as completions are called and before the
  // task's own.
  void watchTransfers(std::function<void(const TransferReport&)> watcher);

  struct Timeouts {
    std::chrono::milliseconds idle = std::chrono::seconds(60);   // without progress
    std::chrono::milliseconds whole = std::chrono::seconds(85);  // less than a timeline may take
  };

  // For tests. Holds for transfers resumed afterwards.
  void setTimeouts(Timeouts timeouts);

  URLSession(const URLSession&) = delete;
  URLSession& operator=(const URLSession&) = delete;

 private:
  URLSession();
  ~URLSession();
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillpad
