#include "core/metrics/ProcessBehaviour.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace orvane {
namespace {

constexpr double limitFactor = 2.66;
constexpr double movingRangeFactor = 3.268;
constexpr std::size_t runLength = 8;

std::string oneDecimal(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

// Counts as whole numbers, anything else with one decimal.
std::string valueText(double value) {
  return value == std::floor(value) && std::abs(value) < 1e15 ? std::to_string(static_cast<long long>(value))
                                                              : oneDecimal(value);
}

// +1 above the mean, -1 below, 0 on it.
int side(double value, double mean) { return value > mean ? 1 : (value < mean ? -1 : 0); }

void addRuns(XmRChart& chart) {
  const std::size_t n = chart.values.size();
  std::size_t start = 0;
  while (start < n) {
    const int s = side(chart.values[start], chart.mean);
    std::size_t end = start + 1;
    while (end < n && side(chart.values[end], chart.mean) == s) ++end;
    if (s != 0 && end - start >= runLength)
      chart.detected.push_back({XmRSignal::Kind::runOfEight, start, end - 1, s > 0});
    start = end;
  }
}

// Windows of four with three or more values beyond the midline between the
// mean and a limit; overlapping windows on one side join into one signal,
// which spans from its first such value to its last.
void addNearLimit(XmRChart& chart, bool above) {
  const std::size_t n = chart.values.size();
  if (n < 4) return;
  const double midline = above ? (chart.mean + chart.upperLimit) / 2 : (chart.mean + chart.lowerLimit) / 2;
  const auto beyond = [&](std::size_t i) { return above ? chart.values[i] > midline : chart.values[i] < midline; };
  std::optional<XmRSignal> open;
  std::size_t openWindowEnd = 0;
  for (std::size_t i = 0; i + 4 <= n; ++i) {
    std::size_t count = 0, first = n, last = 0;
    for (std::size_t j = i; j < i + 4; ++j) {
      if (!beyond(j)) continue;
      ++count;
      first = std::min(first, j);
      last = j;
    }
    if (count < 3) continue;
    if (open && i <= openWindowEnd) {
      open->last = std::max(open->last, last);
    } else {
      if (open) chart.detected.push_back(*open);
      open = XmRSignal{XmRSignal::Kind::nearLimit, first, last, above};
    }
    openWindowEnd = i + 3;
  }
  if (open) chart.detected.push_back(*open);
}

// Ascending indexes as spans of neighbours, "w3, w5 to w9", at most three
// spans and then how many values more.
template <typename Label>
std::string spans(const std::vector<std::size_t>& points, const Label& label) {
  std::vector<std::pair<std::size_t, std::size_t>> runs;
  for (const std::size_t i : points) {
    if (!runs.empty() && runs.back().second + 1 == i) {
      runs.back().second = i;
    } else {
      runs.emplace_back(i, i);
    }
  }
  std::string text;
  std::size_t listed = 0;
  for (std::size_t r = 0; r < runs.size() && r < 3; ++r) {
    const auto [first, last] = runs[r];
    text += (r == 0 ? "" : ", ") + label(first) + (first == last ? "" : " to " + label(last));
    listed += last - first + 1;
  }
  if (listed < points.size()) text += ", and " + std::to_string(points.size() - listed) + " more";
  return text;
}

}  // namespace

std::string_view rawValue(XmRSignal::Kind kind) {
  switch (kind) {
    case XmRSignal::Kind::beyondLimit:
      return "beyondLimit";
    case XmRSignal::Kind::runOfEight:
      return "runOfEight";
    case XmRSignal::Kind::nearLimit:
      return "nearLimit";
    case XmRSignal::Kind::movingRangeBeyondLimit:
      return "movingRangeBeyondLimit";
  }
  return "beyondLimit";
}

std::optional<XmRChart> xmrChart(std::span<const double> values) {
  if (values.size() < 2) return std::nullopt;
  XmRChart chart;
  chart.values.assign(values.begin(), values.end());
  const auto n = static_cast<double>(values.size());
  chart.mean = std::accumulate(values.begin(), values.end(), 0.0) / n;
  for (std::size_t i = 1; i < values.size(); ++i) chart.movingRanges.push_back(std::abs(values[i] - values[i - 1]));
  chart.averageMovingRange = std::accumulate(chart.movingRanges.begin(), chart.movingRanges.end(), 0.0) /
                             static_cast<double>(chart.movingRanges.size());
  chart.upperLimit = chart.mean + limitFactor * chart.averageMovingRange;
  chart.lowerLimit = chart.mean - limitFactor * chart.averageMovingRange;
  chart.movingRangeLimit = movingRangeFactor * chart.averageMovingRange;

  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] > chart.upperLimit || values[i] < chart.lowerLimit)
      chart.detected.push_back({XmRSignal::Kind::beyondLimit, i, i, values[i] > chart.upperLimit});
  }
  addRuns(chart);
  addNearLimit(chart, true);
  addNearLimit(chart, false);
  for (std::size_t i = 0; i < chart.movingRanges.size(); ++i) {
    if (chart.movingRanges[i] > chart.movingRangeLimit)
      chart.detected.push_back({XmRSignal::Kind::movingRangeBeyondLimit, i, i + 1, true});
  }
  std::stable_sort(chart.detected.begin(), chart.detected.end(), [](const XmRSignal& a, const XmRSignal& b) {
    return a.first != b.first ? a.first < b.first : a.kind < b.kind;
  });
  return chart;
}

