#include <gtest/gtest.h>

#include "cli/NumberParsing.h"

namespace orvane::cli {
namespace {

TEST(NumberParsing, wholeTokenMustBeTheNumber) {
  struct Case {
    std::string_view text;
    NumberStatus int64;
    NumberStatus dbl;
  };
  using enum NumberStatus;
  const Case cases[] = {
      {"42", ok, ok},
      {"+42", ok, ok},
      {"-42", ok, ok},
      {"4.5", malformed, ok},
      {"1e3", malformed, ok},
      {"42x", malformed, malformed},
      {" 42", malformed, malformed},
      {"42 ", malformed, malformed},
      {"", malformed, malformed},
      {"+", malformed, malformed},
      {"+-4", malformed, malformed},
      {"0x10", malformed, malformed},
      {"9223372036854775808", outOfRange, ok},
      {"1e999", malformed, outOfRange},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(parseInt64(c.text).status, c.int64) << c.text;
    EXPECT_EQ(parseDouble(c.text).status, c.dbl) << c.text;
  }
  EXPECT_EQ(parseInt64("+42").value, 42);
  EXPECT_EQ(parseUInt64("18446744073709551615").value, UINT64_MAX);
  EXPECT_EQ(parseUInt64("-1").status, NumberStatus::malformed);
}

}  // namespace
}  // namespace orvane::cli
