// The page about the extension's process as HTML, made from what it shows. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "home/extension/ProcessLog.h"
#include "home/extension/WidgetRecord.h"
#include "home/page/Markup.h"
#include "home/page/Page.h"

namespace quillpad::home {

struct ProcessModel {
  // A widget and the timelines that it was asked for in the last 24 hours.
  struct Budget {
    std::string kind;
    std::size_t timelines = 0;
  };

  bool runs = false;
  std::size_t privateBytes = 0;
  std::size_t limitBytes = 0;
  bool switchboard = false;                                 // whether faults can be switched
  std::vector<std::pair<Purpose, std::string>> underWay{};  // what is asked, of which kind
  std::vector<Budget> budgets{};
  ProcessLog log{};
};

Markup processPage(const ProcessModel& model, const PageFrame& frame);

}  // namespace quillpad::home
