#include "home/page/GalleryPage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "home/page/PageFiles.h"
#include "platform/foundation/Base64.h"

namespace quillpad::home {
namespace {

// Each holds its pictures, some 30 KiB.
constexpr std::size_t maxShown = 500;

Markup wholePoints(double points) { return escaped(std::to_string(std::lround(points))); }

Markup picture(const std::string& png, drawing::Size size, std::string_view caption) {
  if (png.empty()) {
    return {};
  }
  return filled(
      page::changesPictureHtml,
      {{"bytes", escaped(base64(png))},
       {"width", wholePoints(size.width)},
       {"height", wholePoints(size.height)},
       {"caption", escaped(caption)}});
}

}  // namespace

Markup galleryPage(std::span<const GalleryWidget> widgets) {
  Markup sections;
  for (const GalleryWidget& widget : widgets) {
    Markup pictures;
    for (const GalleryWidget::Picture& each : widget.pictures) {
      pictures += filled(
          page::galleryPairHtml,
          {{"stem", escaped(each.stem)},
           {"title", escaped(widget.pictures.size() == 1 ? "" : each.title)},
           {"width", wholePoints(each.size.width)},
           {"height", wholePoints(each.size.height)},
           {"label", escaped(each.accessibilityLabel)}});
    }
    sections += filled(
        page::galleryWidgetHtml,
        {{"kind", escaped(widget.kind)},
         {"name", escaped(widget.displayName)},
         {"description", escaped(widget.description)},
         {"pictures", pictures}});
  }
  return filled(page::galleryHtml, {{"widgets", sections}});
}

Markup changesPage(const std::string& summary, std::span<const PictureChange> changes) {
  Markup items;
  for (const PictureChange& change : changes.first(std::min(changes.size(), maxShown))) {
    Markup pictures = picture(change.expected, change.size, "expected");
    pictures += picture(change.actual, change.size, "actual");
    pictures += picture(change.difference, change.size, "difference");
    if (!change.expected.empty() && !change.actual.empty()) {
      Markup both = picture(change.expected, change.size, "");
      both += picture(change.actual, change.size, "");
      pictures += filled(page::changesOverlayHtml, {{"both", both}});
    }
    items += filled(
        page::changesItemHtml,
        {{"title", escaped(change.title)},
         {"file", escaped(change.fileName)},
         {"change", escaped(change.change)},
         {"pictures", pictures}});
  }
  return filled(page::changesHtml, {{"summary", escaped(summary)}, {"changes", items}});
}

}  // namespace quillpad::home
