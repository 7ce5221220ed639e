#include <gtest/gtest.h>

#include "cli/CliRun.h"

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

}  // namespace
}  // namespace orvane::cli::testing
