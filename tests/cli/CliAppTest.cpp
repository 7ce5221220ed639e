#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/CliRun.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {
namespace {

TEST(CliApp, routesHelpUsageAndUnknownWordsToTheRightStream) {
  const struct {
    std::vector<std::string> args;
    int code;
    std::string_view inOut;  // expected on stdout ("" = stdout stays empty)
    std::string_view inErr;  // expected on stderr ("" = stderr stays empty)
  } cases[] = {
      {{"--help"}, 0, "Usage: orvane-cli [--store PATH] [--now TIME] <command>", ""},
      {{"simulate", "--help"}, 0, "--samples LIST", ""},
      {{}, 2, "", "Usage: orvane-cli [--store PATH] [--now TIME] <command>"},
      {{"forecasts"}, 2, "", "Unknown command \"forecasts\"; run \"orvane-cli --help\" for the list of commands.\n"},
      {{"--verbose"}, 2, "", "Unknown option \"--verbose\"; run \"orvane-cli --help\" for the list of commands.\n"},
      {{"--now", "2026-03-05", "--help"}, 0, "Usage: orvane-cli", ""},
      {{"--store=x.sqlite"}, 2, "", "Usage: orvane-cli"},
      {{"--store", "--now", "2026-03-05"}, 2, "", "Option --store needs a value.\n"},
      {{"--now", "2026-03-05", "--now", "2026-03-06"}, 2, "", "Option --now is given more than once.\n"},
  };
  for (const auto& c : cases) {
    const CliRun run = runWith(c.args);
    SCOPED_TRACE(c.args.empty() ? "(no arguments)" : c.args.front());
    EXPECT_EQ(run.code, c.code);
    if (c.inOut.empty())
      EXPECT_EQ(run.out, "");
    else
      EXPECT_NE(run.out.find(c.inOut), std::string::npos) << run.out;
    if (c.inErr.empty())
      EXPECT_EQ(run.err, "");
    else
      EXPECT_NE(run.err.find(c.inErr), std::string::npos) << run.err;
  }
}

// ICU's default locale and time zone within one scope, as LANG and TZ set
// them for a real run.
class DefaultLocale {
 public:
  DefaultLocale(const char* locale, const char* zone)
      : locale_(icu::Locale::getDefault()), zone_(icu::TimeZone::createDefault()) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(locale), status);
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone(zone));
  }
  ~DefaultLocale() {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(locale_, status);
    icu::TimeZone::adoptDefault(zone_.release());
  }
  DefaultLocale(const DefaultLocale&) = delete;
  DefaultLocale& operator=(const DefaultLocale&) = delete;

 private:
  icu::Locale locale_;
  std::unique_ptr<icu::TimeZone> zone_;
};

TEST(CliApp, daysAreGregorianWhateverCalendarTheLocalePrefers) {
  orvane::testing::TempStore t;
  const std::string path = (t.dir.path() / "orvane.sqlite").string();
  const Uuid shop = t.service.createProject("Shop", "SH", orvane::testing::at(2024, 1, 5)).id;
  t.service.createTicket(shop, {.title = "Leap", .dueDate = orvane::testing::at(2024, 2, 29)},
                         orvane::testing::at(2024, 1, 6));

  // ICU's own calendar for these locales is Islamic and Persian; the second
  // column is the locale's first weekday, the third the grid's first day.
  const struct {
    const char* locale;
    const char* zone;
    const char* weekHeader;
    const char* gridStart;
  } cases[] = {{"ar_SA", "Asia/Riyadh", " Sun   Mon", "2024-01-28"},
               {"fa_IR", "Asia/Tehran", " Sat   Sun", "2024-01-27"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    const DefaultLocale scoped(c.locale, c.zone);
    const auto cli = [&](std::vector<std::string> args) {
      args.insert(args.begin(), {"--store", path, "--now", "2024-03-05T10:00:00Z"});
      std::ostringstream out;
      std::ostringstream err;
      EXPECT_EQ(runCli(args, out, err, fixedNow), 0) << err.str();
      return out.str();
    };
    using nlohmann::json;
    EXPECT_EQ(json::parse(cli({"tickets", "SH", "--json"}))["tickets"][0]["due"], "2024-02-29");

    EXPECT_EQ(cli({"calendar", "SH", "2024-02"}).rfind(std::string("Shop (SH): February 2024\n\n") + c.weekHeader, 0),
              0u);
    const json month = json::parse(cli({"calendar", "SH", "2024-02", "--json"}));
    EXPECT_EQ(month["month"], "2024-02");
    EXPECT_EQ(month["days"][0]["date"], c.gridStart);
    json dueDays = json::array();
    for (const json& day : month["days"]) {
      if (!day["tickets"].empty()) dueDays.push_back(day["date"]);
    }
    EXPECT_EQ(dueDays, json::array({"2024-02-29"}));

    const std::string risks = cli({"report", "risk", "SH"});
    EXPECT_EQ(risks.rfind("Risks of \"Shop\" on 5 Mar 2024.", 0), 0u) << risks;
    EXPECT_NE(risks.find("due 29 Feb 2024\n"), std::string::npos) << risks;
  }
}

}  // namespace
}  // namespace orvane::cli::testing
