#include "home/page/GalleryPage.h"

#include <cmath>

#include "home/page/PageFiles.h"
#include "platform/foundation/Base64.h"

namespace quillpad::home {
namespace {

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
    sections += filled(
        page::galleryWidgetHtml,
        {{"kind", escaped(widget.kind)},
         {"name", escaped(widget.displayName)},
         {"description", escaped(widget.description)},
         {"width", wholePoints(widget.size.width)},
         {"height", wholePoints(widget.size.height)},
         {"label", escaped(widget.accessibilityLabel)}});
  }
  return filled(page::galleryHtml, {{"widgets", sections}});
}

Markup changesPage(const std::string& summary, std::span<const PictureChange> changes) {
  Markup items;
  for (const PictureChange& change : changes) {
    Markup pictures = picture(change.expected, change.size, "expected");
    pictures += picture(change.actual, change.size, "actual");
    pictures += picture(change.difference, change.size, "difference");
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
