#include "core/model/SupportedDates.h"

#include <cmath>

#include "core/model/ProjectSnapshot.h"

namespace orvane {
namespace {

constexpr double firstSupportedSecond = -62167219200.0;   // 0000-01-01T00:00:00Z
constexpr double endOfSupportedSeconds = 253402300800.0;  // 10000-01-01T00:00:00Z

}  // namespace

bool isSupportedDate(Timestamp instant) {
  const double s = instant.secondsSince1970;
  return std::isfinite(s) && s >= firstSupportedSecond && s < endOfSupportedSeconds;
}

bool isSupportedDate(const std::optional<Timestamp>& instant) { return !instant || isSupportedDate(*instant); }

std::optional<std::string> unsupportedDateIn(const ProjectSnapshot& s) {
  const Project& p = s.project;
  if (!isSupportedDate(p.createdAt)) return "its creation date";
  if (!isSupportedDate(p.committedDate)) return "its committed date";
  for (const Ticket& t : s.tickets) {
    const std::pair<std::optional<Timestamp>, const char*> dates[] = {
        {t.createdAt, "created"}, {t.startedAt, "started"}, {t.completedAt, "completed"},
        {t.archivedAt, "archived"}, {t.dueDate, "due"}};
    for (const auto& [date, name] : dates) {
      if (!isSupportedDate(date)) return std::string("the ") + name + " date of " + s.referenceCode(t);
    }
  }
  for (const TicketEvent& e : s.events) {
    if (!isSupportedDate(e.at)) {
      const Ticket* t = s.ticket(e.ticketId);
      return "a column move of " + (t ? s.referenceCode(*t) : std::string("a ticket"));
    }
  }
  for (const Epic& e : s.epics) {
    if (!isSupportedDate(e.startDate) || !isSupportedDate(e.dueDate)) return "the dates of epic \"" + e.name + "\"";
  }
  for (const Milestone& m : s.milestones) {
    if (!isSupportedDate(m.date) || !isSupportedDate(m.completedAt)) return "the dates of milestone \"" + m.name + "\"";
  }
  for (const Iteration& i : s.iterations) {
    if (!isSupportedDate(i.startDate) || !isSupportedDate(i.endDate) || !isSupportedDate(i.startedAt) ||
        !isSupportedDate(i.closedAt)) {
      return "the dates of iteration \"" + i.name + "\"";
    }
  }
  for (const ForecastRecord& f : s.forecasts) {
    if (!isSupportedDate(f.runAt)) return "the run date of a saved forecast";
  }
  return std::nullopt;
}

void requireSupportedDates(const ProjectSnapshot& snapshot) {
  if (const auto what = unsupportedDateIn(snapshot)) throw UnsupportedDateError(snapshot.project.name, *what);
}

UnsupportedDateError::UnsupportedDateError(const std::string& projectName, const std::string& what)
    : sentence_("\"" + projectName + "\" holds a date outside the years 0000 to 9999 (" + what +
                "), so it cannot be forecast or measured.") {}

}  // namespace orvane
