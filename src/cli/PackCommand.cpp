#include "cli/PackCommand.h"

#include "cli/CliError.h"

namespace orvane::cli {
namespace {

PackRunner registered = nullptr;

}  // namespace

void setPackRunner(PackRunner runner) { registered = runner; }

int runPack(std::span<const std::string> args, const CommandContext& context) {
  if (registered == nullptr)
    throw CliError("This orvane-cli was built without Qt, so it cannot draw development packs.", exitFailure);
  return registered(args, context);
}

}  // namespace orvane::cli
