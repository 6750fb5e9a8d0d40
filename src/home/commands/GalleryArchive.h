// All pictures of a gallery in one zip file, each under a name that tells all of it.
#pragma once

#include <filesystem>

#include "home/commands/Failure.h"
#include "home/commands/GalleryPlan.h"

namespace quillpad::home {

// Draws the plan's cards in both appearances into the file, which is there whole or not at all.
Done writeGalleryArchive(const GalleryPlan& plan, const std::filesystem::path& file);

}  // namespace quillpad::home
