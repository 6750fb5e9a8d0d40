#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

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
      .languages = {}};
  const DrawnCard drawing{.picture = trusted("PICTURE"), .link = "quillpad://a\"b"};
  CardModel card{.about = &item, .drawing = &drawing, .status = {}, .updated = {}, .reload = {}};
  card.status = {WidgetStatus::Level::stale, "Old <i>", "It said “</p><script>”."};
  const std::string html = cardMarkup(card, noon).html();
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, Not(HasSubstr("<img")));
  EXPECT_THAT(html, Not(HasSubstr("<i>")));
  EXPECT_THAT(html, HasSubstr("data-kind=\"&quot;&gt;&lt;script&gt;"));
  EXPECT_THAT(html, HasSubstr("{{link}}")) << "what is put in is not filled again";
  EXPECT_THAT(html, HasSubstr("PICTURE"));

  const std::string offers = galleryMarkup({{.about = &item, .drawing = nullptr}}).html();
  EXPECT_THAT(offers, Not(HasSubstr("<script")));
  EXPECT_THAT(offers, Not(HasSubstr("<img")));
}

TEST(Page, OnlyLinksToApplicationsStandOnIt) {
  for (const char* link : {"quillpad://Report", "QuillPad://x", "mailto:someone"}) {
    EXPECT_TRUE(leadsToApplication(link)) << link;
  }
  for (const char* link :
       {"javascript:alert(1)",
        "JavaScript:alert(1)",
        "data:text/html,x",
        "http://evil.example",
        "https://evil.example",
        "file:///etc/passwd",
        "vbscript:x",
        "Report",
        "",
        "//evil.example",
        " javascript:alert(1)"}) {
    EXPECT_FALSE(leadsToApplication(link)) << link;
  }
}

TEST(Page, TellsAgeAndReload) {
  using namespace std::chrono_literals;
  const channel::CatalogueItem item{"A", "A", "", {}, {}};
  const struct {
    std::chrono::milliseconds age;
    std::chrono::milliseconds left;
    const char* words;
  } cases[] = {
      {0s, 5min, "just now · reloads in 5 min"},
      {59s, 61s, "just now · reloads in 1 min"},
      {60s, 20s, "1 min ago · reloads now"},
      {59min, -1min, "59 min ago · reloads now"},
      {59min, -61s, "59 min ago · reload overdue"},
      {25h, 3h, "1 d ago · reloads in 3 h"},
      {-10min, 5min, "just now · reloads in 5 min"},
  };
  for (const auto& [age, left, words] : cases) {
    const CardModel card{
        .about = &item,
        .drawing = nullptr,
        .status = {},
        .updated = noon - age,
        .reload = noon + left};
    const std::string html = cardMarkup(card, noon).html();
    std::string text;
    for (bool inTag = false; const char character : html) {
      inTag = inTag || character == '<';
      if (!inTag) {
        text += character;
      }
      inTag = inTag && character != '>';
    }
    EXPECT_THAT(text, HasSubstr(words));
  }
}

TEST(WidgetStatus, SaysInPlainWordsWhatIsShown) {
  using Cause = Problem::Cause;
  const channel::CatalogueItem item{"A", "A", "", {}, {}};
  const Picture live{.source = Picture::Source::timeline, .entry = {}, .received = noon};
  Picture placeholder = live;
  placeholder.source = Picture::Source::placeholder;
  Picture fallback = live;
  fallback.failure = TransportError{-1004, "Could not connect to the server."};
  Picture restored = live;
  restored.restored = true;
  const Problem dropped{Cause::dropped, "It has no hands.", "", noon};
  const Problem droppedSilently{Cause::dropped, "", "", noon};
  const Problem ended{Cause::ended, "signal 6, Aborted", "SalesData line 58: no JSON", noon};
  const Problem late{Cause::late, "90 seconds", "", noon};
  const Problem tooLarge{Cause::overMemory, "it used 41 MB, the limit is 30 MB", "", noon};
  const struct {
    const Picture* picture;
    const Problem* problem;
    const char* level;
    std::vector<std::string> words;
  } cases[] = {
      {&live, nullptr, "live", {}},
      {&placeholder, nullptr, "placeholder", {"on their way"}},
      {&placeholder, &dropped, "placeholder", {"without an answer. It has no hands. Wind it."}},
      {&fallback, nullptr, "fallback", {"zeros or a sample", "Could not connect", "-1004"}},
      {&fallback, &late, "fallback", {"Could not connect", "90 seconds"}},
      {&live, &ended, "stale", {"signal 6, Aborted", "SalesData line 58: no JSON"}},
      {&live, &droppedSilently, "stale", {"gave no reason"}},
      {&live, &tooLarge, "stale", {"used 41 MB, the limit is 30 MB"}},
      {&restored, nullptr, "stale", {"before the home screen was started"}},
      {nullptr, nullptr, "empty", {"not sent a picture"}},
      {nullptr, &ended, "empty", {"signal 6"}},
  };
  for (const auto& [picture, problem, level, words] : cases) {
    const WidgetStatus status = statusOf(
        {.about = &item, .picture = picture, .problem = problem, .reload = {}}, "Wind it.");
    EXPECT_EQ(levelName(status.level), level);
    EXPECT_EQ(status.badge.empty(), status.level == WidgetStatus::Level::live);
    for (const std::string& part : words) {
      EXPECT_THAT(status.cause, HasSubstr(part));
    }
  }
}

TEST(WidgetStatus, WhatIsOverdueIsStaleAndAFailureStatusIsNoted) {
  Picture picture{.source = Picture::Source::timeline, .entry = {}, .received = noon};
  EXPECT_EQ(statusOf({.picture = &picture, .reload = {}}).level, WidgetStatus::Level::live);
  EXPECT_EQ(
      statusOf({.picture = &picture, .reload = {}, .overdue = true}).level,
      WidgetStatus::Level::stale);
  for (const auto& [statusCode, note] :
       {std::pair{0, ""}, {200, ""}, {302, ""}, {403, "answered with status 403"}}) {
    picture.statusCode = statusCode;
    EXPECT_EQ(statusOf({.picture = &picture, .reload = {}}).note, note);
  }
}

TEST(Page, ATemplateWithoutItsValueEndsTheProcess) {
  EXPECT_DEATH(filled("a {{missing}} b", {{"other", {}}}), "no value for missing");
}

}  // namespace
}  // namespace quillpad::home
