#include <gtest/gtest.h>

#include "core/exchange/IsoDateTime.h"

namespace orvane {
namespace {

// 2026-10-05T00:00:00Z.
constexpr double kDay = 1791158400.0;

TEST(IsoDateTimeTest, ParsesDaysAndDateTimesWithZones) {
  const struct {
    const char* text;
    double expected;
  } cases[] = {
      {"2026-10-05", kDay},
      {"  2026-10-05\n", kDay},
      {"2026-10-05T09:30:00Z", kDay + 9.5 * 3600},
      {"2026-10-05t09:30:00z", kDay + 9.5 * 3600},
      {"2026-10-05 09:30:00Z", kDay + 9.5 * 3600},
      {"2026-10-05T09:30:00", kDay + 9.5 * 3600},  // no zone: UTC
      {"2026-10-05T09:30:00+02:00", kDay + 7.5 * 3600},
      {"2026-10-05T09:30:00+0200", kDay + 7.5 * 3600},
      {"2026-10-05T09:30:00-05:30", kDay + 15 * 3600},
      {"2026-10-05T00:30:00+01:00", kDay - 0.5 * 3600},
      {"2026-10-05T09:30:00.25Z", kDay + 9.5 * 3600 + 0.25},
      {"2026-10-05T09:30:00,5+01:00", kDay + 8.5 * 3600 + 0.5},
      {"2026-10-05T23:59:59.999999999999Z", kDay + 86399 + 0.999999999},
      {"2024-02-29", 1709164800.0},
      {"1969-12-31T23:59:59Z", -1.0},
  };
  for (const auto& c : cases) {
    const auto parsed = ISODateTime::parse(c.text);
    ASSERT_TRUE(parsed.has_value()) << c.text;
    EXPECT_DOUBLE_EQ(parsed->secondsSince1970, c.expected) << c.text;
  }
}

TEST(IsoDateTimeTest, RefusesEverythingElse) {
  for (const char* text : {"",
                           "2026-10-0",
                           "2026-10-5",
                           "26-10-05",
                           "2026/10/05",
                           "2026-13-01",
                           "2026-00-10",
                           "2026-02-29",
                           "2026-04-31",
                           "2026-10-05T",
                           "2026-10-05X09:30:00Z",
                           "2026-10-05T24:00:00Z",
                           "2026-10-05T09:60:00Z",
                           "2026-10-05T09:30:60Z",
                           "2026-10-05T09:30Z",
                           "2026-10-05T9:30:00Z",
                           "2026-10-05T09:30:00.Z",
                           "2026-10-05T09:30:00+24:00",
                           "2026-10-05T09:30:00+02:60",
                           "2026-10-05T09:30:00+2",
                           "2026-10-05T09:30:00ZZ",
                           "2026-10-05T09:30:00 Z",
                           "2026-10-05 x",
                           "+2026-10-05",
                           "05/10/2026",
                           "2026-10-05T09:30:00+02:00:00"}) {
    EXPECT_FALSE(ISODateTime::parse(text).has_value()) << text;
  }
}

TEST(IsoDateTimeTest, FormatsWholeSecondsInUtc) {
  EXPECT_EQ(ISODateTime::format(Timestamp{kDay + 9.5 * 3600}), "2026-10-05T09:30:00Z");
  EXPECT_EQ(ISODateTime::format(Timestamp{kDay + 59.999}), "2026-10-05T00:00:59Z");
  EXPECT_EQ(ISODateTime::format(Timestamp{-0.5}), "1969-12-31T23:59:59Z");
  EXPECT_EQ(ISODateTime::format(Timestamp{0}), "1970-01-01T00:00:00Z");
  for (double seconds : {0.0, kDay + 12345, -86400.0 * 400 + 7, 4102444799.0}) {
    EXPECT_EQ(ISODateTime::parse(ISODateTime::format(Timestamp{seconds}))->secondsSince1970, seconds);
  }
}

}  // namespace
}  // namespace orvane
