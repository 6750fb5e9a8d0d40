#include "home/page/Page.h"

#include <chrono>

#include "home/cards/WidgetSizes.h"
#include "home/extension/Links.h"
#include "home/page/PageFiles.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/LocalTime.h"
#include "platform/foundation/Locale.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;

Markup timeMarkup(std::string_view says, Date date, const std::string& words) {
  return filled(
      page::timeHtml,
      {{"says", escaped(says)}, {"date", escaped(iso8601(date))}, {"words", escaped(words)}});
}

// The time of day, with the date where that is another day. The page's script words it as people of
// its language do.
std::string clockText(Date date, Date now) {
  const char* day = "%Y-%m-%d";
  const bool isToday = localTimeText(date, day) == localTimeText(now, day);
  return localTimeText(date, isToday ? "%H:%M" : "%Y-%m-%d %H:%M");
}

Markup ageMarkup(const CardFace& face, const Language& language, Date now) {
  if (!face.updated) {
    return {};
  }
  const std::string clock = clockText(*face.updated, now);
  if (!face.failingSince) {
    return timeMarkup("updated", *face.updated, language.text("updated {1}", {clock}));
  }
  return filledIn(
      language.text("as of {1}, gateway not reachable since {2}"),
      {timeMarkup("clock", *face.updated, clock),
       timeMarkup("clock", *face.failingSince, clockText(*face.failingSince, now))});
}

Markup reloadMarkup(Date reload, const Language& language, Date now) {
  return timeMarkup(
      "reloads",
      reload,
      now - reload > 1min ? language.text("reload overdue")
                          : language.text("reloads {1}", {clockText(reload, now)}));
}

Markup timesMarkup(
    const CardModel& card, const CardFace& face, const Language& language, Date now) {
  Markup times;
  const auto add = [&times](std::string_view name, const Markup& part) {
    if (!part.empty()) {
      times += filled(
          page::timesPartHtml,
          {{"name", escaped(name)},
           {"separator", escaped(times.empty() ? "" : "\u00a0· ")},
           {"part", part}});
    }
  };
  add("age", ageMarkup(face, language, now));
  if (card.slowSince) {
    const std::string clock = localTimeText(*card.slowSince, "%H:%M:%S");
    add("next",
        filledIn(
            language.text("asking since {1}"), {timeMarkup("second", *card.slowSince, clock)}));
  } else if (card.reload) {
    add("next", reloadMarkup(*card.reload, language, now));
  }
  add("note", escaped(face.status.note));
  return times;
}

Markup directionOf(std::string_view language) {
  return escaped(isRightToLeft(std::string(language)) ? "rtl" : "ltr");
}

std::string sizeName(const channel::CatalogueItem& about, const Language& language) {
  switch (familyOf(about)) {
    case ui::WidgetFamily::systemSmall:
      return language.text("Small");
    case ui::WidgetFamily::systemMedium:
      return language.text("Medium");
    case ui::WidgetFamily::systemLarge:
      return language.text("Large");
    case ui::WidgetFamily::systemExtraLarge:
      return language.text("Extra large");
    case ui::WidgetFamily::accessoryCircular:
      return language.text("Circular");
    case ui::WidgetFamily::accessoryRectangular:
      return language.text("Rectangular");
    case ui::WidgetFamily::accessoryInline:
      return language.text("Inline");
  }
  return "";
}

Markup faceMarkup(
    const CardModel& card,
    const CardFace& face,
    const Markup& onPhone,
    const PageFrame& frame,
    Date now) {
  const Language& language = frame.language;
  const std::string& name = card.about->displayName;
  const std::string size = sizeName(*card.about, language);
  const bool linked = face.drawing != nullptr && face.drawing->link &&
                      leadsToApplication(*card.about, *face.drawing->link);
  Markup badge;
  if (!face.status.badge.empty()) {
    badge = filled(
        page::badgeHtml,
        {{"badge", escaped(face.status.badge)},
         {"name", escaped(name)},
         {"cause", escaped(face.status.cause)}});
  }
  return filled(
      page::cardHtml,
      {{"family", escaped(ui::familyName(familyOf(*card.about)))},
       {"kept", escaped(face.failingSince ? " kept" : "")},
       {"awaited", escaped(card.awaited ? " awaited" : "")},
       {"kind", escaped(card.about->kind)},
       {"status", escaped(levelName(face.status.level))},
       {"reload", escaped(card.reload ? iso8601(*card.reload) : "")},
       {"element", escaped(linked ? "a" : "div")},
       {"link",
        linked ? filled(page::linkHtml, {{"link", escaped(*face.drawing->link)}}) : Markup{}},
       {"picture", face.drawing == nullptr ? Markup{} : face.drawing->picture},
       {"badge", badge},
       {"name", escaped(name)},
       {"language", escaped(frame.cardLanguage)},
       {"direction", directionOf(frame.cardLanguage)},
       {"again", escaped(language.text("Reload {1}, {2}", {name, size}))},
       {"move", escaped(language.text("Move {1}, {2}", {name, size}))},
       {"times", timesMarkup(card, face, language, now)},
       {"onPhone", onPhone}},
      language);
}

}  // namespace

