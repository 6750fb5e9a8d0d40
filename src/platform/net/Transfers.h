// All transfers that have not ended, on one multi handle of libcurl: the order in which each host
// is asked, kept connections, deadlines. Used by one thread at a time; lasts as long as the
// process. Private to the session.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/net/Curl.h"
#include "platform/net/Poller.h"
#include "platform/net/Transfer.h"

namespace quillpad {

class Transfers {
 public:
  using List = std::vector<std::unique_ptr<Transfer>>;

  // Has the poller, which must outlive it, tell what happens to its sockets and when it is time.
  explicit Transfers(Poller& poller);
  Transfers(const Transfers&) = delete;
  Transfers& operator=(const Transfers&) = delete;

  // Takes in new transfers and the sockets to which something happened, moves all transfers on
  // without waiting and gives those that have ended.
  List advance(List arrivals, const std::vector<int>& sockets);

 private:
  using Clock = Transfer::Clock;

  struct FreeHandle {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };

  // The handle, which points to what the transfer holds, ends before it.
  struct Exchange {
    std::unique_ptr<Transfer> transfer;
    std::unique_ptr<CURL, FreeHandle> handle;
  };

  static int onSocket(CURL* handle, curl_socket_t socket, int what, void* transfers, void* mark);
  static int onTimer(CURLM* multi, long milliseconds, void* transfers);

  void take(int socket);
  bool isBusy(const std::string& authority) const;
  void startWaiting();
  void end(CURL* handle, CURLcode result);
  void endFinished();
  void endOverdue();
  void setAlarm();

  Poller& poller_;
  CURLM* multi_ = curl_multi_init();
  CURLSH* tlsSessions_ = curl_share_init();
  std::unordered_map<curl_socket_t, std::uint32_t> sockets_;  // with the events to watch for
  List waiting_;  // for their host, in their order; libcurl's own queue may forget who waits in it
  std::unordered_map<CURL*, Exchange> running_;
  List ended_;
  Clock::time_point curlTimer_ = Clock::time_point::max();
};

}  // namespace quillpad
