// Compares a gallery, drawn again, with its recording.
#pragma once

#include <string>

#include "home/commands/Failure.h"
#include "home/commands/GalleryFolder.h"
#include "home/commands/GalleryPlan.h"

namespace quillpad::home {

struct GalleryCheck {
  drawing::Tolerance tolerance{};
  std::string shownIn{};   // the folder of a page that shows what changed; empty: none
  bool accepts = false;    // whether the recording takes the changes over
  std::string accepted{};  // the one picture of which it does; empty: all
};

// Prints what changed; a failure where something did that is not accepted, or was not drawn.
Done checkGallery(GalleryPlan plan, const GalleryFolder& folder, const GalleryCheck& check);

}  // namespace quillpad::home
