#include "core/forecast/ReproductionScript.h"

#include <sstream>

#include "engine/PythonRepr.h"
#include "engine/SeedDerivation.h"

namespace orvane {

namespace {

// Everything after the inputs; the same for every forecast.
constexpr std::string_view simulation = R"(
# The seed is the first four bytes (big-endian) of the SHA-256 of the text
# of (backlog, samples), so the same inputs always give the same forecast.
digest = hashlib.sha256(repr((backlog, tuple(samples))).encode("utf-8")).digest()
assert int.from_bytes(digest[:4], "big") == seed

# Each run draws one weekly sample per week for all 520 weeks and needs the
# weeks until the running total reaches the backlog (520 if it never does).
if backlog == 0:
    needed = np.zeros(runs, dtype=np.int64)
else:
    rng = np.random.Generator(np.random.PCG64(np.random.SeedSequence(seed)))
    draws = rng.integers(0, len(samples), size=(runs, weeks), dtype=np.int64)
    done = np.cumsum(np.asarray(samples, dtype=np.float64)[draws], axis=1) >= backlog
    needed = np.where(done.any(axis=1), done.argmax(axis=1) + 1, weeks)

# Each level is the linear-interpolation percentile of the sorted weeks.
ordered = np.sort(needed).astype(np.float64)
for level in (50, 70, 85, 95):
    print(f"{level}% {float(np.percentile(ordered, level, method='linear'))!r} weeks")
)";

}  // namespace

std::string reproductionScript(const ForecastInput& input) {
  const std::vector<double> samples = simulatedSamples(input.history, input.whatIfPercent);
  std::ostringstream out;
  out << "#!/usr/bin/env python3\n"
         "# Rebuilds one \"When will it be done?\" forecast with Python and NumPy alone.\n"
         "import hashlib\n\n"
         "import numpy as np\n\n"
         "# As of "
      << input.asOf.description() << ": the weekly throughput of the last 12 weeks";
  if (input.whatIfPercent != 0) out << ", changed by " << pythonFloatRepr(input.whatIfPercent) << "%";
  out << ".\nsamples = [";
  for (std::size_t i = 0; i < samples.size(); ++i) out << (i == 0 ? "" : ", ") << pythonFloatRepr(samples[i]);
  out << "]\nbacklog = " << input.backlog << "\nseed = " << deriveSeed(samples, input.backlog)
      << "\nruns = " << ForecastSettings::iterations << "\nweeks = " << ForecastSettings::maxPeriods << '\n'
      << simulation;
  return out.str();
}

std::string reproductionOutput(const WhenForecast& forecast) {
  std::ostringstream out;
  for (const auto& [level, weeks] : forecast.periods) out << level << "% " << pythonFloatRepr(weeks) << " weeks\n";
  return out.str();
}

}  // namespace orvane
