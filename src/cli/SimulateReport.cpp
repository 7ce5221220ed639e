#include "cli/SimulateReport.h"

#include <string>

#include "cli/CliError.h"
#include "engine/ForecastError.h"
#include "engine/MonteCarlo.h"
#include "engine/SeedDerivation.h"
#include "engine/ThroughputMultiplier.h"

namespace orvane::cli {
namespace {

// The options were checked before the run, so these are a safety net that
// still names the option at fault.
std::string sentenceFor(ForecastError error) {
  switch (error) {
    case ForecastError::nonPositiveIterations:
      return "--iterations must be at least 1.";
    case ForecastError::negativeBacklog:
      return "--backlog must not be negative.";
    case ForecastError::emptySamples:
      return "--samples needs at least one number, such as --samples 3,5,4.";
    case ForecastError::invalidHorizon:
      return "--horizon must be from 0 to the --max-periods.";
    case ForecastError::invalidMultiplier:
      return "--what-if must be greater than -100 percent.";
    default:
      return "The forecast engine refused these inputs (" + std::string(caseName(error)) + ").";
  }
}

}  // namespace

SimulateReport runSimulation(const SimulateOptions& options) {
  SimulateReport report;
  report.options = options;
  try {
    report.simulatedSamples = options.whatIfPercent
                                  ? applyThroughputMultiplier(options.samples, *options.whatIfPercent)
                                  : options.samples;
    report.seed = options.seed ? *options.seed : deriveSeed(report.simulatedSamples, options.backlog);
    report.result = MonteCarlo::run(report.simulatedSamples, options.backlog, options.iterations,
                                    options.maxPeriods, options.seed, options.horizon);
  } catch (const ForecastFailure& failure) {
    throw CliError(sentenceFor(failure.error()));
  }
  report.dates = report.result.dates(options.asOf, simulatePeriodDays);
  report.ticketsByHorizon = report.result.ticketsByHorizon();
  report.histogram = buildHistogram(report.result.periodsDistribution, report.result.iterations, options.asOf,
                                    simulatePeriodDays);
  return report;
}

}  // namespace orvane::cli
