#include <gmock/gmock.h>

#include "fixtures/ScopedVariable.h"
#include "home/extension/Links.h"
#include "home/page/Page.h"
#include "platform/foundation/Iso8601.h"

namespace quillpad::home {
namespace {

using testing::HasSubstr;
using testing::Not;

const Date noon = *dateFromIso8601("2026-03-07T12:00:00.000Z");

TEST(Page, NamesAreTextWhateverTheyHold) {
  const channel::CatalogueItem item{
      .kind = "\"><script>kind()</script>",
      .displayName = "<img src=x onerror=name()> {{link}}",
      .description = "</p>&'\"",
      .families = {},
      .languages = {},
      .linkSchemes = {"quillpad"}};
  const DrawnCard drawing{.picture = trusted("PICTURE"), .link = "quillpad://a/<b"};
  const CardModel card{
      .about = &item,
      .face = {
          .drawing = &drawing,
          .status = {WidgetStatus::Level::stale, "Old <i>", "It said “</p><script>”."}}};
  const std::string html = cardMarkup(card, {}, noon).html();
  EXPECT_THAT(html, HasSubstr("<a class=\"card\" lang=\"en\" href=\"quillpad://a/&lt;b\""));
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, Not(HasSubstr("<img")));
  EXPECT_THAT(html, Not(HasSubstr("<i>")));
  EXPECT_THAT(html, HasSubstr("data-kind=\"&quot;&gt;&lt;script&gt;"));
  EXPECT_THAT(html, HasSubstr("{{link}}")) << "what is put in is not filled again";
  EXPECT_THAT(html, HasSubstr("PICTURE"));

