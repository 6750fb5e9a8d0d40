// The pictures of a canvas as one zip file, drawn one after the other while it is sent: one picture
// is in memory at a time, and whoever drives the loop gets a turn after each. What cannot be drawn
// is listed in a text at the archive's end. Belongs to one thread.
#pragma once

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "home/page/EngineerView.h"
#include "home/page/PreviewQuery.h"
#include "platform/foundation/ZipWriter.h"

namespace quillpad::home {

class CanvasArchive {
 public:
  // The pictures in an order in which those of one view follow each other. The view must outlive
  // the archive.
  CanvasArchive(EngineerView& engineer, std::vector<PreviewQuery> pictures);

  // As FileStream takes it.
  std::optional<std::string> nextPiece();

 private:
  std::string drawn(
      const PreviewQuery& picture,
      const std::expected<PreviewSession::Result, std::string>& outcome);
  std::string end();

  EngineerView& engineer_;
  std::vector<PreviewQuery> pictures_;
  std::size_t next_ = 0;
  PreviewSession::PendingResult view_;  // of the next picture; null where it is not asked for yet
  ZipWriter zip_;
  std::string notDrawn_;
  bool ended_ = false;
};

}  // namespace quillpad::home
