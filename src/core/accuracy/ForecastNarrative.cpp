#include "core/accuracy/ForecastNarrative.h"

#include <cmath>
#include <cstdlib>

#include "core/accuracy/HistoryDepth.h"

namespace orvane::ForecastNarrative {
namespace {

std::string plural(std::int64_t n, std::string_view noun) {
  return std::to_string(n) + " " + std::string(noun) + (n == 1 ? "" : "s");
}

std::string_view confidenceWord(std::int64_t pct) {
  if (pct >= 85) return "high";
  return pct >= 50 ? "moderate" : "low";
}

}  // namespace

std::vector<std::string> lines(const WhenForecast& forecast, const std::optional<ForecastHistoryPoint>& previous) {
  if (forecast.backlog <= 0) return {"Nothing remains: all of the planned work is done."};
  const auto p50 = forecast.dates.find(50);
  const auto p85 = forecast.dates.find(85);
  const auto p95 = forecast.dates.find(95);
  if (p50 == forecast.dates.end() || p85 == forecast.dates.end() || p95 == forecast.dates.end()) {
    return {"There is not enough finished work yet to give a reliable date."};
  }

  std::vector<std::string> out;
  if (HistoryDepth::isThin(forecast.history)) {
    out.push_back("The history holds too little finished work for a reliable date; treat the dates below as rough.");
  }
  out.push_back("We are 85% confident the remaining " + plural(forecast.backlog, "ticket") + " will be finished by " +
                p85->second.displayText() + ".");
  out.push_back("Half of the simulated outcomes finish by " + p50->second.displayText() + ", and 95% finish by " +
                p95->second.displayText() + ".");
  if (forecast.commitment && forecast.commitmentConfidencePct) {
    // std::round rounds halves away from zero.
    const auto pct = static_cast<std::int64_t>(std::round(*forecast.commitmentConfidencePct));
    out.push_back("The agreed date is " + forecast.commitment->displayText() + ". The chance of meeting it is " +
                  std::to_string(pct) + "% (" + std::string(confidenceWord(pct)) + " confidence).");
  }
  if (previous) {
    const std::int64_t moved = p85->second.daysSince(previous->p85);
    const std::string since = previous->asOf.displayText();
    if (moved == 0) {
      out.push_back("The 85% date has not moved since the forecast of " + since + ".");
    } else {
      out.push_back("Since the forecast of " + since + ", the 85% date has moved " + (moved > 0 ? "later" : "earlier") +
                    " by " + plural(std::llabs(moved), "day") + ".");
    }
  }
  return out;
}

}  // namespace orvane::ForecastNarrative
