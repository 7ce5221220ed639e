#include "core/store/ListCodec.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace orvane {
namespace {

TEST(ListCodec, RoundTripsAndAgreesWithAGeneralJsonReader) {
  const std::vector<std::vector<std::string>> stringLists{
      {}, {"web"}, {"web", "checkout"}, {"quote \" and \\ backslash", "tab\there", "line\nbreak"}, {"Émile", "日本", "🚀"}, {""},
  };
  for (const auto& list : stringLists) {
    const std::string text = ListCodec::encode(list);
    EXPECT_EQ(ListCodec::decodeStrings(text), list) << text;
    EXPECT_EQ(nlohmann::json::parse(text).get<std::vector<std::string>>(), list) << text;
  }
  const std::vector<std::int64_t> counts{5, 0, -3, 9223372036854775807};
  EXPECT_EQ(ListCodec::decodeIntegers(ListCodec::encode(counts)), counts);
  // Written by another JSON writer: spaces and \u escapes, surrogate pairs.
  EXPECT_EQ(ListCodec::decodeStrings(R"([ "a\u00e9" , "\ud83d\ude80" ])"), (std::vector<std::string>{"aé", "🚀"}));
}

TEST(ListCodec, ReadsAnythingElseAsAnEmptyList) {
  for (const char* text : {"", "null", "[", "[1,]", "[\"open", "{\"a\":1}", "[1] trailing", "[\"x\" \"y\"]"}) {
    EXPECT_TRUE(ListCodec::decodeStrings(text).empty()) << text;
  }
  EXPECT_TRUE(ListCodec::decodeIntegers("[1, \"two\"]").empty());
  EXPECT_TRUE(ListCodec::decodeIntegers("[1.5]").empty());
}

}  // namespace
}  // namespace orvane
