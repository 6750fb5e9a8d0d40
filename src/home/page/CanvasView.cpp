#include "home/page/CanvasView.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "home/cards/WidgetSizes.h"
#include "home/page/CanvasArchive.h"

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
std::string wrongSample(
    const std::vector<SampleFolder::Sample>& samples, const Language& language) {
  for (const SampleFolder::Sample& sample : samples) {
    if (const auto entry = entryFromText(sample.text); !entry) {
      return language.text(
          "The sample {1} is left out: {2}.", {sample.name, describe(entry.error())});
    }
  }
  return "";
}

}  // namespace

CanvasView::LaterModel CanvasView::model(
    const Moment& now, const WebRequest& request, const Language& language) {
  CanvasModel model{.query = CanvasQuery::parse(request)};
  std::vector<PreviewSession::PendingResult> snapshots;
  for (const channel::CatalogueItem& item : supervisor_.catalogue()) {
    model.widgets.push_back(
        {.kind = item.kind,
         .displayName = item.displayName,
         .family = familyOf(item),
         .languages = item.languages,
         .samples = {}});
    snapshots.push_back(
        previews_.submit(now, {.kind = item.kind, .source = EntrySource::snapshot}));
  }
  auto samples = samples_.read();
  model.problem = samples ? wrongSample(*samples, language)
                          : language.text("This cannot be shown: {1}.", {samples.error()});
  return [model = std::move(model),
          snapshots = std::move(snapshots),
          samples = std::move(samples).value_or(
              std::vector<SampleFolder::Sample>())]() -> std::optional<CanvasModel> {
    if (!std::ranges::all_of(snapshots, [](const auto& each) { return each->has_value(); })) {
      return std::nullopt;
    }
    CanvasModel complete = model;
    for (std::size_t i = 0; i < snapshots.size(); ++i) {
      complete.widgets[i].samples = suitable(samples, *snapshots[i]);
    }
    return complete;
  };
}

LaterAnswer CanvasView::page(const Moment& now, const WebRequest& request, const PageFrame& frame) {
  return {[later = model(now, request, frame.language), frame]() -> std::optional<WebAnswer> {
    const auto model = later();
    if (!model) {
      return std::nullopt;
    }
    return pageAnswer(canvasPage(*model, frame), frame);
  }};
}

WebReply CanvasView::archive(const Moment& now, const WebRequest& request) {
  constexpr long maxArchives = 4;
  if (archives_.use_count() > maxArchives) {
    return WebAnswer{
        .status = 503, .body = "Other archives are being made. Try again in a moment.\n"};
  }
  return FileStream{
      .contentType = "application/zip",
      .headers = {{"Content-Disposition", "attachment; filename=\"quillpad-canvas.zip\""}},
      .nextPiece = [this,
                    later = model(now, request, {}),
                    archive = std::shared_ptr<CanvasArchive>(),
                    held = archives_]() mutable -> std::optional<std::string> {
        if (!archive) {
          const auto model = later();
          if (!model) {
            return std::nullopt;
          }
          archive = std::make_shared<CanvasArchive>(engineer_, canvasPictures(*model));
        }
        return archive->nextPiece();
      }};
}

}  // namespace quillpad::home
