#include "core/board/FlowRules.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(FlowRules, StampsStartedOnceAndCompletedOnlyInDone) {
  const Timestamp s{100}, f{200}, now{300};
  const std::optional<Timestamp> none;
  const struct {
    FlowState before;
    ColumnType type;
    FlowState after;
  } cases[] = {
      {{none, none}, ColumnType::done, {now, now}},        // skipping In Progress: started = finished
      {{s, none}, ColumnType::done, {s, now}},
      {{s, f}, ColumnType::done, {s, f}},                  // Done to Done keeps the first finish
      {{none, f}, ColumnType::done, {none, f}},
      {{none, none}, ColumnType::inProgress, {now, none}},
      {{s, f}, ColumnType::inProgress, {s, none}},         // out of Done: unfinished again
      {{s, f}, ColumnType::backlog, {s, none}},            // back to Backlog keeps started
      {{none, none}, ColumnType::backlog, {none, none}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(rawValue(c.type)));
    EXPECT_EQ(FlowRules::apply(c.before, c.type, now), c.after);
  }
}

}  // namespace
}  // namespace orvane
