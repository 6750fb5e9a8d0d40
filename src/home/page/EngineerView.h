// The engineer's view: one widget's placeholder, snapshot, timeline entry and an entry typed by
// hand side by side, on the screen, at the scale and in the language of one's choice, with what the
// layout made of them. Every choice stands in the address.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/extension/PreviewSession.h"
#include "home/extension/Supervisor.h"
#include "home/page/CardRenderer.h"
#include "home/page/Markup.h"
#include "home/page/Page.h"
#include "home/server/WebServer.h"
#include "platform/paint/DisplayList.h"

namespace quillpad::home {

// What the address chooses; what it lacks or gets wrong has its usual value.
struct EngineerChoice {
  channel::CatalogueItem widget;
  std::string screen;      // the name of a screen
  drawing::Size size;      // of the widget on it
  std::string appearance;  // "both", "light" or "dark"
  int scale = 2;
  std::string format;    // "svg" or "png"
  std::string language;  // a locale's identifier; empty: that of the home screen
  bool boxes = false;
  std::string state;  // whose details are shown: "placeholder", "snapshot", "timeline" or "entry"
  std::string entry;  // as it was typed
};

class EngineerView {
 public:
  // All must outlive the view.
  EngineerView(
      const Supervisor& supervisor,
      PreviewSession& previews,
      CardRenderer& cards,
      std::string locale)
      : supervisor_(supervisor), previews_(previews), cards_(cards), locale_(std::move(locale)) {}

  // The page that the request's choices make.
  LaterAnswer page(const Moment& now, const WebRequest& request, PageFrame frame);

  // One picture of it as a file to keep.
  LaterAnswer picture(const Moment& now, const WebRequest& request, PictureFormat format);

 private:
  struct Column {
    std::string state;
    std::string title;
    std::string problem;  // why nothing was asked for; empty where a result is pending
    PreviewSession::PendingResult pending;

    bool isDone() const { return pending == nullptr || pending->has_value(); }
    // What there is to show; nullptr where there is nothing, or not yet.
    const PreviewSession::Result* result() const;
    // Why there is nothing to show.
    std::string reason() const;
  };

  std::optional<EngineerChoice> choiceOf(const WebRequest& request) const;
  Column column(const Moment& now, const EngineerChoice& choice, const std::string& state);
  drawing::DisplayList compose(const EngineerChoice& choice, const ui::View& view);

  Markup render(
      const EngineerChoice& choice, const std::vector<Column>& columns, const PageFrame& frame);
  Markup columnMarkup(const EngineerChoice& choice, const Column& column);
  Markup pictureMarkup(
      const EngineerChoice& choice,
      const Column& column,
      const drawing::DisplayList& list,
      ui::Appearance appearance);
  Markup detailsMarkup(const EngineerChoice& choice, const std::vector<Column>& columns);

  const Supervisor& supervisor_;
  PreviewSession& previews_;
  CardRenderer& cards_;
  std::string locale_;
};

}  // namespace quillpad::home
