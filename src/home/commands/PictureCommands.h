// The commands that draw: render, tree, gallery.
#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "home/commands/WidgetCommands.h"
#include "home/extension/ExtensionClient.h"
#include "home/extension/Failure.h"
#include "home/page/CardRenderer.h"
#include "home/page/GalleryPage.h"
#include "platform/text/Geometry.h"
#include "platform/ui/Color.h"
#include "platform/ui/Environment.h"

namespace quillpad::home {

// Which entry of a widget is drawn, and as which family.
struct ViewChoice {
  std::string kind;
  EntryState state = EntryState::timeline;
  std::string entryFile;                   // an entry of one's own in place of the state's
  std::optional<ui::WidgetFamily> family;  // absent: the kind's own
};

struct RenderChoice {
  ViewChoice view;
  std::string output;  // a file, or "-" for standard output
  PictureFormat format = PictureFormat::png;
  ui::Appearance appearance = ui::Appearance::light;
  int scale = 2;
  std::optional<drawing::Size> size;  // absent: the family's on the default screen
};

Done render(ExtensionClient& extension, const RenderChoice& choice);

// Prints the view tree of the entry.
Done tree(ExtensionClient& extension, const ViewChoice& choice);

// A picture of a gallery.
struct GalleryCard {
  std::string fileName;
  std::string title;   // of the widget, with the appearance
  drawing::Size size;  // in points
  std::string bytes;   // of the PNG file
};

struct Gallery {
  std::vector<GalleryCard> cards;
  GalleryPage page;
};

// Every widget of the catalogue in light and in dark appearance.
std::expected<Gallery, Failure> drawGallery(
    ExtensionClient& extension, EntryState state, int scale);

struct GalleryChoice {
  std::filesystem::path folder;
  EntryState state = EntryState::timeline;
  int scale = 2;
};

// Writes such pictures, with a page that shows them.
Done gallery(ExtensionClient& extension, const GalleryChoice& choice);

}  // namespace quillpad::home
