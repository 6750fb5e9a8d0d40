#include <gtest/gtest.h>

#include "fixtures/ScopedVariable.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Iso8601.h"
#include "platform/foundation/LocalTime.h"

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

TEST(Iso8601, WritesMomentsAndReadsThemBack) {
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

TEST(Iso8601, ReadsNoOtherForm) {
  const std::vector<const char*> cases[] = {
      {"", "2026-03-07T09:05:03Z", "2026-03-07T09:05:03.250", "2026-03-07 09:05:03.250Z"},
      {"2026-03-07T09:05:03.250+00:00", "2026-3-07T09:05:03.250Z", "-026-03-07T09:05:03.250Z"},
      {"2026-02-29T09:05:03.250Z", "2026-13-01T09:05:03.250Z", "2026-03-07T09:05:03.250Z "},
      {"2026-03-07T24:00:00.000Z", "2026-03-07T09:60:03.250Z", "2026-03-07T09:05:60.250Z"}};
  for (const auto& texts : cases) {
    for (const char* text : texts) {
      EXPECT_FALSE(dateFromIso8601(text)) << text;
    }
  }
}

TEST(LocalTime, IsTheWallClockOfTheZone) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
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
    EXPECT_EQ(localTimeText(moment(date), "%Y-%m-%d %H:%M:%S"), text) << zone;
  }
}

}  // namespace
}  // namespace quillpad
