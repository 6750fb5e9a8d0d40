#include "home/cards/WidgetSizes.h"

#include <algorithm>
#include <array>

namespace quillpad::home {
namespace {

struct Screen {
  std::string_view name;
  drawing::Size small;
  drawing::Size medium;
  drawing::Size large;
  drawing::Size circular;
  drawing::Size rectangular;
  drawing::Size oneLine;
};

constexpr std::array<Screen, 10> sizesByScreen{{
    {"393x852", {158, 158}, {338, 158}, {338, 354}, {72, 72}, {160, 72}, {234, 26}},
    {"320x568", {141, 141}, {292, 141}, {292, 311}, {68, 68}, {153, 68}, {225, 26}},
    {"360x780", {155, 155}, {329, 155}, {329, 345}, {72, 72}, {157, 72}, {225, 26}},
    {"375x667", {148, 148}, {321, 148}, {321, 324}, {68, 68}, {153, 68}, {225, 26}},
    {"375x812", {155, 155}, {329, 155}, {329, 345}, {72, 72}, {157, 72}, {225, 26}},
    {"402x874", {162, 162}, {344, 162}, {344, 366}, {72, 72}, {160, 72}, {234, 26}},
    {"414x736", {159, 159}, {348, 157}, {348, 357}, {76, 76}, {170, 76}, {248, 26}},
    {"414x896", {169, 169}, {360, 169}, {360, 379}, {76, 76}, {160, 72}, {248, 26}},
    {"430x932", {170, 170}, {364, 170}, {364, 382}, {76, 76}, {172, 76}, {257, 26}},
    {"440x956", {170, 170}, {364, 170}, {364, 382}, {76, 76}, {172, 76}, {257, 26}},
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
  switch (family) {
    case ui::WidgetFamily::systemSmall:
      return sizes.small;
    case ui::WidgetFamily::systemMedium:
      return sizes.medium;
    case ui::WidgetFamily::systemLarge:
    case ui::WidgetFamily::systemExtraLarge:  // which no phone's screen is wide enough for
      return sizes.large;
    case ui::WidgetFamily::accessoryCircular:
      return sizes.circular;
    case ui::WidgetFamily::accessoryRectangular:
      return sizes.rectangular;
    case ui::WidgetFamily::accessoryInline:
      return sizes.oneLine;
  }
  return sizes.small;
}

ui::WidgetFamily familyOf(const channel::CatalogueItem& widget) {
  return widget.families.empty() ? ui::WidgetFamily::systemSmall : widget.families.front();
}

}  // namespace quillpad::home
