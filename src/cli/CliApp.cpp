#include "cli/CliApp.h"

#include <algorithm>
#include <array>
#include <new>
#include <sstream>
#include <string_view>

#include "cli/CliError.h"
#include "cli/Command.h"
#include "cli/SimulateCommand.h"

namespace orvane::cli {
namespace {

// Adding a command is one row here and one handler.
constexpr std::array commands{
    Command{"simulate", "Forecast when a backlog is done, from weekly throughput samples", &runSimulate},
};

void printUsage(std::ostream& os) {
  os << "Usage: orvane-cli <command> [options]\n\nCommands:\n";
  for (const Command& command : commands) {
    os << "  " << command.name << std::string(std::max<std::size_t>(12 - command.name.size(), 1), ' ')
       << command.summary << '\n';
  }
  os << "\nRun \"orvane-cli <command> --help\" for the options of a command.\n";
}

const Command* findCommand(std::string_view name) {
  const auto it = std::find_if(commands.begin(), commands.end(),
                               [name](const Command& command) { return command.name == name; });
  return it == commands.end() ? nullptr : &*it;
}

}  // namespace

int runCli(std::span<const std::string> args, std::ostream& out, std::ostream& err, Timestamp now) {
  if (args.empty()) {
    printUsage(err);
    return exitUsage;
  }
  const std::string& name = args.front();
  if (name == "--help" || name == "-h" || name == "help") {
    printUsage(out);
    return exitOk;
  }
  const Command* command = findCommand(name);
  if (command == nullptr) {
    err << (name.starts_with("-") ? "Unknown option \"" : "Unknown command \"") << name
        << "\"; run \"orvane-cli --help\" for the list of commands.\n";
    return exitUsage;
  }

  std::ostringstream buffered;
  try {
    const int code = command->run(args.subspan(1), CommandContext{buffered, err, now});
    out << buffered.str();
    return code;
  } catch (const CliError& error) {
    err << error.what() << '\n';
    return error.exitCode();
  } catch (const std::bad_alloc&) {
    err << "There is not enough memory for this " << name << ".\n";
    return exitFailure;
  }
}

}  // namespace orvane::cli
