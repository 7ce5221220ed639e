#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/ParallelFor.h"

namespace orvane {

// Runs consecutive blocks of work that read one stream of words on several
// threads, with the result of reading them one after another.
//
// Block b must start where block b - 1 stopped, which is known only once
// b - 1 has run; but it is known in advance when no word is rejected
// (`plannedStarts`). So every block runs at once from its planned start, and
// then the starts are checked in order: the first block whose start was
// wrong, and every later one whose guessed start changes, runs again, from
// the exact start and from guesses that add up the words the blocks before
// used in their last run. Each round settles at least one more block, so
// with few rejections this costs one parallel round, and with many at worst
// one round per block.
//
// runBlock(b, startWord) runs block b reading from word `startWord` and
// returns the number of words it used; what it writes must depend only on b
// and startWord and must replace anything an earlier run of b wrote.
// REQUIRES: runBlock does not throw; plannedStarts[0] is the true start.
template <typename RunBlock>
void runFromGuessedStarts(std::vector<std::uint64_t> plannedStarts, std::size_t threads, const RunBlock& runBlock) {
  const std::size_t blocks = plannedStarts.size();
  std::vector<std::uint64_t>& starts = plannedStarts;
  std::vector<std::uint64_t> used(blocks, 0);
  std::vector<std::size_t> pending(blocks);
  for (std::size_t b = 0; b < blocks; ++b) pending[b] = b;

  std::size_t settled = 0;                                    // blocks 0 .. settled - 1 ran from their true starts
  std::uint64_t settledEnd = starts.empty() ? 0 : starts[0];  // where block `settled` truly starts
  while (!pending.empty()) {
    parallelFor(pending.size(), threads,
                [&](std::size_t i) { used[pending[i]] = runBlock(pending[i], starts[pending[i]]); });
    while (settled < blocks && starts[settled] == settledEnd) settledEnd += used[settled++];
    pending.clear();
    std::uint64_t guess = settledEnd;
    for (std::size_t b = settled; b < blocks; ++b) {
      if (starts[b] != guess) {
        starts[b] = guess;
        pending.push_back(b);
      }
      guess += used[b];
    }
  }
}

}  // namespace orvane
