#include "platform/net/Transfers.h"

#include <algorithm>
#include <chrono>
#include <sys/epoll.h>
#include <utility>

namespace quillpad {

Transfers::Transfers(Poller& poller) : poller_(poller) {
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
      waiting_.push_back(std::move(transfer));
    }
  }
  startWaiting();
  for (const int socket : sockets) {
    take(socket);
  }
  if (curlTimer_ <= Clock::now()) {
    curlTimer_ = Clock::time_point::max();
    int running{};
    curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
  }
  endFinished();
  endOverdue();
  setAlarm();
  return std::exchange(ended_, {});
}

void Transfers::take(int socket) {
  if (!sockets_.contains(socket)) {
    return;
  }
  int running{};
  curl_multi_socket_action(multi_, socket, 0, &running);  // looks itself what has happened
  if (const auto watched = sockets_.find(socket); watched != sockets_.end()) {
    poller_.watch(socket, watched->second);
  }
}

int Transfers::onSocket(
    CURL* /*handle*/, curl_socket_t socket, int what, void* transfers, void* /*mark*/) {
  Transfers& self = *static_cast<Transfers*>(transfers);
  if (what == CURL_POLL_REMOVE) {
    self.sockets_.erase(socket);
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

bool Transfers::isBusy(const std::string& authority) const {
  constexpr std::ptrdiff_t maxPerHost = 6;
  return std::ranges::count_if(running_, [&](const auto& each) {
           return each.second.transfer->authority() == authority;
         }) == maxPerHost;
}

void Transfers::startWaiting() {
  for (auto next = waiting_.begin(); next != waiting_.end();) {
    if (isBusy((*next)->authority())) {
      ++next;
      continue;
    }
    CURL* handle = curl_easy_init();
    curl_easy_setopt(handle, CURLOPT_SHARE, tlsSessions_);
    (*next)->prepare(handle);
    Exchange& exchange = running_[handle];
    exchange.transfer = std::move(*next);
    exchange.handle.reset(handle);
    curl_multi_add_handle(multi_, handle);
    next = waiting_.erase(next);
  }
}

void Transfers::end(CURL* handle, CURLcode result) {
  curl_multi_remove_handle(multi_, handle);
  Exchange exchange = std::move(running_.extract(handle).mapped());
  const bool goesOn = exchange.transfer->endExchange(handle, result);
  (goesOn ? waiting_ : ended_).push_back(std::move(exchange.transfer));
  startWaiting();
}

void Transfers::endFinished() {
  int waiting{};
  while (const CURLMsg* message = curl_multi_info_read(multi_, &waiting)) {
    end(message->easy_handle, message->data.result);
  }
}

void Transfers::endOverdue() {
  const auto isOverdue = [now = Clock::now()](const Transfer& transfer) {
    return transfer.deadline() <= now;
  };
  const auto late = std::ranges::stable_partition(
      waiting_, [&](const auto& transfer) { return !isOverdue(*transfer); });
  for (std::unique_ptr<Transfer>& transfer : late) {
    transfer->fail(timedOut);
    ended_.push_back(std::move(transfer));
  }
  waiting_.erase(late.begin(), late.end());

  std::vector<CURL*> overdue;
  for (const auto& [handle, exchange] : running_) {
    if (isOverdue(*exchange.transfer)) {
      overdue.push_back(handle);
    }
  }
  for (CURL* handle : overdue) {
    end(handle, CURLE_OPERATION_TIMEDOUT);
  }
}

void Transfers::setAlarm() {
  Clock::time_point alarm = curlTimer_;
  for (const auto& transfer : waiting_) {
    alarm = std::min(alarm, transfer->deadline());
  }
  for (const auto& [handle, exchange] : running_) {
    alarm = std::min(alarm, exchange.transfer->deadline());
  }
  poller_.setAlarm(alarm);
}

}  // namespace quillpad