std::vector<std::string> xmrSentences(const std::optional<XmRChart>& chart, std::string_view measure,
                                      std::span<const std::string> labels) {
  const std::string start = std::string(measure) + ": ";
  if (!chart) return {start + "too few values for a process behaviour chart."};
  const auto label = [&](std::size_t i) { return i < labels.size() ? labels[i] : "value " + std::to_string(i + 1); };

  // Points beyond a limit and large moving ranges are grouped, one sentence
  // per side or per chart, so a long shift reads as one finding; runs and
  // near-limit spans are one sentence each. Sentences follow the first
  // value they speak of.
  struct Sentence {
    std::size_t first;
    XmRSignal::Kind kind;
    std::string text;
  };
  std::vector<Sentence> sentences;
  std::vector<std::size_t> aboveUpper, belowLower, movingRanges;
  for (const XmRSignal& s : chart->detected) {
    const std::string upperOrLower = s.above ? "upper" : "lower";
    switch (s.kind) {
      case XmRSignal::Kind::beyondLimit:
        (s.above ? aboveUpper : belowLower).push_back(s.first);
        break;
      case XmRSignal::Kind::runOfEight:
        sentences.push_back({s.first, s.kind,
                             start + std::to_string(s.last - s.first + 1) + " values in a row, from " + label(s.first) +
                                 " to " + label(s.last) + ", are " + (s.above ? "above" : "below") + " the mean of " +
                                 oneDecimal(chart->mean) + "."});
        break;
      case XmRSignal::Kind::nearLimit: {
        // A run on the same side that covers the span already says the shift.
        const bool covered = std::any_of(chart->detected.begin(), chart->detected.end(), [&](const XmRSignal& r) {
          return r.kind == XmRSignal::Kind::runOfEight && r.above == s.above && r.first <= s.first && s.last <= r.last;
        });
        if (covered) break;
        const double midline = (chart->mean + (s.above ? chart->upperLimit : chart->lowerLimit)) / 2;
        const auto near = std::count_if(chart->values.begin() + static_cast<std::ptrdiff_t>(s.first),
                                        chart->values.begin() + static_cast<std::ptrdiff_t>(s.last + 1),
                                        [&](double v) { return s.above ? v > midline : v < midline; });
        const auto span = static_cast<std::ptrdiff_t>(s.last - s.first + 1);
        const std::string which = near == span ? "the " + std::to_string(near) + " values from " + label(s.first) +
                                                     " to " + label(s.last) + " are all"
                                               : std::to_string(near) + " of the " + std::to_string(span) +
                                                     " values from " + label(s.first) + " to " + label(s.last) + " are";
        sentences.push_back({s.first, s.kind, start + which + " nearer the " + upperOrLower + " limit than the mean."});
        break;
      }
      case XmRSignal::Kind::movingRangeBeyondLimit:
        movingRanges.push_back(s.first);
        break;
    }
  }
  for (const bool above : {true, false}) {
    const std::vector<std::size_t>& points = above ? aboveUpper : belowLower;
    if (points.empty()) continue;
    const std::string limit =
        std::string(above ? "the upper natural process limit of " : "the lower natural process limit of ") +
        oneDecimal(above ? chart->upperLimit : chart->lowerLimit);
    const std::string side = above ? "above " : "below ";
    sentences.push_back({points.front(), XmRSignal::Kind::beyondLimit,
                         points.size() == 1
                             ? start + label(points.front()) + " (" + valueText(chart->values[points.front()]) +
                                   ") is " + side + limit + "."
                             : start + std::to_string(points.size()) + " values are " + side + limit + ": " +
                                   spans(points, label) + "."});
  }
  if (!movingRanges.empty()) {
    const std::size_t largest = *std::max_element(movingRanges.begin(), movingRanges.end(), [&](auto a, auto b) {
      return chart->movingRanges[a] < chart->movingRanges[b];
    });
    const std::string change = "from " + label(largest) + " to " + label(largest + 1);
    const std::string limit = "the moving-range limit of " + oneDecimal(chart->movingRangeLimit);
    sentences.push_back({movingRanges.front(), XmRSignal::Kind::movingRangeBeyondLimit,
                         movingRanges.size() == 1
                             ? start + "the change " + change + " (" + valueText(chart->movingRanges[largest]) +
                                   ") is above " + limit + "."
                             : start + std::to_string(movingRanges.size()) + " changes between neighbours are above " +
                                   limit + "; the largest, " + valueText(chart->movingRanges[largest]) + ", " + change +
                                   "."});
  }
  std::stable_sort(sentences.begin(), sentences.end(), [](const Sentence& a, const Sentence& b) {
    return a.first != b.first ? a.first < b.first : a.kind < b.kind;
  });
  std::vector<std::string> texts;
  for (Sentence& sentence : sentences) texts.push_back(std::move(sentence.text));
  if (texts.empty()) {
    texts.push_back(start + "no signal; the values vary between " + oneDecimal(std::max(chart->lowerLimit, 0.0)) +
                    " and " + oneDecimal(chart->upperLimit) +
                    " by routine variation alone, so read no trend into them.");
  }
  return texts;
}

}  // namespace orvane
