// The faults that the demo gateway shows on demand. They are named by a list of items between
// commas: "delay=1500", "status=503,shape=no-data", "drop,path=listFast,count=2"; "off" is none.
#pragma once

#include <chrono>
#include <expected>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpad::demo {

enum class Damage {
  none,
  drop,           // the connection ends without an answer
  truncate,       // it ends in the middle of the body
  notJson,        // the body is a web page
  fragment,       // the body is a bare number
  noData,         // an object without "data"
  dataObject,     // "data" is an object, not a document in a text
  innerNotJson,   // the document in "data" is no JSON
  innerArray,     // it is an array
  missingKey,     // it lacks "unpaidInvoices" or "records"
  figureText,     // the figures or the rows' totals are texts
  recordsObject,  // "records" is an object; of lists alone
};

struct Fault {
  std::chrono::milliseconds delay{};
  std::optional<int> status;
  Damage damage = Damage::none;
  std::string path;          // the last part of the paths it is limited to, if any
  std::optional<int> count;  // how many more answers it is for, if limited

  // The fault that the items name together, or what is wrong with them.
  static std::expected<Fault, std::string> parse(std::string_view items);

  // The items that name it, without its delay.
  std::string items() const;
};

// The items that there are, for a person.
std::string_view faultHelp();

// The faults that a switchboard offers, each by its items.
std::vector<std::string> offeredFaults();

// The fault in force. Callable from any thread.
class FaultSwitch {
 public:
  void set(Fault fault);
  Fault current();

  // The fault for one answer on this path, counted off; no fault where none applies.
  Fault take(std::string_view path);

 private:
  std::mutex mutex_;
  Fault fault_;
};

}  // namespace quillpad::demo