Markup framed(const PageParts& parts, const PageFrame& frame) {
  const std::string script = std::string(page::textsJs) + parts.script;
  return filled(
      page::pageHtml,
      {{"language", escaped(frame.language.tag())},
       {"direction", directionOf(frame.language.tag())},
       {"view", escaped(parts.view)},
       {"token", escaped(frame.token)},
       {"instance", escaped(frame.instance)},
       {"version", escaped(std::to_string(frame.version))},
       {"title", escaped(parts.title)},
       {"nonce", escaped(frame.nonce)},
       {"style", trusted(std::string(page::styleCss))},
       {"viewStyle", trusted(parts.style)},
       {"appearanceScript", trusted(std::string(page::appearanceJs))},
       {"body", parts.body},
       {"texts", textsOf(script, frame.language)},
       {"script", trusted(script)}});
}

Markup cardMarkup(const CardModel& card, const PageFrame& frame, Date now) {
  Markup onPhone;
  if (card.onPhone) {
    onPhone = filled(
        page::onPhoneHtml, {{"card", faceMarkup(card, *card.onPhone, Markup{}, frame, now)}});
  }
  return faceMarkup(card, card.face, onPhone, frame, now);
}

Markup homePage(const HomeModel& model, const PageFrame& frame, Date now) {
  Markup cards;
  for (const CardModel& card : model.cards) {
    cards += cardMarkup(card, frame, now);
  }
  const bool wall = model.view == HomeView::wall;
  std::string script;
  for (const std::string_view part :
       {page::eventsJs,
        page::homeJs,
        page::stateJs,
        page::tapJs,
        wall ? page::wallJs : page::orderJs}) {
    script += part;
  }
  const Markup body = filled(
      page::homeHtml,
      {{"notice", escaped(frame.notice)},
       {"cards", cards},
       {"empty", escaped(model.empty)},
       {"engineer", escaped(addressOf("engineer", frame))},
       {"canvas", escaped(addressOf("canvas", frame))}},
      frame.language);
  return framed(
      {.view = wall ? "wall" : "desk",
       .title = frame.language.text("Quillpad home screen"),
       .style = std::string(wall ? page::wallCss : ""),
       .body = body,
       .script = std::move(script)},
      frame);
}

Markup galleryMarkup(const std::vector<OfferModel>& offers, const PageFrame& frame) {
  const Language& language = frame.language;
  Markup markup;
  for (const OfferModel& offer : offers) {
    const std::string& name = offer.about->displayName;
    const std::string size = sizeName(*offer.about, language);
    markup += filled(
        page::galleryItemHtml,
        {{"picture",
          offer.drawing == nullptr ? escaped(language.text("No picture yet"))
                                   : offer.drawing->picture},
         {"name", escaped(name)},
         {"size", escaped(size)},
         {"description", escaped(offer.about->description)},
         {"language", escaped(frame.cardLanguage)},
         {"direction", directionOf(frame.cardLanguage)},
         {"action", escaped(offer.placed ? "remove" : "place")},
         {"kind", escaped(offer.about->kind)},
         {"label",
          escaped(language.text(offer.placed ? "Remove {1}, {2}" : "Add {1}, {2}", {name, size}))},
         {"word", escaped(language.text(offer.placed ? "Remove" : "Add"))}});
  }
  return markup;
}

Markup problemPage(const std::string& problem, const PageFrame& frame) {
  const Markup body = filled(
      page::problemHtml,
      {{"problem", escaped(problem)},
       {"engineer", escaped(addressOf("engineer", frame))},
       {"home", escaped(addressOf("", frame))}},
      frame.language);
  return framed(
      {.view = "problem", .title = frame.language.text("Quillpad home screen"), .body = body},
      frame);
}

std::string addressOf(std::string_view view, const PageFrame& frame) {
  std::string address = "/";
  for (const auto& [name, value] :
       {std::pair<std::string_view, std::string_view>{"view", view},
        {"lang", frame.chosenLanguage}}) {
    if (!value.empty()) {
      address += address.size() == 1 ? '?' : '&';
      address.append(name).append("=").append(value);
    }
  }
  return address;
}

Markup languageField(const PageFrame& frame) {
  return frame.chosenLanguage.empty()
             ? Markup()
             : filled(page::languageFieldHtml, {{"language", escaped(frame.chosenLanguage)}});
}

WebAnswer pageAnswer(Markup page, const PageFrame& frame, int status) {
  WebAnswer answer = htmlAnswer(std::move(page));
  answer.status = status;
  answer.headers = {
      {"Content-Security-Policy",
       "default-src 'none'; style-src 'nonce-" + frame.nonce + "'; script-src 'nonce-" +
           frame.nonce +
           "'; img-src 'self' data:; connect-src 'self'; form-action 'self'; base-uri 'none'; "
           "frame-ancestors 'none'"},
      {"Set-Cookie", frame.cookie}};
  return answer;
}

WebAnswer htmlAnswer(Markup part) {
  return {.contentType = "text/html; charset=utf-8", .body = std::move(part).html()};
}

}  // namespace quillpad::home
