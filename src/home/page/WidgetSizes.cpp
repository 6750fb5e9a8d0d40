#include "home/page/WidgetSizes.h"

#include <algorithm>
#include <array>

namespace quillpad::home {
namespace {

struct Screen {
  std::string_view name;
  drawing::Size small;
  drawing::Size medium;
};

constexpr std::array<Screen, 10> sizesByScreen{{
    {"393x852", {158, 158}, {338, 158}},
    {"320x568", {141, 141}, {292, 141}},
    {"360x780", {155, 155}, {329, 155}},
    {"375x667", {148, 148}, {321, 148}},
    {"375x812", {155, 155}, {329, 155}},
    {"402x874", {162, 162}, {344, 162}},
    {"414x736", {159, 159}, {348, 157}},
    {"414x896", {169, 169}, {360, 169}},
    {"430x932", {170, 170}, {364, 170}},
    {"440x956", {170, 170}, {364, 170}},
}};

}  // namespace

std::span<const std::string_view> screens() {
  static constexpr auto names = [] {
    std::array<std::string_view, sizesByScreen.size()> all;
    std::ranges::transform(sizesByScreen, all.begin(), &Screen::name);
    return all;
  }();
  return names;
}

drawing::Size widgetSize(ui::WidgetFamily family, std::string_view screen) {
  const auto found = std::ranges::find(sizesByScreen, screen, &Screen::name);
  const Screen& sizes = found == sizesByScreen.end() ? sizesByScreen.front() : *found;
  return family == ui::WidgetFamily::systemSmall ? sizes.small : sizes.medium;
}

ui::WidgetFamily familyOf(const channel::CatalogueItem& widget) {
  return widget.families.empty() ? ui::WidgetFamily::systemSmall : widget.families.front();
}

}  // namespace quillpad::home
