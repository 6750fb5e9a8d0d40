#include "platform/net/Transfers.h"

#include <algorithm>
#include <chrono>
#include <sys/epoll.h>
#include <utility>

namespace quillpad {

Transfers::Transfers(Poller& poller) : poller_(poller) {
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 12L);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &Transfers::onSocket);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &Transfers::onTimer);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  curl_share_setopt(tlsSessions_, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

Transfers::List Transfers::advance(List arrivals, const std::vector<int>& sockets) {
  for (std::unique_ptr<Transfer>& transfer : arrivals) {
    if (const auto refusal = transfer->refusal()) {
      transfer->fail(*refusal);
      ended_.push_back(std::move(transfer));
    } else {
      queue(std::move(transfer));
    }
  }
  for (const int socket : sockets) {
    take(socket);
  }
  if (curlTimer_ <= Clock::now()) {
    curlTimer_ = Clock::time_point::max();
    int running = 0;
    curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
  }
  endFinished();
  endOverdue();
  setAlarm();
  return std::exchange(ended_, {});
}

// libcurl looks itself what has happened.
void Transfers::take(int socket) {
  int running = 0;
  curl_multi_socket_action(multi_, socket, 0, &running);
  if (const auto watched = sockets_.find(socket); watched != sockets_.end()) {
    poller_.watch(socket, watched->second);
  }
}

int Transfers::onSocket(
    CURL* /*handle*/, curl_socket_t socket, int what, void* transfers, void* /*mark*/) {
  Transfers& self = *static_cast<Transfers*>(transfers);
  if (what == CURL_POLL_REMOVE) {
    self.sockets_.erase(socket);
    self.poller_.forget(socket);
  } else {
    const std::uint32_t events =
        ((what & CURL_POLL_IN) != 0 ? EPOLLIN : 0U) | ((what & CURL_POLL_OUT) != 0 ? EPOLLOUT : 0U);
    self.sockets_[socket] = events;
    self.poller_.watch(socket, events);
  }
  return 0;
}

int Transfers::onTimer(CURLM* /*multi*/, long milliseconds, void* transfers) {
  static_cast<Transfers*>(transfers)->curlTimer_ =
      milliseconds < 0 ? Clock::time_point::max()
                       : Clock::now() + std::chrono::milliseconds(milliseconds);
  return 0;
}

void Transfers::queue(std::unique_ptr<Transfer> transfer) {
  nextDeadline_ = std::min(nextDeadline_, transfer->deadline());
  const std::string authority = transfer->authority();
  hosts_[authority].waiting.push_back(std::move(transfer));
  startWaiting(authority);
}

void Transfers::startWaiting(const std::string& authority) {
  constexpr int maxPerHost = 6;
  const auto found = hosts_.find(authority);
  HostQueue& host = found->second;
  while (host.underWay < maxPerHost && !host.waiting.empty()) {
    CURL* handle = takeHandle();
    host.waiting.front()->prepare(handle);
    running_.emplace(handle, std::move(host.waiting.front()));
    host.waiting.pop_front();
    curl_multi_add_handle(multi_, handle);
    ++host.underWay;
  }
  if (host.underWay == 0) {
    hosts_.erase(found);
  }
}

void Transfers::end(CURL* handle, CURLcode result) {
  curl_multi_remove_handle(multi_, handle);
  std::unique_ptr<Transfer> transfer = std::move(running_.extract(handle).mapped());
  const std::string authority = transfer->authority();
  const bool goesOn = transfer->endExchange(handle, result);
  curl_easy_reset(handle);
  keepHandle(handle);
  if (goesOn) {
    queue(std::move(transfer));
  } else {
    ended_.push_back(std::move(transfer));
  }
  --hosts_[authority].underWay;
  startWaiting(authority);
}

void Transfers::endFinished() {
  int waiting = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &waiting)) {
    end(message->easy_handle, message->data.result);
  }
}

// Progress only moves a transfer's deadline away, so the earliest one of the last look is never too
// late for the next.
void Transfers::endOverdue() {
  const Clock::time_point now = Clock::now();
  if (now < nextDeadline_) {
    return;
  }
  nextDeadline_ = Clock::time_point::max();
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
      ended_.push_back(std::move(transfer));
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

void Transfers::setAlarm() {
  const Clock::time_point alarm = std::min(curlTimer_, nextDeadline_);
  if (alarm != alarm_) {
    alarm_ = alarm;
    poller_.setAlarm(alarm);
  }
}

CURL* Transfers::takeHandle() {
  if (!idleHandles_.empty()) {
    CURL* handle = idleHandles_.back();
    idleHandles_.pop_back();
    return handle;
  }
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_SHARE, tlsSessions_);
  return handle;
}

void Transfers::keepHandle(CURL* handle) {
  constexpr std::size_t maxKept = 8;
  if (idleHandles_.size() < maxKept) {
    idleHandles_.push_back(handle);
  } else {
    curl_easy_cleanup(handle);
  }
}

}  // namespace quillpad
