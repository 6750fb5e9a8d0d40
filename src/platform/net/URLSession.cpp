#include "platform/net/URLSession.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/foundation/BackgroundThread.h"
#include "platform/net/Curl.h"
#include "platform/net/SerialQueue.h"
#include "platform/net/Transfer.h"

namespace quillpad {

// What drives the transfers: one thread with one multi handle, started with the first transfer.
// Finished transfers go to the serial queue. Once started it lasts as long as the process.
class URLSession::Impl {
 public:
  using Watcher = std::function<void(const TransferReport&)>;

  void begin(std::unique_ptr<Transfer> transfer);
  void setWatcher(Watcher watcher);
  void setTimeouts(Timeouts timeouts);
  Timeouts timeouts();

 private:
  // The transfers to one host and port: those under way are counted, the others wait. libcurl has
  // such a queue too, but may forget who waits in it.
  struct HostQueue {
    int underWay = 0;
    std::deque<std::unique_ptr<Transfer>> waiting;
  };

  void launch();
  void stop();
  void run();
  void takeArrivals();
  void queue(std::unique_ptr<Transfer> transfer);
  void advance(const std::string& authority);
  void add(CURL* handle, std::unique_ptr<Transfer> transfer);
  void end(CURL* handle, CURLcode result);
  void endFinished();
  void endOverdue();
  void deliver(std::unique_ptr<Transfer> transfer);
  CURL* takeHandle();
  void keepHandle(CURL* handle);
  int untilNextDeadline() const;

  std::once_flag launched_;
  SerialQueue deliveries_;

  std::mutex mutex_;  // guards the next four
  Timeouts timeouts_;
  std::vector<std::unique_ptr<Transfer>> arrivals_;
  bool stopping_ = false;
  std::shared_ptr<const Watcher> watcher_ = std::make_shared<const Watcher>();

  CURLM* multi_ = nullptr;
  CURLSH* tlsSessions_ = nullptr;
  std::thread thread_;
  std::unordered_map<std::string, HostQueue> hosts_;  // by host and port
  std::unordered_map<CURL*, std::unique_ptr<Transfer>> running_;
  std::vector<CURL*> idleHandles_;
  Transfer::Clock::time_point nextDeadline_ = Transfer::Clock::time_point::max();
};

void URLSession::Impl::begin(std::unique_ptr<Transfer> transfer) {
  if (const auto refusal = transfer->refusal()) {
    transfer->fail(*refusal);
    deliver(std::move(transfer));
    return;
  }
  std::call_once(launched_, [this] { launch(); });
  {
    const std::lock_guard lock(mutex_);
    arrivals_.push_back(std::move(transfer));
  }
  curl_multi_wakeup(multi_);
}

void URLSession::Impl::setWatcher(Watcher watcher) {
  const std::lock_guard lock(mutex_);
  watcher_ = std::make_shared<const Watcher>(std::move(watcher));
}

void URLSession::Impl::setTimeouts(Timeouts timeouts) {
  const std::lock_guard lock(mutex_);
  timeouts_ = timeouts;
}

URLSession::Timeouts URLSession::Impl::timeouts() {
  const std::lock_guard lock(mutex_);
  return timeouts_;
}

void URLSession::Impl::launch() {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  multi_ = curl_multi_init();
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 12L);
  tlsSessions_ = curl_share_init();
  curl_share_setopt(tlsSessions_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
  thread_ = startBackgroundThread([this] { run(); });
  // Registered after the TLS library's own, and so run before it: no transfer may move any more
  // when that takes its tables away.
  std::atexit([] { URLSession::shared().impl_->stop(); });
}

// Transfers under way are left as they are: unfinished, their completions neither called nor
// destroyed.
void URLSession::Impl::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  curl_multi_wakeup(multi_);
  thread_.join();
  deliveries_.stop();
}

void URLSession::Impl::run() {
  while (true) {
    {
      const std::lock_guard lock(mutex_);
      if (stopping_) {
        return;
      }
    }
    takeArrivals();
    int underWay = 0;
    curl_multi_perform(multi_, &underWay);
    endFinished();
    endOverdue();
    curl_multi_poll(multi_, nullptr, 0, untilNextDeadline(), nullptr);
  }
}

void URLSession::Impl::takeArrivals() {
  std::vector<std::unique_ptr<Transfer>> arrivals;
  {
    const std::lock_guard lock(mutex_);
    arrivals.swap(arrivals_);
  }
  for (std::unique_ptr<Transfer>& transfer : arrivals) {
    queue(std::move(transfer));
  }
}

void URLSession::Impl::queue(std::unique_ptr<Transfer> transfer) {
  nextDeadline_ = std::min(nextDeadline_, transfer->deadline());
  const std::string authority = transfer->authority();
  hosts_[authority].waiting.push_back(std::move(transfer));
  advance(authority);
}

