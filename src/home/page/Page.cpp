#include "home/page/Page.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "home/page/PageFiles.h"
#include "home/page/WidgetSizes.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/URL.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

// "4 min", "2 h", "3 d"; nothing below a minute.
std::string inWords(std::chrono::milliseconds time) {
  if (time >= 24h) {
    return std::to_string(time / 24h) + " d";
  }
  if (time >= 1h) {
    return std::to_string(time / 1h) + " h";
  }
  if (time >= 1min) {
    return std::to_string(time / 1min) + " min";
  }
  return "";
}

Markup timeMarkup(std::string_view says, Date date, const std::string& words) {
  return filled(
      page::timeHtml,
      {{"says", escaped(says)}, {"date", escaped(iso8601(date))}, {"words", escaped(words)}});
}

Markup timesMarkup(const CardModel& card, Date now) {
  Markup times;
  if (card.updated) {
    const std::string age = inWords(now - *card.updated);
    times = timeMarkup("updated", *card.updated, age.empty() ? "just now" : age + " ago");
  }
  if (card.reload) {
    const std::string left = inWords(*card.reload - now + 30s);
    times += escaped(times.empty() ? "" : " · ");
    times += timeMarkup(
        "reloads",
        *card.reload,
        now - *card.reload > 1min ? "reload overdue"
        : left.empty()            ? "reloads now"
                                  : "reloads in " + left);
  }
  if (!card.status.note.empty()) {
    times += escaped(times.empty() ? "" : " · ");
    times += escaped(card.status.note);
  }
  return times;
}

Markup pictureOf(const DrawnCard* drawing) {
  return drawing == nullptr ? Markup{} : drawing->picture;
}

}  // namespace

Markup cardMarkup(const CardModel& card, Date now) {
  const Markup name = escaped(card.about->displayName);
  const bool linked =
      card.drawing != nullptr && card.drawing->link && leadsToApplication(*card.drawing->link);
  Markup badge;
  if (!card.status.badge.empty()) {
    badge = filled(
        page::badgeHtml,
        {{"badge", escaped(card.status.badge)},
         {"name", name},
         {"cause", escaped(card.status.cause)}});
  }
  return filled(
      page::cardHtml,
      {{"family", escaped(ui::familyName(familyOf(*card.about)))},
       {"kind", escaped(card.about->kind)},
       {"status", escaped(levelName(card.status.level))},
       {"element", escaped(linked ? "a" : "div")},
       {"link",
        linked ? filled(page::linkHtml, {{"link", escaped(*card.drawing->link)}}) : Markup{}},
       {"picture", pictureOf(card.drawing)},
       {"badge", badge},
       {"name", name},
       {"times", timesMarkup(card, now)}});
}

Markup homePage(const HomeModel& model, const PageFrame& frame, Date now) {
  Markup cards;
  for (const CardModel& card : model.cards) {
    cards += cardMarkup(card, now);
  }
  return filled(
      page::homeHtml,
      {{"direction", escaped(frame.rightToLeft ? "rtl" : "ltr")},
       {"token", escaped(frame.token)},
       {"instance", escaped(frame.instance)},
       {"version", escaped(std::to_string(model.version))},
       {"nonce", escaped(frame.nonce)},
       {"style", trusted(std::string(page::styleCss))},
       {"appearanceScript", trusted(std::string(page::appearanceJs))},
       {"notice", escaped(model.notice)},
       {"cards", cards},
       {"empty", escaped(model.empty)},
       {"script", trusted(std::string(page::homeJs))}});
}

Markup galleryMarkup(const std::vector<OfferModel>& offers) {
  Markup markup;
  for (const OfferModel& offer : offers) {
    const std::string& name = offer.about->displayName;
    const bool small = familyOf(*offer.about) == ui::WidgetFamily::systemSmall;
    const std::string word = offer.placed ? "Remove" : "Add";
    std::string label = word;
    label.append(" ").append(name).append(small ? ", small" : ", medium");
    markup += filled(
        page::galleryItemHtml,
        {{"picture", pictureOf(offer.drawing)},
         {"name", escaped(name)},
         {"size", escaped(small ? "Small" : "Medium")},
         {"description", escaped(offer.about->description)},
         {"action", escaped(offer.placed ? "remove" : "place")},
         {"kind", escaped(offer.about->kind)},
         {"label", escaped(label)},
         {"word", escaped(word)}});
  }
  return markup;
}

std::string contentPolicy(const std::string& nonce) {
  return "default-src 'none'; style-src 'nonce-" + nonce + "'; script-src 'nonce-" + nonce +
         "'; img-src 'self' data:; connect-src 'self'; form-action 'self'; base-uri 'none'; "
         "frame-ancestors 'none'";
}

bool leadsToApplication(std::string_view link) {
  static constexpr std::array<std::string_view, 12> browsers{
      "about",
      "blob",
      "chrome",
      "data",
      "file",
      "filesystem",
      "ftp",
      "http",
      "https",
      "javascript",
      "vbscript",
      "view-source"};
  const auto url = URL::parse(link);
  if (!url || url->scheme().empty()) {
    return false;
  }
  std::string scheme = url->scheme();
  std::ranges::transform(scheme, scheme.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return std::ranges::find(browsers, scheme) == browsers.end();
}

}  // namespace quillpad::home
