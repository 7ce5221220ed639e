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
      chart.signals.push_back({XmRSignal::Kind::runOfEight, start, end - 1, s > 0});
    start = end;
  }
}

// Windows of four with three or more values beyond the midline between the
// mean and a limit; overlapping windows on one side join into one signal.
void addNearLimit(XmRChart& chart, bool above) {
  const std::size_t n = chart.values.size();
  if (n < 4) return;
  const double midline = above ? (chart.mean + chart.upperLimit) / 2 : (chart.mean + chart.lowerLimit) / 2;
  const auto beyond = [&](double v) { return above ? v > midline : v < midline; };
  std::optional<XmRSignal> open;
  for (std::size_t i = 0; i + 4 <= n; ++i) {
    const auto count = std::count_if(chart.values.begin() + static_cast<std::ptrdiff_t>(i),
                                     chart.values.begin() + static_cast<std::ptrdiff_t>(i + 4), beyond);
    if (count < 3) continue;
    if (open && i <= open->last) {
      open->last = i + 3;
    } else {
      if (open) chart.signals.push_back(*open);
      open = XmRSignal{XmRSignal::Kind::nearLimit, i, i + 3, above};
    }
  }
  if (open) chart.signals.push_back(*open);
}

}  // namespace

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
      chart.signals.push_back({XmRSignal::Kind::beyondLimit, i, i, values[i] > chart.upperLimit});
  }
  addRuns(chart);
  addNearLimit(chart, true);
  addNearLimit(chart, false);
  for (std::size_t i = 0; i < chart.movingRanges.size(); ++i) {
    if (chart.movingRanges[i] > chart.movingRangeLimit)
      chart.signals.push_back({XmRSignal::Kind::movingRangeBeyondLimit, i, i + 1, true});
  }
  std::stable_sort(chart.signals.begin(), chart.signals.end(), [](const XmRSignal& a, const XmRSignal& b) {
    return a.first != b.first ? a.first < b.first : a.kind < b.kind;
  });
  return chart;
}

std::vector<std::string> xmrSentences(const std::optional<XmRChart>& chart, std::string_view measure,
                                      std::span<const std::string> labels) {
  const std::string start = std::string(measure) + ": ";
  if (!chart) return {start + "too few values for a process behaviour chart."};
  const auto label = [&](std::size_t i) { return i < labels.size() ? labels[i] : "value " + std::to_string(i + 1); };
  std::vector<std::string> sentences;
  for (const XmRSignal& s : chart->signals) {
    const std::string upperOrLower = s.above ? "upper" : "lower";
    switch (s.kind) {
      case XmRSignal::Kind::beyondLimit:
        sentences.push_back(start + label(s.first) + " (" + valueText(chart->values[s.first]) + ") is " +
                            (s.above ? "above" : "below") + " the " + upperOrLower + " natural process limit of " +
                            oneDecimal(s.above ? chart->upperLimit : chart->lowerLimit) + ".");
        break;
      case XmRSignal::Kind::runOfEight:
        sentences.push_back(start + std::to_string(s.last - s.first + 1) + " values in a row, from " + label(s.first) +
                            " to " + label(s.last) + ", are " + (s.above ? "above" : "below") + " the mean of " +
                            oneDecimal(chart->mean) + ".");
        break;
      case XmRSignal::Kind::nearLimit: {
        const double midline = (chart->mean + (s.above ? chart->upperLimit : chart->lowerLimit)) / 2;
        const auto near = std::count_if(chart->values.begin() + static_cast<std::ptrdiff_t>(s.first),
                                        chart->values.begin() + static_cast<std::ptrdiff_t>(s.last + 1),
                                        [&](double v) { return s.above ? v > midline : v < midline; });
        sentences.push_back(start + std::to_string(near) + " of the " + std::to_string(s.last - s.first + 1) +
                            " values from " + label(s.first) + " to " + label(s.last) + " are nearer the " +
                            upperOrLower + " limit than the mean.");
        break;
      }
      case XmRSignal::Kind::movingRangeBeyondLimit:
        sentences.push_back(start + "the change from " + label(s.first) + " to " + label(s.last) + " (" +
                            valueText(chart->movingRanges[s.first]) + ") is above the moving-range limit of " +
                            oneDecimal(chart->movingRangeLimit) + ".");
        break;
    }
  }
  if (sentences.empty()) {
    sentences.push_back(start + "no signal; the values vary between " + oneDecimal(std::max(chart->lowerLimit, 0.0)) +
                        " and " + oneDecimal(chart->upperLimit) +
                        " by routine variation alone, so read no trend into them.");
  }
  return sentences;
}

}  // namespace orvane