void URLSession::Impl::advance(const std::string& authority) {
  constexpr int maxPerHost = 6;
  const auto found = hosts_.find(authority);
  HostQueue& host = found->second;
  while (host.underWay < maxPerHost && !host.waiting.empty()) {
    std::unique_ptr<Transfer> transfer = std::move(host.waiting.front());
    host.waiting.pop_front();
    ++host.underWay;
    add(takeHandle(), std::move(transfer));
  }
  if (host.underWay == 0) {
    hosts_.erase(found);
  }
}

void URLSession::Impl::add(CURL* handle, std::unique_ptr<Transfer> transfer) {
  transfer->prepare(handle);
  running_.emplace(handle, std::move(transfer));
  curl_multi_add_handle(multi_, handle);
}

void URLSession::Impl::end(CURL* handle, CURLcode result) {
  curl_multi_remove_handle(multi_, handle);
  std::unique_ptr<Transfer> transfer = std::move(running_.extract(handle).mapped());
  const std::string authority = transfer->authority();
  const bool goesOn = transfer->endExchange(handle, result);
  curl_easy_reset(handle);
  keepHandle(handle);
  if (goesOn) {
    queue(std::move(transfer));
  } else {
    deliver(std::move(transfer));
  }
  --hosts_[authority].underWay;
  advance(authority);
}

void URLSession::Impl::endFinished() {
  int waiting = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &waiting)) {
    end(message->easy_handle, message->data.result);
  }
}

// Progress only moves a transfer's deadline away, so the earliest one of the last look is never too
// late for the next.
void URLSession::Impl::endOverdue() {
  const Transfer::Clock::time_point now = Transfer::Clock::now();
  if (now < nextDeadline_) {
    return;
  }
  nextDeadline_ = Transfer::Clock::time_point::max();
  const auto isOverdue = [&](const Transfer& transfer) {
    if (transfer.deadline() > now) {
      nextDeadline_ = std::min(nextDeadline_, transfer.deadline());
      return false;
    }
    return true;
  };
  for (auto& [authority, host] : hosts_) {
    const auto late = std::ranges::stable_partition(
        host.waiting, [&](const auto& transfer) { return !isOverdue(*transfer); });
    for (std::unique_ptr<Transfer>& transfer : late) {
      transfer->fail(timedOut);
      deliver(std::move(transfer));
    }
    host.waiting.erase(late.begin(), late.end());
  }
  std::vector<CURL*> overdue;
  for (const auto& [handle, transfer] : running_) {
    if (isOverdue(*transfer)) {
      overdue.push_back(handle);
    }
  }
  for (CURL* handle : overdue) {
    end(handle, CURLE_OPERATION_TIMEDOUT);
  }
}

void URLSession::Impl::deliver(std::unique_ptr<Transfer> transfer) {
  deliveries_.post([this, transfer = std::move(transfer)] {
    std::shared_ptr<const Watcher> watcher;
    {
      const std::lock_guard lock(mutex_);
      watcher = watcher_;
    }
    transfer->deliver(*watcher);
  });
}

CURL* URLSession::Impl::takeHandle() {
  if (!idleHandles_.empty()) {
    CURL* handle = idleHandles_.back();
    idleHandles_.pop_back();
    return handle;
  }
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_SHARE, tlsSessions_);
  return handle;
}

void URLSession::Impl::keepHandle(CURL* handle) {
  constexpr std::size_t maxKept = 8;
  if (idleHandles_.size() < maxKept) {
    idleHandles_.push_back(handle);
  } else {
    curl_easy_cleanup(handle);
  }
}

int URLSession::Impl::untilNextDeadline() const {
  constexpr std::chrono::milliseconds maxWait = std::chrono::hours(1);
  const Transfer::Clock::time_point now = Transfer::Clock::now();
  if (nextDeadline_ - now > maxWait) {
    return static_cast<int>(maxWait.count());
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(nextDeadline_ - now);
  return static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count());
}

URLSession::URLSession() : impl_(std::make_unique<Impl>()) {}
URLSession::~URLSession() = default;

URLSession& URLSession::shared() {
  // Never destroyed: its threads may outlive every static object.
  static URLSession& session = *new URLSession();
  return session;
}

URLSession::DataTask URLSession::dataTask(URLRequest request, Completion completionHandler) {
  return {*this, std::move(request), std::move(completionHandler)};
}

void URLSession::watchTransfers(std::function<void(const TransferReport&)> watcher) {
  impl_->setWatcher(std::move(watcher));
}

void URLSession::setTimeouts(Timeouts timeouts) { impl_->setTimeouts(timeouts); }

URLSession::DataTask::DataTask(URLSession& session, URLRequest request, Completion completion)
    : session_(session), request_(std::move(request)), completion_(std::move(completion)) {}

void URLSession::DataTask::resume() && {
  Impl& impl = *session_.impl_;
  impl.begin(
      std::make_unique<Transfer>(std::move(request_), std::move(completion_), impl.timeouts()));
}

}  // namespace quillpad
