#include "core/forecast/Backtest.h"

#include <algorithm>

#include "core/board/BoardError.h"

namespace orvane {

Backtest runBacktest(Store& store, const Uuid& project, CivilDate day, CivilDate today) {
  const std::optional<ProjectSnapshot> snapshot = ProjectSnapshot::load(store.db(), project);
  if (!snapshot) throw MissingRecordError("That project no longer exists.");
  if (day > today) throw BacktestError("Choose a day on or before today; a backtest looks at the past.");
  const CivilDate began = CivilDate::fromUtc(snapshot->project.createdAt);
  if (day < began) {
    throw BacktestError("Choose a day on or after " + began.displayText() + ", when the project began.");
  }

  ForecastInput input;
  input.asOf = day;
  input.history = ForecastService(store).history(project, day);
  std::int64_t stillOpen = 0;
  std::optional<CivilDate> lastDone;
  for (const Ticket& ticket : snapshot->tickets) {
    if (ticket.isArchived() || CivilDate::fromUtc(ticket.createdAt) > day) continue;
    const bool done = !snapshot->isOpen(ticket) && ticket.completedAt;
    if (done && CivilDate::fromUtc(*ticket.completedAt) < day) continue;
    ++input.backlog;
    if (!done) {
      ++stillOpen;
    } else if (const CivilDate finished = CivilDate::fromUtc(*ticket.completedAt); !lastDone || *lastDone < finished) {
      lastDone = finished;
    }
  }

  Backtest result;
  result.forecast = input.runWhen();
  result.stillOpen = stillOpen;
  if (stillOpen == 0) {
    // An empty backlog was finished on the day itself.
    result.finishedOn = lastDone.value_or(day);
    for (const auto& [level, date] : result.forecast.dates) result.levelsMet[level] = !(date < *result.finishedOn);
  }
  return result;
}

}  // namespace orvane