  const std::string offers = galleryMarkup({{.about = &item, .drawing = nullptr}}, {}).html();
  EXPECT_THAT(offers, Not(HasSubstr("<script")));
  EXPECT_THAT(offers, Not(HasSubstr("<img")));
}

TEST(Page, OnlyLinksToApplicationsStandOnIt) {
  channel::CatalogueItem widget;
  widget.linkSchemes = {"quillpad", "ZettelAtoZ", "javascript", "http", "file", ""};
  for (const char* link : {"quillpad://Report", "QuillPad://x", "zettelatoz:one"}) {
    EXPECT_TRUE(leadsToApplication(widget, link)) << link;
  }
  const std::vector<const char*> refused[] = {
      {"other://Report", "Report", "", "//evil.example", "http://evil.example"},
      {"https://evil.example", "file:///etc/passwd", "data:text/html,x", "vbscript:x"},
      {"javascript:alert(1)", "JavaScript:alert(1)", " javascript:alert(1)", "quillpad://["}};
  for (const auto& links : refused) {
    for (const char* link : links) {
      EXPECT_FALSE(leadsToApplication(widget, link)) << link;
    }
  }
}

// What a reader without styles and templates gets.
std::string textOf(const Markup& markup) {
  const std::string html = markup.html().substr(0, markup.html().find("<template"));
  std::string text;
  for (bool inTag = false; const char character : html) {
    inTag = inTag || character == '<';
    if (!inTag) {
      text += character;
    }
    inTag = inTag && character != '>';
  }
  return text;
}

TEST(Page, TellsTimesAsTheyStandForReadersWithoutScripts) {
  const fixtures::ScopedVariable zone("TZ", "UTC");
  using namespace std::chrono_literals;
  const channel::CatalogueItem item{"A", "A", "", {}, {}, {}};
  const std::tuple<std::chrono::milliseconds, std::chrono::milliseconds, const char*> cases[] = {
      {0s, 5min, "updated 12:00\u00a0· reloads 12:05"},
      {59min, -1min, "updated 11:01\u00a0· reloads 11:59"},
      {59min, -61s, "updated 11:01\u00a0· reload overdue"},
      {25h, 13h, "updated 2026-03-06 11:00\u00a0· reloads 2026-03-08 01:00"},
  };
  for (const auto& [age, left, words] : cases) {
    CardModel card{.about = &item, .face = {.updated = noon - age}, .reload = noon + left};
    EXPECT_THAT(textOf(cardMarkup(card, {}, noon)), HasSubstr(words));
    card.slowSince = noon - 2s;
    EXPECT_THAT(textOf(cardMarkup(card, {}, noon)), HasSubstr("\u00a0· asking since 11:59:58"));
  }
}

TEST(Page, KeptFiguresSaySinceWhenAndWhatThePhoneShowsWaitsInATemplate) {
  const fixtures::ScopedVariable zone("TZ", "UTC");
  using namespace std::chrono_literals;
  const channel::CatalogueItem item{"A", "A", "", {}, {}, {}};
  const DrawnCard good{.picture = trusted("GOOD"), .link = {}};
  const DrawnCard zeros{.picture = trusted("ZEROS"), .link = {}};
  CardModel card{
      .about = &item,
      .face =
          {.drawing = &good,
           .status = {WidgetStatus::Level::stale, "Kept", ""},
           .updated = noon - 10min,
           .failingSince = noon - 5min},
      .onPhone = CardFace{
          .drawing = &zeros,
          .status = {WidgetStatus::Level::fallback, "Zeros", ""},
          .updated = noon}};
  EXPECT_THAT(
      textOf(cardMarkup(card, {}, noon)),
      HasSubstr("as of 11:50, gateway not reachable since 11:55"));
  card.face.updated = noon - 24h;
  const std::string html = cardMarkup(card, {}, noon).html();
  const std::size_t phone = html.find("<template");
  EXPECT_THAT(
      html.substr(0, phone),
      testing::AllOf(HasSubstr("\"stale\""), HasSubstr("GOOD"), HasSubstr("2026-03-06 12:00")));
  EXPECT_THAT(
      html.substr(phone),
      testing::AllOf(HasSubstr("\"fallback\""), HasSubstr("ZEROS"), HasSubstr("updated 12:00")));
}

TEST(WidgetStatus, SaysInPlainWordsWhatIsShown) {
  using Cause = Problem::Cause;
  const channel::CatalogueItem item{"A", "A", "", {}, {}, {}};
  const RenderedEntry live{.source = EntrySource::timeline, .entry = {}, .received = noon};
  RenderedEntry placeholder = live;
  placeholder.source = EntrySource::placeholder;
  RenderedEntry fallback = live;
  fallback.failure = {{-1004, "Could not connect to the server."}};
  RenderedEntry restored = live;
  restored.restored = true;
  const Problem dropped{Cause::dropped, "It has no hands."};
  const Problem droppedSilently{Cause::dropped};
  const Problem ended{Cause::ended, "signal 6, Aborted", "SalesData line 58: no JSON"};
  const Problem late{Cause::late, "90 s"};
  const Problem tooLarge{Cause::overMemory, "it used 41 MiB, the limit is 30 MiB"};
  using Words = std::vector<const char*>;
  const std::tuple<const RenderedEntry*, const Problem*, const char*, Words> cases[] = {
      {&live, nullptr, "live", {}},
      {&placeholder, nullptr, "placeholder", {"on their way"}},
      {&placeholder, &dropped, "placeholder", {"without an answer. It has no hands. Wind it."}},
      {&fallback, nullptr, "fallback", {"zeros or a sample", "Could not connect", "-1004"}},
      {&fallback, &late, "fallback", {"Could not connect", "90 s"}},
      {&live, &ended, "stale", {"signal 6, Aborted", "SalesData line 58: no JSON"}},
      {&live, &droppedSilently, "stale", {"gave no reason"}},
      {&live, &tooLarge, "stale", {"used 41 MiB, the limit is 30 MiB"}},
      {&restored, nullptr, "stale", {"before the home screen was started"}},
      {nullptr, nullptr, "empty", {"not sent a picture"}},
      {nullptr, &ended, "empty", {"signal 6", "no JSON”. Wind it."}},
  };
  for (const auto& [picture, problem, level, words] : cases) {
    const WidgetStatus status = statusOf(
        {.about = &item, .picture = picture, .problem = problem, .reload = {}}, "Wind it.");
    EXPECT_EQ(levelName(status.level), level);
    EXPECT_EQ(status.badge.empty(), status.level == WidgetStatus::Level::live);
    for (const char* part : words) {
      EXPECT_THAT(status.cause, HasSubstr(part));
    }
    const bool mayBeSignedOut =
        problem != nullptr && (problem->cause == Cause::dropped || problem->cause == Cause::ended);
    EXPECT_EQ(status.cause.contains("Wind it."), mayBeSignedOut) << status.cause;
  }
}

TEST(WidgetStatus, KeptFiguresAreStaleForWhateverReason) {
  RenderedEntry zeros{.source = EntrySource::timeline, .entry = {}, .received = noon};
  zeros.failure = {{-1004, "Could not connect to the server."}};
  const Problem late{Problem::Cause::late, "90 s"};
  const WidgetStatus status = statusOfKept({.picture = &zeros, .problem = &late});
  EXPECT_EQ(levelName(status.level), "stale");
  EXPECT_THAT(
      status.cause, HasSubstr("zeros or a sample. Could not connect to the server. (-1004)"));
  EXPECT_THAT(status.cause, HasSubstr("90 s"));
}

TEST(WidgetStatus, WhatIsOverdueIsStaleAndAFailureStatusIsNoted) {
  RenderedEntry picture{.source = EntrySource::timeline, .entry = {}, .received = noon};
  EXPECT_EQ(statusOf({.picture = &picture, .reload = {}}).level, WidgetStatus::Level::live);
  EXPECT_EQ(
      statusOf({.picture = &picture, .reload = {}, .overdue = true}).level,
      WidgetStatus::Level::stale);
  for (const auto& [statusCode, note] :
       {std::pair{0, ""}, {200, ""}, {302, ""}, {400, "answered with status 400"}}) {
    picture.statusCode = statusCode;
    EXPECT_EQ(statusOf({.picture = &picture, .reload = {}}).note, note);
  }
}

TEST(Page, ScriptsAreGivenTheTextsThatTheyAskFor) {
  const std::string_view script = R"(a = text("Done"); b(text("{1}: {2} of {3}", x)); say("Add"))";
  EXPECT_EQ(
      textsOf(script, Language::preferred("de")).html(),
      R"({"Done":"Fertig","{1}: {2} of {3}":"{1}: {2} von {3}"})");
  EXPECT_EQ(textsOf(script, {}).html(), "{}");
}

TEST(Page, ATemplateIsFilledWithTextsAndValues) {
  EXPECT_EQ(
      filled("{{\"Widgets\"}} {{x}}", {{"x", escaped("<")}}, Language::preferred("ar")).html(),
      "الأدوات &lt;");
  EXPECT_DEATH(filled("a {{missing}} b", {{"other", {}}}), "no value for missing");
}

}  // namespace
}  // namespace quillpad::home
