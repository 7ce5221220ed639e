#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

// A point, or a run of points, that routine variation would rarely give,
// so a real change is likely.
struct XmRSignal {
  enum class Kind {
    beyondLimit,             // one value outside the natural process limits
    runOfEight,              // eight or more values in a row on one side of the mean
    nearLimit,               // three of four values in a row nearer a limit than the mean
    movingRangeBeyondLimit,  // one change between neighbours above the moving-range limit
  };
  Kind kind = Kind::beyondLimit;
  std::size_t first = 0;  // index of the first value involved
  std::size_t last = 0;   // index of the last value involved
  bool above = true;      // on the upper side (always true for a moving range)

  friend bool operator==(const XmRSignal&, const XmRSignal&) = default;
};

// A process behaviour chart of individual values and their moving ranges:
//   mean              = sum of the values / n
//   movingRanges[i]   = |values[i+1] - values[i]|, n - 1 of them
//   averageMovingRange = their mean
//   upperLimit, lowerLimit = mean +/- 2.66 x averageMovingRange
//   movingRangeLimit  = 3.268 x averageMovingRange
// The lower limit is kept as computed, even below zero.
struct XmRChart {
  std::vector<double> values;
  double mean = 0;
  std::vector<double> movingRanges;
  double averageMovingRange = 0;
  double upperLimit = 0;
  double lowerLimit = 0;
  double movingRangeLimit = 0;
  // The signals (not named so: Qt takes that word), ordered by first
  // index, then by kind. Runs and near-limit windows that
  // overlap on one side are one signal; equal-to-the-mean breaks a run.
  std::vector<XmRSignal> detected;

  friend bool operator==(const XmRChart&, const XmRChart&) = default;
};

// "beyondLimit", "runOfEight", "nearLimit", "movingRangeBeyondLimit".
std::string_view rawValue(XmRSignal::Kind kind);

// Absent with fewer than two values (no moving range).
std::optional<XmRChart> xmrChart(std::span<const double> values);

// The signals in words, one sentence each, or one sentence that there is
// none; `measure` starts each ("Weekly throughput") and `labels` name the
// values ("the week ending 5 Mar"), one per value. Points beyond one limit
// are one sentence, and so are the moving ranges beyond theirs; a
// near-limit span inside a run on its side is left to the run's sentence. Without a chart, one
// sentence that there are too few values. The no-signal sentence gives the
// lower limit as no less than 0: every measure charted here is a count or a
// duration.
std::vector<std::string> xmrSentences(const std::optional<XmRChart>& chart, std::string_view measure,
                                      std::span<const std::string> labels);

}  // namespace orvane
