#include "platform/net/URLSession.h"

#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/net/Curl.h"
#include "platform/net/Poller.h"
#include "platform/net/Transfer.h"
#include "platform/net/Transfers.h"
#include "platform/os/BackgroundThread.h"

namespace quillpad {

// Who does what: the thread that resumes a task sends its request; of the session's two threads,
// the one that the answer wakes calls the completion, while the other waits on for what comes
// meanwhile. So no thread wakes another, and a slow completion holds no transfer up. One thread at
// a time drives the transfers, and one delivers: who comes second leaves what it has to the first.
// Once started, the two last as long as the process.
class URLSession::Impl {
 public:
  using Watcher = std::function<void(const TransferReport&)>;

  void begin(std::unique_ptr<Transfer> transfer);
  void setWatcher(Watcher watcher);
  void setTimeouts(Timeouts timeouts);
  Timeouts timeouts();

 private:
  void launch();
  void stop();
  void work();
  void drive();
  void deliver();

  std::once_flag launched_;
  Poller poller_;
  std::unique_ptr<Transfers> transfers_;  // of the thread that drives

  std::mutex mutex_;  // guards all that follows
  std::condition_variable stopped_;
  Transfers::List arrivals_;
  std::vector<int> sockets_;  // to which something happened
  std::deque<std::unique_ptr<Transfer>> ended_;
  bool isDriven_ = false;
  bool isMissed_ = false;      // a thread wanted to drive while another one did
  std::thread::id deliverer_;  // none while nothing is delivered
  bool isStopping_ = false;
  Timeouts timeouts_;
  std::shared_ptr<const Watcher> watcher_ = std::make_shared<const Watcher>();
};

void URLSession::Impl::begin(std::unique_ptr<Transfer> transfer) {
  std::call_once(launched_, [this] { launch(); });
  {
    const std::lock_guard lock(mutex_);
    arrivals_.push_back(std::move(transfer));
  }
  drive();
  const std::lock_guard lock(mutex_);
  if (!ended_.empty()) {
    poller_.wake();
  }
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
  transfers_ = std::make_unique<Transfers>(poller_);
  for (int i = 0; i < 2; ++i) {
    startBackgroundThread([this] { work(); }).detach();
  }
  // Registered after the TLS library's own, and so run before it: no transfer may move any more
  // when that takes its tables away.
  std::atexit([] { URLSession::shared().impl_->stop(); });
}

// Transfers under way are left as they are: unfinished, their completions neither called nor
// destroyed. A completion that is being called has a second to end.
void URLSession::Impl::stop() {
  std::unique_lock lock(mutex_);
  isStopping_ = true;
  stopped_.wait(lock, [this] { return !isDriven_; });
  if (deliverer_ != std::this_thread::get_id()) {
    stopped_.wait_for(
        lock, std::chrono::seconds(1), [this] { return deliverer_ == std::thread::id(); });
  }
}

void URLSession::Impl::work() {
  while (true) {
    const std::vector<int> sockets = poller_.wait();
    {
      const std::lock_guard lock(mutex_);
      sockets_.insert(sockets_.end(), sockets.begin(), sockets.end());
    }
    drive();
    deliver();
  }
}

// Moves the transfers on once: this may be a caller's thread, so what comes meanwhile is for one of
// the session's.
void URLSession::Impl::drive() {
  std::unique_lock lock(mutex_);
  if (isDriven_ || isStopping_) {
    isMissed_ = true;
    return;
  }
  isDriven_ = true;
  isMissed_ = false;
  Transfers::List arrivals = std::exchange(arrivals_, {});
  const std::vector<int> sockets = std::exchange(sockets_, {});
  lock.unlock();
  Transfers::List ended = transfers_->advance(std::move(arrivals), sockets);
  lock.lock();
  std::ranges::move(ended, std::back_inserter(ended_));
  isDriven_ = false;
  if (isMissed_) {
    poller_.wake();
  }
  stopped_.notify_all();
}

// Calls the completions of the transfers that have ended, one at a time.
void URLSession::Impl::deliver() {
  std::unique_lock lock(mutex_);
  if (deliverer_ != std::thread::id()) {
    return;
  }
  deliverer_ = std::this_thread::get_id();
  while (!ended_.empty() && !isStopping_) {
    std::unique_ptr<Transfer> transfer = std::move(ended_.front());
    ended_.pop_front();
    const std::shared_ptr<const Watcher> watcher = watcher_;
    lock.unlock();
    transfer->deliver(*watcher);
    transfer.reset();
    lock.lock();
  }
  deliverer_ = {};
  stopped_.notify_all();
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
