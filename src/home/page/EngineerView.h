// The engineer's view: one widget's placeholder, snapshot, timeline entry and an entry typed by
// hand side by side, on the screen, at the scale and in the language of one's choice, with what the
// layout made of them. Every choice is in the address. Belongs to one thread.
#pragma once

#include <expected>
#include <string>
#include <vector>

#include "home/cards/CardRenderer.h"
#include "home/cards/Samples.h"
#include "home/extension/PreviewSession.h"
#include "home/extension/Supervisor.h"
#include "home/page/EngineerPage.h"
#include "home/page/Page.h"
#include "home/page/PreviewQuery.h"
#include "home/server/WebMessages.h"
#include "platform/paint/Card.h"

namespace quillpad::home {

class EngineerView {
 public:
  // All must outlive the view.
  EngineerView(
      const Supervisor& supervisor,
      PreviewSession& previews,
      CardRenderer& cards,
      SampleFolder samples,
      std::string locale)
      : supervisor_(supervisor),
        previews_(previews),
        cards_(cards),
        samples_(std::move(samples)),
        locale_(std::move(locale)) {}

  // The page that the request's choices make, or one that leads back from a widget that is not.
  WebReply page(const Moment& now, const WebRequest& request, const PageFrame& frame);

  // One picture of it as a file to keep.
  WebReply picture(const Moment& now, const WebRequest& request, PictureFormat format);

  // What the query's picture shows, once it has come, or why there is nothing.
  PreviewSession::PendingResult view(const Moment& now, const PreviewQuery& query);

  // That picture, or one line that says why it cannot be drawn; and how its file is called.
  std::expected<std::string, std::string> draw(
      const PreviewQuery& query, const ui::View& view, PictureFormat format);
  static std::string fileName(const PreviewQuery& query, PictureFormat format);

 private:
  // A state of the widget: what there is to show, or why there is nothing, once it has come.
  struct Column {
    EntrySource source = EntrySource::timeline;
    PreviewSession::PendingResult pending;
    std::size_t wrongLine = 0;  // of one's own entry, where that is wrong

    bool isDone() const { return pending->has_value(); }
    // Of a column that is done.
    const std::expected<PreviewSession::Result, std::string>& outcome() const {
      return **pending;  // NOLINT(bugprone-unchecked-optional-access): see isDone()
    }
  };

  // The widget that the query names, whose kind and languages the query then has; nullptr where
  // there is none.
  const channel::CatalogueItem* choose(PreviewQuery& query) const;
  Column column(
      const Moment& now, const PreviewQuery& query, EntrySource source, const Language& language);
  std::expected<channel::Entry, std::string> liveEntry(
      const std::string& kind, const Language& language) const;
  // What the editor holds: what was typed, or what it starts from.
  std::expected<std::string, std::string> editedText(
      const PreviewQuery& query, const Language& language) const;
  std::expected<channel::Entry, EntryProblem> entryOf(
      const PreviewQuery& query, EntrySource source, const Language& language) const;
  std::string localeOf(const PreviewQuery& query) const;
  EngineerModel modelOf(
      const PreviewQuery& query,
      const channel::CatalogueItem& widget,
      const std::vector<Column>& columns);
  PreviewColumn shown(
      const PreviewQuery& query, const channel::CatalogueItem& widget, const Column& column);

  const Supervisor& supervisor_;
  PreviewSession& previews_;
  CardRenderer& cards_;
  SampleFolder samples_;
  std::string locale_;
};

}  // namespace quillpad::home
