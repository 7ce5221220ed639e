#include "cli/SimulateCommand.h"

#include "cli/CliError.h"
#include "cli/SimulateJson.h"
#include "cli/SimulateOptions.h"
#include "cli/SimulateReport.h"
#include "cli/SimulateText.h"

namespace orvane::cli {

int runSimulate(std::span<const std::string> args, const CommandContext& context) {
  const SimulateOptions options = parseSimulateOptions(args, CivilDate::fromUtc(context.now));
  if (options.help) {
    context.out << simulateUsage;
    return exitOk;
  }
  const SimulateReport report = runSimulation(options);
  if (options.json) {
    context.out << simulateJson(report).dump(2) << '\n';
  } else {
    writeSimulateText(report, context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
