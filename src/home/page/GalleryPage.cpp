#include "home/page/GalleryPage.h"

#include <cmath>

#include "home/page/Markup.h"

namespace quillpad::home {
namespace {

constexpr const char* pageStart = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Quillpad Widgets</title>
<style>
  :root { color-scheme: light dark; }
  body { margin: 0; font: 15px/1.4 Inter, system-ui, sans-serif; background: Canvas; color: CanvasText; }
  header, section { max-width: 860px; margin: 0 auto; padding: 20px 24px; }
  h1 { font-size: 26px; font-weight: 600; margin: 16px 0 0; }
  h2 { font-size: 17px; font-weight: 600; margin: 0; }
  p { margin: 2px 0 14px; opacity: .7; }
  .pair { display: flex; flex-wrap: wrap; border-radius: 28px; overflow: hidden; }
  .pair div { flex: 1 1 0; display: flex; justify-content: center; padding: 28px 20px; }
  .light { background: linear-gradient(160deg, #dfe7f1, #c3d2e4); }
  .dark { background: linear-gradient(160deg, #2b3442, #10151d); }
  img { display: block; border-radius: 22px; box-shadow: 0 6px 20px rgb(0 0 0 / .18); }
</style>
<header><h1>Quillpad Widgets</h1></header>
)";

std::string picture(const GalleryPage::Widget& widget, const std::string& appearance) {
  const auto pixels = [](double points) { return std::to_string(std::lround(points)); };
  return "    <div class=\"" + appearance + "\"><img src=\"" + escaped(widget.kind).html + "-" +
         appearance + ".png\" width=\"" + pixels(widget.size.width) + "\" height=\"" +
         pixels(widget.size.height) + "\" alt=\"" + escaped(widget.accessibilityLabel).html +
         "\"></div>\n";
}

}  // namespace

std::string GalleryPage::html() const {
  std::string page = pageStart;
  for (const Widget& widget : widgets) {
    page += "<section id=\"" + escaped(widget.kind).html + "\">\n";
    page += "  <h2>" + escaped(widget.displayName).html + "</h2>\n";
    page += "  <p>" + escaped(widget.description).html + "</p>\n";
    page += "  <div class=\"pair\">\n";
    page += picture(widget, "light") + picture(widget, "dark");
    page += "  </div>\n</section>\n";
  }
  return page;
}

}  // namespace quillpad::home
