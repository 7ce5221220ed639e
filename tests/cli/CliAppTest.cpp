#include <gtest/gtest.h>

#include "cli/CliRun.h"

namespace orvane::cli::testing {
namespace {

TEST(CliApp, helpListsTheCommandsOnStdout) {
  const CliRun run = runWith({"--help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_NE(run.out.find("Usage: orvane-cli <command>"), std::string::npos);
  EXPECT_NE(run.out.find("simulate"), std::string::npos);
  EXPECT_EQ(run.err, "");
}

TEST(CliApp, noArgumentsPrintsTheUsageOnStderrAsAnError) {
  const CliRun run = runWith({});
  EXPECT_EQ(run.code, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find("Usage: orvane-cli <command>"), std::string::npos);
}

TEST(CliApp, unknownCommandOrOptionIsOneSentence) {
  const CliRun command = runWith({"forecast"});
  EXPECT_EQ(command.code, 2);
  EXPECT_EQ(command.out, "");
  EXPECT_EQ(command.err,
            "Unknown command \"forecast\"; run \"orvane-cli --help\" for the list of commands.\n");
  EXPECT_EQ(runWith({"--verbose"}).err,
            "Unknown option \"--verbose\"; run \"orvane-cli --help\" for the list of commands.\n");
}

TEST(CliApp, commandHelpPrintsItsOptions) {
  const CliRun run = runWith({"simulate", "--help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_NE(run.out.find("--samples LIST"), std::string::npos);
  EXPECT_EQ(run.err, "");
}

}  // namespace
}  // namespace orvane::cli::testing
