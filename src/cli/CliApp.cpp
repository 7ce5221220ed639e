#include "cli/CliApp.h"

#include <unicode/calendar.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <string_view>

#include "cli/AccuracyCommand.h"
#include "cli/BackupCommand.h"
#include "cli/BoardCommand.h"
#include "cli/CalcCommand.h"
#include "cli/CalendarCommand.h"
#include "cli/CliError.h"
#include "cli/Command.h"
#include "cli/ExchangeCommands.h"
#include "cli/FlowCommand.h"
#include "cli/ForecastCommand.h"
#include "cli/GlobalOptions.h"
#include "cli/HealthCommand.h"
#include "cli/ProjectCommands.h"
#include "cli/PackCommand.h"
#include "cli/ReportCommand.h"
#include "cli/SimulateCommand.h"
#include "cli/StoreAccess.h"
#include "cli/TicketCommands.h"
#include "cli/TicketsCommand.h"
#include "core/forecast/ForecastServiceError.h"
#include "core/model/SupportedDates.h"
#include "engine/ForecastError.h"
#include "engine/LocalCivilDate.h"

namespace orvane::cli {
namespace {

// Adding a command is one row here and one handler.
constexpr std::array commands{
    Command{"simulate", "Forecast when a backlog is done, from weekly throughput samples", &runSimulate},
    Command{"projects", "List the projects with their open and total tickets", &runProjects},
    Command{"demo", "Load the demo project", &runDemo},
    Command{"project", "Create a project: project create NAME [--key PREFIX]", &runProject},
    Command{"board", "Show a project's board", &runBoard},
    Command{"ticket", "Add, move, archive or restore a ticket", &runTicket},
    Command{"tickets", "List a project's tickets, narrowed by filters", &runTickets},
    Command{"calendar", "Show a month of a project's tickets by due date", &runCalendar},
    Command{"forecast", "Forecast a project, an epic, an iteration or the roadmap", &runForecast},
    Command{"flow", "A project's throughput, cycle time, work age and cumulative flow", &runFlow},
    Command{"report", "Summary, epics, risks, workload, completed work or a PDF report of a project", &runReport},
    Command{"pack", "Write the week's development packs: a PDF and a ZIP per person", &runPack},
    Command{"calc", "Run a project, iteration or roadmap forecast on JSON numbers", &runCalc},
    Command{"health", "Sum up a project's recent flow in figures and sentences", &runHealth},
    Command{"accuracy", "Judge a project's logged forecasts against what happened", &runAccuracy},
    Command{"export", "Write a project's tickets to a .csv or .xlsx file", &runExport},
    Command{"import", "Add tickets from a .csv or .xlsx file to a project", &runImport},
    Command{"template", "Write an .xlsx import template to fill in", &runTemplate},
    Command{"backup", "Write every project and person to a JSON backup file", &runBackup},
    Command{"restore", "Add the projects of a backup file beside the ones there", &runRestore},
};

void printUsage(std::ostream& os) {
  os << "Usage: orvane-cli [--store PATH] [--now TIME] <command> [options]\n\nCommands:\n";
  for (const Command& command : commands) {
    os << "  " << command.name << std::string(std::max<std::size_t>(12 - command.name.size(), 1), ' ')
       << command.summary << '\n';
  }
  os << "\nBefore the command:\n"
        "  --store PATH  the database (default: ~/.local/share/orvane/orvane.sqlite)\n"
        "  --now TIME    act as if it were TIME, e.g. 2026-03-05T10:00:00Z or 2026-03-05\n"
        "\nRun \"orvane-cli <command> --help\" for the options of a command.\n";
}

const Command* findCommand(std::string_view name) {
  const auto it =
      std::find_if(commands.begin(), commands.end(), [name](const Command& command) { return command.name == name; });
  return it == commands.end() ? nullptr : &*it;
}

}  // namespace

int runCli(std::span<const std::string> args, std::ostream& out, std::ostream& err, Timestamp now) {
  // Gregorian days in the machine's time zone, weeks as its locale starts
  // them, whatever calendar the locale prefers.
  const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  const std::unique_ptr<icu::Calendar> calendar = zone ? userCalendar(*zone, icu::Locale::getDefault()) : nullptr;
  if (!calendar) {
    err << "The calendar of this machine could not be loaded.\n";
    return exitFailure;
  }
  return runCli(args, std::cin, out, err, now, *calendar);
}

int runCli(std::span<const std::string> args, std::istream& in, std::ostream& out, std::ostream& err, Timestamp now,
           const icu::Calendar& calendar) {
  GlobalOptions global;
  try {
    global = parseGlobalOptions(args);
  } catch (const CliError& error) {
    err << error.what() << '\n';
    return error.exitCode();
  }
  args = args.subspan(global.consumed);
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

  // A refused operation is the user's to fix (exit 2); a store that cannot
  // be opened or written is not (exit 1). Either way one sentence, no output.
  std::ostringstream buffered;
  StoreAccess store(global.store);
  try {
    const CommandContext context{buffered, err, global.now.value_or(now), store, in, calendar};
    const int code = command->run(args.subspan(1), context);
    out << buffered.str();
    return code;
  } catch (const CliError& error) {
    err << error.what() << '\n';
    return error.exitCode();
  } catch (const BoardError& error) {
    err << error.what() << '\n';
    return exitUsage;
  } catch (const PMError& error) {
    err << error.what() << '\n';
    return exitUsage;
  } catch (const MissingRecordError& error) {
    err << error.what() << '\n';
    return exitUsage;
  } catch (const ForecastServiceError& error) {
    err << error.what() << '\n';
    return exitUsage;
  } catch (const UnsupportedDateError& error) {
    err << error.what() << '\n';
    return exitUsage;
  } catch (const ForecastFailure& failure) {
    err << orvane::sentenceFor(failure.error()) << '\n';
    return exitUsage;
  } catch (const SqliteError& error) {
    // Every change runs in one transaction, so a refused write left the
    // store as it was; a full or read-only disk is named, not quoted.
    if (const std::optional<std::string> place = store.placeProblemBehind(error)) {
      err << "The change could not be saved: " << *place << '\n';
    } else {
      err << "The database could not be read or written: " << error.what() << '\n';
    }
    return exitFailure;
  } catch (const std::bad_alloc&) {
    err << "There is not enough memory for this " << name << ".\n";
    return exitFailure;
  }
}

}  // namespace orvane::cli
