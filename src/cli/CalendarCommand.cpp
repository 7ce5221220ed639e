#include "cli/CalendarCommand.h"

#include <unicode/calendar.h>

#include <array>
#include <map>
#include <nlohmann/json.hpp>

#include "cli/CliError.h"
#include "cli/OptionParser.h"
#include "cli/ProjectLookup.h"
#include "cli/StoreAccess.h"
#include "cli/TextLayout.h"
#include "core/calendar/MonthGrid.h"
#include "engine/LocalCivilDate.h"

namespace orvane::cli {
namespace {

using nlohmann::json;

constexpr std::string_view calendarUsage =
    "Usage: orvane-cli calendar PROJECT [YYYY-MM] [--json]\n"
    "\n"
    "Shows one month of PROJECT (its name or its ticket key) as whole weeks, in\n"
    "this machine's time zone, each week starting on its locale's first weekday,\n"
    "with the tickets that are not archived placed on their due days. Days of the\n"
    "neighbouring months that fill the first and last week are shown in\n"
    "parentheses. Without YYYY-MM the month of today (or of --now) is shown.\n"
    "\n"
    "  --json   print one JSON object: {project, month, days: [{date, inMonth,\n"
    "           tickets: [{ref, title}]}]}\n"
    "  --help   print this text\n";

constexpr OptionSpec calendarSpecs[] = {{"--json", false}, {"--help", false}};

constexpr std::array<std::string_view, 7> weekdayNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> monthNames{"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};

// Noon UTC on the 15th lies in that month in every time zone.
Timestamp middleOfMonth(std::string_view text) {
  const auto fail = [&] {
    return CliError("The month must be written YYYY-MM, such as 2026-03, not \"" + std::string(text) + "\".");
  };
  if (text.size() != 7 || text[4] != '-') throw fail();
  for (std::size_t i : {0u, 1u, 2u, 3u, 5u, 6u}) {
    if (text[i] < '0' || text[i] > '9') throw fail();
  }
  const int year = std::stoi(std::string(text.substr(0, 4)));
  const int month = std::stoi(std::string(text.substr(5, 2)));
  if (month < 1 || month > 12) throw fail();
  return Timestamp{CivilDate(year, month, 15).utcMidnight().secondsSince1970 + 12 * 3600.0};
}

struct DayCell {
  CivilDate day;
  bool inMonth = false;
  std::vector<const Ticket*> due;
};

std::vector<DayCell> cellsOf(const ProjectSnapshot& s, const std::vector<CalendarDay>& grid,
                             const icu::Calendar& calendar) {
  std::vector<DayCell> cells;
  std::map<CivilDate, std::size_t> byDay;
  for (const CalendarDay& day : grid) {
    cells.push_back({civilDateFromLocal(day.date, calendar), day.isInMonth, {}});
    byDay.emplace(cells.back().day, cells.size() - 1);
  }
  for (const Ticket& t : s.tickets) {
    if (t.isArchived() || !t.dueDate) continue;
    if (const auto it = byDay.find(civilDateFromLocal(*t.dueDate, calendar)); it != byDay.end()) {
      cells[it->second].due.push_back(&t);
    }
  }
  return cells;
}

std::string monthTitle(const std::vector<DayCell>& cells) {
  for (const DayCell& cell : cells) {
    if (cell.inMonth) return std::string(monthNames[cell.day.month - 1]) + " " + std::to_string(cell.day.year);
  }
  return "";
}

std::string monthKey(const std::vector<DayCell>& cells) {
  for (const DayCell& cell : cells) {
    if (cell.inMonth) return cell.day.description().substr(0, 7);
  }
  return "";
}

// Weeks of seven five-column cells: the day number, a mark for days with
// tickets due ("*"), neighbouring days in parentheses.
void writeGrid(const ProjectSnapshot& s, const std::vector<DayCell>& cells, const icu::Calendar& calendar,
               std::ostream& out) {
  out << s.project.name << " (" << s.project.key << "): " << monthTitle(cells) << "\n\n";
  const int first = static_cast<int>(calendar.getFirstDayOfWeek()) - 1;
  std::string line;
  for (int i = 0; i < 7; ++i) line += (i == 0 ? "" : "  ") + padLeft(std::string(weekdayNames[(first + i) % 7]), 4);
  out << line << '\n';
  line.clear();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const DayCell& cell = cells[i];
    const std::string number = std::to_string(cell.day.day);
    const std::string text =
        cell.inMonth ? padLeft(number, 4) + (cell.due.empty() ? " " : "*") : padLeft("(" + number + ")", 5);
    line += (i % 7 == 0 ? "" : " ") + text;
    if (i % 7 == 6) {
      out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
      line.clear();
    }
  }
  bool any = false;
  for (const DayCell& cell : cells) {
    for (const Ticket* t : cell.due) {
      if (!any) out << "\nDue:\n";
      any = true;
      out << "  " << padRight(cell.day.displayText(), 12) << s.referenceCode(*t) << "  " << t->title << '\n';
    }
  }
  if (!any) out << "\nNo tickets are due in these weeks.\n";
}

json calendarJson(const ProjectSnapshot& s, const std::vector<DayCell>& cells) {
  json days = json::array();
  for (const DayCell& cell : cells) {
    json due = json::array();
    for (const Ticket* t : cell.due) due.push_back({{"ref", s.referenceCode(*t)}, {"title", t->title}});
    days.push_back({{"date", cell.day.description()}, {"inMonth", cell.inMonth}, {"tickets", std::move(due)}});
  }
  return {{"project", {{"id", s.project.id.text()}, {"name", s.project.name}, {"key", s.project.key}}},
          {"month", monthKey(cells)},
          {"days", std::move(days)}};
}

}  // namespace

int runCalendar(std::span<const std::string> args, const CommandContext& context) {
  const ParsedOptions parsed = parseArguments(args, calendarSpecs, "calendar");
  if (parsed.has("--help")) {
    context.out << calendarUsage;
    return exitOk;
  }
  if (parsed.positionals().size() == 2) {
    expectPositionals(parsed, {"PROJECT", "YYYY-MM"}, "calendar");
  } else {
    expectPositionals(parsed, {"PROJECT"}, "calendar");
  }
  const Timestamp date = parsed.positionals().size() == 2 ? middleOfMonth(parsed.positionals()[1]) : context.now;
  const ProjectSnapshot snapshot = loadProject(context.store.service(), parsed.positionals()[0]);
  const std::vector<CalendarDay> grid = MonthGrid::days(date, context.calendar);
  if (grid.empty()) throw CliError("This machine's calendar cannot show that month.", exitFailure);
  const std::vector<DayCell> cells = cellsOf(snapshot, grid, context.calendar);
  if (parsed.has("--json")) {
    context.out << calendarJson(snapshot, cells).dump(2) << '\n';
  } else {
    writeGrid(snapshot, cells, context.calendar, context.out);
  }
  return exitOk;
}

}  // namespace orvane::cli
