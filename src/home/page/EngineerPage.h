// The page of the engineer's view as HTML, made from what it shows. Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "home/page/Markup.h"
#include "home/page/Page.h"
#include "home/page/PreviewQuery.h"
#include "platform/paint/Card.h"
#include "platform/ui/Color.h"
#include "platform/ui/Environment.h"

namespace quillpad::home {

// One state of the widget.
struct PreviewColumn {
  struct Picture {
    ui::Appearance appearance = ui::Appearance::light;
    std::string file{};   // in the query's format
    std::string error{};  // why there is no file
  };

  EntrySource source = EntrySource::timeline;
  std::string date{};                         // of the entry
  std::string reason{};                       // why there is nothing to show
  std::optional<drawing::Inspection> card{};  // what the pictures show
  std::vector<Picture> pictures{};
};

struct EngineerModel {
  PreviewQuery query{};
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  std::vector<std::string> kinds{};
  std::vector<std::string> languages{};
  std::vector<PreviewColumn> columns{};
  std::string sampleEntry{};  // for the empty field of one's own entry
  std::vector<std::string> samples{};
  std::string entryText{};    // that is being worked on
  std::size_t wrongLine = 0;  // of it; 0: none
  std::string displayList{};  // of the source that the query names, as JSON
};

Markup engineerPage(const EngineerModel& model, const PageFrame& frame);

}  // namespace quillpad::home
