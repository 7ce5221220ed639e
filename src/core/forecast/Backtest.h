#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "core/forecast/ForecastService.h"

namespace orvane {

// Why a backtest was refused. what() is the complete sentence the user sees.
class BacktestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// "How would this forecast have done?": the when-forecast the project would
// have had on a past day, next to what really happened to its backlog.
struct Backtest {
  WhenForecast forecast;
  // The backlog's tickets: created on or before the day, not completed
  // before it, and not archived (archived tickets count nowhere in the
  // history either).
  std::int64_t stillOpen = 0;           // of them, not done today
  std::optional<CivilDate> finishedOn;  // the day the last of them was done, when all are
  // Whether the work was done by the level's date, for each level; empty
  // while work is open.
  std::map<int, bool> levelsMet;
  friend bool operator==(const Backtest&, const Backtest&) = default;
};

// Forecasts `project` as of `day` from the history the store holds (the
// service's 12 weeks ending on `day`) and compares it with the finish.
// Throws BacktestError for a day after `today` or before the project began;
// MissingRecordError for a project that is gone.
Backtest runBacktest(Store& store, const Uuid& project, CivilDate day, CivilDate today);

}  // namespace orvane
