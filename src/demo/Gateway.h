// What the demo gateway answers: it checks a request as the real one does, asks the documents and
// packs the answer, or the fault that was ordered. Its switchboard, where faults are ordered, has a
// token of its own. It knows nothing of sockets. Callable from any thread.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "demo/Documents.h"
#include "demo/Faults.h"

namespace quillpad::demo {

struct Request {
  std::string method;
  std::string path;
  std::string contentType;
  std::string authorization;
  std::string body;
};

struct Answer {
  enum class Delivery { whole, truncated, dropped };

  int status = 200;
  std::string body;
  std::string contentType = "application/json";
  std::chrono::milliseconds delay{};
  Delivery delivery = Delivery::whole;
};

// A refusal: {"code":<status>,"message":"…"}.
Answer refuse(int status, std::string_view message);

class Gateway {
 public:
  static constexpr std::string_view businessId = "demo";
  static constexpr std::string_view switchboardPath = "/demo/switchboard";

  // The clock tells the day that the documents are made up for.
  Gateway(
      std::string token, std::string switchboardToken, std::function<Day()> clock = &Day::today);

  Answer answer(const Request& request);

  void setFault(Fault fault) { faults_.set(std::move(fault)); }

 private:
  Answer answerPost(const Request& request);
  Answer answerWithDocuments(const Request& request, Damage damage) const;
  Answer answerSwitchboard(const Request& request);
  Answer listDocuments() const;

  std::string token_;
  std::string switchboardToken_;
  std::function<Day()> clock_;
  FaultSwitch faults_;
};

}  // namespace quillpad::demo
