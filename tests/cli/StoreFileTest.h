#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cli/CliRun.h"
#include "core/support/TempStore.h"

namespace orvane::cli::testing {

// Commands run on one store file in a fresh folder, with --now
// 2026-03-05T10:00:00Z (the runner's own clock differs).
class StoreFileTest : public ::testing::Test {
 protected:
  CliRun run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--store", path, "--now", "2026-03-05T10:00:00Z"});
    return runWith(args);
  }
  // The output of a command that must succeed without a word on stderr.
  std::string ok(std::vector<std::string> args) {
    const CliRun result = run(std::move(args));
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }

  orvane::testing::TempDir dir;
  std::string path = (dir.path() / "orvane.sqlite").string();
};

}  // namespace orvane::cli::testing
