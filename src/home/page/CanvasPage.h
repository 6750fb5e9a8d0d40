// The canvas: every variant of every widget on one page, each a picture that the browser asks for
// when it comes into sight, and a link into the engineer's view. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "home/page/Markup.h"
#include "home/page/Page.h"
#include "home/page/PreviewQuery.h"
#include "home/server/WebMessages.h"
#include "platform/text/Geometry.h"
#include "platform/ui/Environment.h"

namespace quillpad::home {

// Which variants the canvas shows. A plain value; what an address lacks has its usual value.
struct CanvasQuery {
  static constexpr const char* everything = "all";

  std::string kind{};    // empty: all
  std::string entry{};   // a source's or a sample's name; empty: all
  std::string screen{};  // empty: the default one
  std::string language{};
  ui::Appearance appearance = ui::Appearance::unspecified;  // both
  std::string currency{};
  int scale = 2;  // of the archive's pictures

  static CanvasQuery parse(const WebRequest& request);

  // The path with what is chosen.
  std::string toUrl(std::string_view path) const;
};

struct CanvasModel {
  struct Widget {
    std::string kind;
    std::string displayName;
    ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
    std::vector<std::string> languages;
    std::vector<std::string> samples;  // those that are made for it
  };

  CanvasQuery query{};
  std::vector<Widget> widgets{};
  std::string problem{};  // why there are no samples; empty where there are
};

// So many are shown, or put into an archive.
inline constexpr std::size_t maxCanvasPictures = 20'000;

// One variant.
struct CanvasCell {
  PreviewQuery query;
  drawing::Size size;
};

// The variants of a widget's entry that the query chooses, under the entry's name.
struct CanvasRow {
  std::string entry;
  EntrySource source = EntrySource::given;
  std::vector<CanvasCell> cells;
};
std::vector<CanvasRow> canvasRows(const CanvasQuery& query, const CanvasModel::Widget& widget);

// All pictures of the canvas, those of one view one after the other; where there are more than
// maxCanvasPictures, those of the first widgets, which are more.
std::vector<PreviewQuery> canvasPictures(const CanvasModel& model);

Markup canvasPage(const CanvasModel& model, const PageFrame& frame);

}  // namespace quillpad::home
