#include "home/page/CanvasView.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "home/page/WidgetSizes.h"

namespace quillpad::home {
namespace {

// The names of the samples that are made for what a widget shows.
std::vector<std::string> suitable(
    const std::vector<SampleFolder::Sample>& samples, const PreviewSession::Outcome& snapshot) {
  std::vector<std::string> names;
  for (const SampleFolder::Sample& sample : samples) {
    const auto entry = entryFromText(sample.text);
    if (entry && snapshot && *snapshot && suits(*entry, (*snapshot)->entry.data)) {
      names.push_back(sample.name);
    }
  }
  return names;
}

// The first sample that is no entry, and where it is wrong.
std::string wrongSample(const std::vector<SampleFolder::Sample>& samples) {
  for (const SampleFolder::Sample& sample : samples) {
    if (const auto entry = entryFromText(sample.text); !entry) {
      return "The sample " + sample.name + " is left out: " + describe(entry.error()) + ".";
    }
  }
  return "";
}

}  // namespace

LaterAnswer CanvasView::page(const Moment& now, const WebRequest& request, const PageFrame& frame) {
  CanvasModel model{.query = CanvasQuery::parse(request)};
  std::vector<PreviewSession::PendingResult> snapshots;
  for (const channel::CatalogueItem& item : supervisor_.catalogue()) {
    model.widgets.push_back(
        {.kind = item.kind,
         .displayName = item.displayName,
         .family = familyOf(item),
         .languages = item.languages,
         .samples = {}});
    PreviewSession::Job job{
        .kind = item.kind, .source = PreviewSession::Source::snapshot, .entry = {}, .locale = ""};
    snapshots.push_back(previews_.submit(now, std::move(job)));
  }
  auto samples = samples_.read();
  model.problem = samples ? wrongSample(*samples) : samples.error();
  return [model = std::move(model),
          snapshots = std::move(snapshots),
          samples = std::move(samples).value_or(std::vector<SampleFolder::Sample>()),
          frame]() -> std::optional<WebAnswer> {
    if (!std::ranges::all_of(snapshots, [](const auto& each) { return each->has_value(); })) {
      return std::nullopt;
    }
    CanvasModel complete = model;
    for (std::size_t i = 0; i < snapshots.size(); ++i) {
      complete.widgets[i].samples = suitable(samples, *snapshots[i]);
    }
    return WebAnswer{
        .contentType = "text/html; charset=utf-8",
        .body = canvasPage(complete, frame).html(),
        .headers = pageHeaders(frame)};
  };
}

}  // namespace quillpad::home
