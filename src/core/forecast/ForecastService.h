#pragma once

#include <unicode/calendar.h>

#include <optional>
#include <string_view>
#include <vector>

#include "core/board/BoardService.h"
#include "core/forecast/ForecastInput.h"
#include "core/forecast/ForecastServiceError.h"
#include "core/forecast/IterationForecast.h"
#include "core/forecast/RoadmapForecast.h"
#include "core/model/Epic.h"
#include "core/model/ForecastRecord.h"
#include "core/store/Store.h"

namespace orvane {

// A dependency whose planned dates overlap: the successor is planned to start
// before its predecessor is due.
struct EpicScheduleConflict {
  Epic predecessor;
  Epic successor;
  std::int64_t overlapDays = 0;

  friend bool operator==(const EpicScheduleConflict&, const EpicScheduleConflict&) = default;
};

// Turns a project, an epic or an iteration into forecast inputs, keeps the
// project's cold-start filler up to date, and logs forecast runs. The only
// writer of forecast records and of a project's forecast settings (filler,
// estimate, committed date). Each write is one store transaction.
class ForecastService {
 public:
  explicit ForecastService(Store& store);

  static CivilDate todayUTC(Timestamp now) { return CivilDate::fromUtc(now); }

  // The project's 12 weeks ending on asOf, oldest first, with filler before
  // the project existed. Regenerates and saves the filler first when it does
  // not hold 12 counts.
  std::vector<PeriodCount> history(const Uuid& project, CivilDate asOf);

  // The whole project: its open tickets plus backlogChange (never below 0),
  // and its committed date as the commitment.
  ForecastInput input(const Uuid& project, CivilDate asOf, double whatIfPercent = 0,
                      std::optional<CivilDate> target = std::nullopt, std::int64_t backlogChange = 0);
  // One epic, run at a share (0 < share <= 1) of the team's throughput; its
  // due date (a day of `calendar`) is the commitment. Throws invalidShare.
  ForecastInput input(const Epic& epic, double share, CivilDate asOf, const icu::Calendar& calendar);
  // A planned or active iteration; a closed one throws PMError iterationClosed.
  IterationForecastInput input(const Iteration& iteration, double whatIfPercent, CivilDate asOf,
                               const icu::Calendar& calendar);
  // Every epic of the project with its open tickets, planned start, due day
  // (a day of `calendar`) and predecessors; and every milestone.
  RoadmapForecastInput roadmapInput(const Uuid& project, CivilDate asOf, const icu::Calendar& calendar);
  // Dependencies whose successor is planned to start before its predecessor
  // is due (days in `calendar`).
  std::vector<EpicScheduleConflict> scheduleConflicts(const Uuid& project, const icu::Calendar& calendar);

  // Sets the user's weekly-throughput estimate (finite, 0...1000, else
  // invalidEstimate) or clears it, with fresh filler counts.
  void setColdStartEstimate(const Uuid& project, std::optional<double> weeklyThroughput);
  // The estimate rule alone, for a form to check what is typed: throws
  // invalidEstimate unless absent or finite and 0...1000.
  static void checkEstimate(std::optional<double> weeklyThroughput);
  void setCommitment(const Uuid& project, std::optional<Timestamp> committedDate);

  ForecastRecord log(const WhenForecast& forecast, const Uuid& project, std::string_view note, Timestamp now);
  ForecastRecord log(const ByDateForecast& forecast, const Uuid& project, std::string_view note, Timestamp now);
  void updateNote(const Uuid& record, std::string_view note);
  void deleteRecord(const Uuid& record);

 private:
  Store& store_;
  Database& db_;
};

}  // namespace orvane
