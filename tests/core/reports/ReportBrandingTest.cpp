#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/reports/ReportBranding.h"

namespace orvane {
namespace {

TEST(ReportBranding, PreparedByLineTrimsAndDropsEmptyParts) {
  const struct {
    const char* preparedBy;
    const char* organisation;
    std::optional<std::string> line;
  } cases[] = {
      {"  Ann Lee\n", "\tAcme ", "Prepared by Ann Lee, Acme"},
      {"Ann", " \n ", "Prepared by Ann"},
      {"", "Acme", "Prepared by Acme"},
      {" \t", "\n\u00a0", std::nullopt},
  };
  for (const auto& c : cases) {
    ReportBranding branding{c.preparedBy, c.organisation, "contact@example.com", std::nullopt};
    EXPECT_EQ(branding.preparedByLine(), c.line) << c.preparedBy << "|" << c.organisation;
  }
  EXPECT_EQ(ReportBranding::creditLine(), "Created with Orvane");
}

TEST(ReportBranding, RecordHasFourKeysAndRoundTrips) {
  const ReportBranding branding{"Ann", "Acme", "ann@acme.test", std::string("\x89PNG\r\n\x1a\n\0\xff", 10)};
  const nlohmann::json record = nlohmann::json::parse(branding.encoded());
  std::vector<std::string> keys;
  for (const auto& [key, value] : record.items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"contact", "logoPNG", "organisation", "preparedBy"}));
  EXPECT_EQ(record["logoPNG"], "iVBORw0KGgoA/w==");
  EXPECT_EQ(ReportBranding::decoded(branding.encoded()), branding);

  const ReportBranding noLogo{"Ann", "", "", std::nullopt};
  EXPECT_EQ(ReportBranding::decoded(noLogo.encoded()), noLogo);
}

TEST(ReportBranding, MissingOrUnreadableRecordIsEmpty) {
  for (const std::optional<std::string_view> record :
       {std::optional<std::string_view>{}, std::optional<std::string_view>{"not json"},
        std::optional<std::string_view>{"[1,2]"}, std::optional<std::string_view>{R"({"preparedBy": 3})"}}) {
    EXPECT_EQ(ReportBranding::decoded(record), ReportBranding{}) << record.value_or("(none)");
  }
  const ReportBranding badLogo = ReportBranding::decoded(R"({"preparedBy":"Ann","logoPNG":"%%%"})");
  EXPECT_EQ(badLogo.preparedBy, "Ann");
  EXPECT_FALSE(badLogo.logoPNG.has_value());
}

}  // namespace
}  // namespace orvane
