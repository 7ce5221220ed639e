#pragma once

#include <unicode/utypes.h>

#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "engine/Timestamp.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane::cli {

class StoreAccess;

// What a command may use of the outside world. Global options (--store,
// --now) arrive here, so commands never read the environment themselves.
struct CommandContext {
  std::ostream& out;  // buffered: reaches stdout only if the command succeeds
  std::ostream& err;
  Timestamp now;       // the real clock, or --now
  StoreAccess& store;  // opened on first use
  std::istream& in;    // standard input, for commands that read "-"
  // The user's calendar and time zone: the days of epics' and iterations'
  // dates. Forecast days themselves are UTC days.
  const icu::Calendar& calendar;
};

// A subcommand receives the arguments after its own name and returns the
// exit code; refusals are thrown as CliError.
using CommandHandler = int (*)(std::span<const std::string> args, const CommandContext& context);

struct Command {
  std::string_view name;
  std::string_view summary;  // one line for the command list
  CommandHandler run;
};

}  // namespace orvane::cli
