#include "home/page/CanvasArchive.h"

#include <utility>

#include "home/page/CanvasPage.h"

namespace quillpad::home {
namespace {

bool showSameView(const PreviewQuery& one, const PreviewQuery& other) {
  return one.kind == other.kind && one.source == other.source && one.start == other.start &&
         one.language == other.language && one.currency == other.currency;
}

}  // namespace

CanvasArchive::CanvasArchive(EngineerView& engineer, std::vector<PreviewQuery> pictures)
    : engineer_(engineer), pictures_(std::move(pictures)) {
  if (pictures_.size() > maxCanvasPictures) {
    pictures_.resize(maxCanvasPictures);
    notDrawn_ = "There are more than " + std::to_string(maxCanvasPictures) +
                " pictures; choose fewer on the canvas to have the rest.\n";
  }
}

std::optional<std::string> CanvasArchive::nextPiece() {
  while (next_ < pictures_.size()) {
    const PreviewQuery& picture = pictures_[next_];
    if (!view_) {
      view_ = engineer_.view(presentMoment(), picture);
    }
    const PreviewSession::Outcome& outcome = *view_;
    if (!outcome) {
      return std::nullopt;
    }
    std::string piece = drawn(picture, *outcome);
    ++next_;
    if (next_ == pictures_.size() || !showSameView(picture, pictures_[next_])) {
      view_.reset();
    }
    if (!piece.empty()) {
      return piece;
    }
  }
  return std::exchange(ended_, true) ? "" : end();
}

// The picture's part of the archive; empty where it cannot be drawn, which is noted.
std::string CanvasArchive::drawn(
    const PreviewQuery& picture,
    const std::expected<PreviewSession::Result, std::string>& outcome) {
  const std::string name = EngineerView::fileName(picture, PictureFormat::png);
  auto file = outcome ? engineer_.draw(picture, outcome->view, PictureFormat::png)
                      : std::unexpected(outcome.error());
  if (file) {
    if (auto head = zip_.add(name, *file)) {
      return *head + *file;
    }
    file = std::unexpected("the archive would be too large");
  }
  notDrawn_ += name + ": " + file.error() + "\n";
  return "";
}

std::string CanvasArchive::end() {
  std::string piece;
  if (!notDrawn_.empty()) {
    piece = zip_.add("not-drawn.txt", notDrawn_).value_or("");
    piece += piece.empty() ? "" : notDrawn_;
  }
  return piece + zip_.end();
}

}  // namespace quillpad::home
