#include "engine/Histogram.h"

#include <gtest/gtest.h>

#include "engine/ForecastResult.h"

namespace orvane {
namespace {

const CivilDate runAt{2026, 3, 5};

TEST(Histogram, BandsByTheShareBeforeEachBin) {
  std::vector<std::int64_t> distribution(5200, 3);
  distribution.insert(distribution.end(), 4800, 4);
  const auto bins = buildHistogram(distribution, 10000, runAt, 7);
  const std::vector<HistogramBin> expected{
      {3, 5200, 52.0, 52.0, HistogramBand::p50, runAt.addingDays(21)},
      {4, 4800, 48.0, 100.0, HistogramBand::p70, runAt.addingDays(28)},
  };
  EXPECT_EQ(bins, expected);
}

TEST(Histogram, WalksEveryBandAndRoundsToHundredths) {
  // Shares before each bin: 0, 1/3, 2/3 x 100...; bins of 1 in 3 simulations
  // round to 33.33.
  const std::vector<std::int64_t> distribution{9, 1, 5, 1, 9, 5};
  const auto bins = buildHistogram(distribution, 6, runAt, 7);
  ASSERT_EQ(bins.size(), 3u);
  EXPECT_EQ(bins[0].probabilityPct, 33.33);
  EXPECT_EQ(bins[1].cumulativePct, 66.67);
  EXPECT_EQ(bins[2].band, HistogramBand::p70);  // 66.7% passed before it

  std::vector<std::int64_t> spread;
  for (int period = 0; period < 20; ++period) spread.push_back(period);
  std::vector<HistogramBand> bands;
  for (const auto& bin : buildHistogram(spread, 20, runAt, 7)) bands.push_back(bin.band);
  EXPECT_EQ(bands[9], HistogramBand::p50);
  EXPECT_EQ(bands[10], HistogramBand::p70);
  EXPECT_EQ(bands[14], HistogramBand::p85);
  EXPECT_EQ(bands[17], HistogramBand::p95);
  EXPECT_EQ(bands[19], HistogramBand::tail);
}


TEST(ForecastResult, PromisesFewerTicketsAtHigherConfidence) {
  ForecastResult result;
  result.completedByHorizon = std::vector<double>{40, 10, 30, 20};
  const auto tickets = *result.ticketsByHorizon();
  EXPECT_EQ(tickets.at(50), 25);
  EXPECT_EQ(tickets.at(85), 14);  // floor(14.5)
  EXPECT_EQ(tickets.at(95), 11);
  result.completedByHorizon.reset();
  EXPECT_FALSE(result.ticketsByHorizon().has_value());
}


}  // namespace
}  // namespace orvane
