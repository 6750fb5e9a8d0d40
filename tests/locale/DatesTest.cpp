#include <gtest/gtest.h>
#include <limits>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Locale.h"
#include "platform/locale/Calendar.h"
#include "platform/locale/DateFormatter.h"

namespace quillpad {
namespace {

using fixtures::ScopedVariable;
using namespace std::chrono_literals;

Date moment(std::string_view text) { return dateFromIso8601(text).value(); }

TEST(Clock, StandsStillWhileHeldAndRunsOnAfterwards) {
  const Date before = currentDate();
  {
    const HeldClock held(moment("2026-03-07T09:05:03.250Z"));
    EXPECT_EQ(iso8601(currentDate()), "2026-03-07T09:05:03.250Z");
  }
  EXPECT_GE(currentDate(), before);
}

TEST(Clock, WritesMomentsAndReadsThemBack) {
  for (const char* text :
       {"1970-01-01T00:00:00.000Z",
        "1969-12-31T23:59:59.999Z",
        "2024-02-29T23:59:59.001Z",
        "0000-01-01T00:00:00.000Z",
        "9999-12-31T23:59:59.999Z"}) {
    EXPECT_EQ(iso8601(moment(text)), text);
  }
  EXPECT_EQ(moment("1970-01-02T00:00:01.005Z").time_since_epoch(), 24h + 1s + 5ms);
}

TEST(Clock, ReadsNoOtherForm) {
  for (const char* text :
       {"",
        "2026-03-07T09:05:03Z",
        "2026-03-07T09:05:03.250",
        "2026-03-07T09:05:03.250+00:00",
        "2026-03-07 09:05:03.250Z",
        "2026-3-07T09:05:03.250Z",
        "2026-02-29T09:05:03.250Z",
        "2026-13-01T09:05:03.250Z",
        "2026-03-07T24:00:00.000Z",
        "2026-03-07T09:60:03.250Z",
        "2026-03-07T09:05:60.250Z",
        "-026-03-07T09:05:03.250Z",
        "2026-03-07T09:05:03.250Z "}) {
    EXPECT_FALSE(dateFromIso8601(text)) << text;
  }
}

std::string requestTime(Date date) {
  DateFormatter formatter;
  formatter.setDateFormat("yyyy-MM-dd HH:mm:ss");
  return formatter.string(date);
}

TEST(DateFormatter, WritesTheWallClockOfTheZone) {
  const ScopedVariable locale("LC_ALL", "C");
  const struct {
    const char* zone;
    const char* moment;
    const char* text;
  } cases[] = {
      {"UTC", "2025-03-07T09:05:03.999Z", "2025-03-07 09:05:03"},
      {"UTC", "1969-12-31T23:59:59.001Z", "1969-12-31 23:59:59"},
      {"Europe/Berlin", "2025-03-30T00:59:59.000Z", "2025-03-30 01:59:59"},
      {"Europe/Berlin", "2025-03-30T01:00:00.000Z", "2025-03-30 03:00:00"},
      {"Europe/Berlin", "2025-10-26T01:00:00.000Z", "2025-10-26 02:00:00"},
      {"America/New_York", "2026-01-01T04:59:59.000Z", "2025-12-31 23:59:59"},
      {"Asia/Kolkata", "2025-12-31T18:30:00.000Z", "2026-01-01 00:00:00"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", "2025-07-01T12:00:00.000Z", "2025-07-01 14:00:00"},
      {"<+0345>-3:45", "2025-07-01T12:00:00.000Z", "2025-07-01 15:45:00"},
  };
  for (const auto& [zone, date, text] : cases) {
    const ScopedVariable timeZone("TZ", zone);
    EXPECT_EQ(requestTime(moment(date)), text) << zone;
  }
}

TEST(DateFormatter, TakesDigitsAndCalendarOfTheLocale) {
  const ScopedVariable timeZone("TZ", "UTC");
  const struct {
    const char* locale;
    const char* text;
  } cases[] = {
      {"en_US.UTF-8", "2023-11-14 22:13:20"},
      {"hi_IN", "2023-11-14 22:13:20"},
      {"ar_EG", "٢٠٢٣-١١-١٤ ٢٢:١٣:٢٠"},
      {"th_TH", "2566-11-14 22:13:20"},
      {"fa_IR", "۱۴۰۲-۰۸-۲۳ ۲۲:۱۳:۲۰"},
  };
  for (const auto& [locale, text] : cases) {
    const ScopedVariable all("LC_ALL", locale);
    EXPECT_EQ(requestTime(moment("2023-11-14T22:13:20.000Z")), text) << locale;
  }
}

TEST(Calendar, ReadsTheYearOfTheLocalTime) {
  const Date newYear = moment("2026-01-01T00:30:00.000Z");
  const struct {
    const char* zone;
    int year;
  } cases[] = {{"UTC", 2026}, {"America/New_York", 2025}, {"Asia/Tokyo", 2026}};
  for (const auto& [zone, year] : cases) {
    const ScopedVariable timeZone("TZ", zone);
    EXPECT_EQ(Calendar::current().component(CalendarComponent::year, newYear), year) << zone;
  }
  const ScopedVariable timeZone("TZ", "Asia/Kolkata");
  EXPECT_EQ(Calendar::current().component(CalendarComponent::minute, newYear), 0);
}

TEST(Calendar, AddsMinutesAsTimeThatPasses) {
  const ScopedVariable timeZone("TZ", "Europe/Berlin");
  const Date beforeTheGap = moment("2025-03-30T00:58:00.250Z");
  const Calendar calendar = Calendar::current();
  EXPECT_EQ(calendar.dateByAdding(CalendarComponent::minute, 5, beforeTheGap), beforeTheGap + 5min);
  EXPECT_EQ(calendar.dateByAdding(CalendarComponent::minute, 1, Date::max()), std::nullopt);
}

TEST(Calendar, AddsYearsOnTheWallClock) {
  const ScopedVariable timeZone("TZ", "Europe/Berlin");
  const Calendar calendar = Calendar::current();
  const auto added = [&](int years, std::string_view date) {
    const std::optional<Date> sum =
        calendar.dateByAdding(CalendarComponent::year, years, moment(date));
    return sum ? iso8601(*sum) : "(nothing)";
  };
  EXPECT_EQ(added(1, "2024-02-29T12:00:00.007Z"), "2025-02-28T12:00:00.007Z");
  EXPECT_EQ(added(-4, "2024-02-29T12:00:00.000Z"), "2020-02-29T12:00:00.000Z");
  EXPECT_EQ(added(8000, "2024-01-01T12:00:00.000Z"), "(nothing)");
  EXPECT_EQ(added(std::numeric_limits<int>::max(), "2024-01-01T12:00:00.000Z"), "(nothing)");
}

TEST(Locale, FollowsTheEnvironmentAsTheStandardToolsDo) {
  const struct {
    const char* all;
    const char* numeric;
    const char* lang;
    const char* locale;
  } cases[] = {
      {"de_DE.UTF-8", "fr_FR", "sv_SE", "de_DE"},
      {"", "fr_FR.ISO-8859-1@euro", "sv_SE", "fr_FR"},
      {nullptr, "", "sv_SE", "sv_SE"},
      {nullptr, nullptr, "", "en_US_POSIX"},
      {"C", "fr_FR", "sv_SE", "en_US_POSIX"},
      {"C.UTF-8", nullptr, nullptr, "en_US_POSIX"},
      {"POSIX", nullptr, nullptr, "en_US_POSIX"},
      {"de", nullptr, nullptr, "de"},
      {"zh-CN", nullptr, nullptr, "zh_CN"},
      {"sr_RS.UTF-8@latin", nullptr, nullptr, "sr_Latn_RS"},
      {"../../etc/passwd", nullptr, nullptr, "en_US_POSIX"},
      {"de_DE/x", nullptr, nullptr, "en_US_POSIX"},
      {"_DE", nullptr, nullptr, "en_US_POSIX"},
  };
  const auto given = [](const char* value) {
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  };
  for (const auto& [all, numeric, lang, locale] : cases) {
    const ScopedVariable allVariable("LC_ALL", given(all));
    const ScopedVariable numericVariable("LC_NUMERIC", given(numeric));
    const ScopedVariable langVariable("LANG", given(lang));
    EXPECT_EQ(currentLocale(LocaleCategory::numbers), locale);
  }
}

TEST(Locale, NamesTheLanguagesThatServeIt) {
  using Languages = std::vector<std::string>;
  const struct {
    const char* locale;
    Languages languages;
  } cases[] = {
      {"de_DE", {"de"}},
      {"en_US_POSIX", {"en"}},
      {"zh", {"zh-Hans", "zh"}},
      {"zh_CN", {"zh-Hans", "zh"}},
      {"zh_SG", {"zh-Hans", "zh"}},
      {"zh_TW", {"zh-Hant", "zh"}},
      {"zh_Hans_HK", {"zh-Hans", "zh"}},
      {"zh_HK", {"zh-Hant", "zh"}},
      {"sr_Latn_RS", {"sr-Latn", "sr"}},
  };
  for (const auto& [locale, languages] : cases) {
    EXPECT_EQ(languagesOf(locale), languages) << locale;
  }
}

}  // namespace
}  // namespace quillpad
