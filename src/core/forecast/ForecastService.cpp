#include "core/forecast/ForecastService.h"

#include <algorithm>
#include <cmath>

#include "core/board/BoardError.h"
#include "core/board/PMError.h"
#include "core/model/ProjectSnapshot.h"
#include "core/model/SupportedDates.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"
#include "engine/ColdStart.h"
#include "engine/ForecastResult.h"
#include "engine/LocalCivilDate.h"

namespace orvane {
namespace {

constexpr double maxWeeklyEstimate = 1000.0;

template <typename T>
T requireRow(Database& db, const Uuid& id, const char* missing) {
  auto row = rows::find<T>(db, id);
  if (!row) throw MissingRecordError(missing);
  return std::move(*row);
}

Project requireProject(Database& db, const Uuid& id) {
  return requireRow<Project>(db, id, "That project no longer exists.");
}

ProjectSnapshot requireSnapshot(Database& db, const Uuid& project) {
  auto snapshot = ProjectSnapshot::load(db, project);
  if (!snapshot) throw MissingRecordError("That project no longer exists.");
  // A date no calendar day can hold (from a store written before dates were
  // checked on the way in) is refused here, before any day arithmetic.
  requireSupportedDates(*snapshot);
  return std::move(*snapshot);
}

// A project's filler at a rate. The seed depends only on the project and the
// rate, so the same rate always gives the same counts.
std::vector<std::int64_t> fillerFor(const Uuid& project, double lambda) {
  return ColdStart::syntheticThroughput(lambda, ColdStart::defaultPeriods,
                                        ColdStart::fillerSeed(project.leadingWord(), lambda));
}

// Regenerates and saves the filler when it does not hold one count per
// period (a new project, or a damaged or imported row), and brings `project`
// up to date with what was saved.
void ensureFiller(Database& db, Project& project) {
  if (project.fillerCounts.size() == static_cast<std::size_t>(ColdStart::defaultPeriods)) return;
  Transaction transaction(db);
  Project current = requireProject(db, project.id);
  if (current.fillerCounts.size() != static_cast<std::size_t>(ColdStart::defaultPeriods)) {
    current.fillerCounts = fillerFor(current.id, current.fillerLambda.value_or(ColdStart::defaultLambda));
    rows::update(db, current);
  }
  transaction.commit();
  project = std::move(current);
}

std::vector<PeriodCount> historyOf(Database& db, ProjectSnapshot& snapshot, CivilDate asOf) {
  ensureFiller(db, snapshot.project);
  const Project& project = snapshot.project;
  // A tier text this version does not know reads as the default estimate.
  const ProvenanceTier fillerTier =
      provenanceTierFromRaw(project.fillerTierRaw).value_or(ProvenanceTier::systemDefault);
  return ThroughputHistory::build(snapshot.completionDatesUTC(), asOf, CivilDate::fromUtc(project.createdAt),
                                  project.fillerCounts, fillerTier, ColdStart::defaultPeriods,
                                  ColdStart::defaultPeriodDays);
}

std::int64_t openTicketsOf(const ProjectSnapshot& snapshot, const Uuid& epic) {
  return std::count_if(snapshot.tickets.begin(), snapshot.tickets.end(),
                       [&](const Ticket& t) { return t.epicId == epic && snapshot.isOpen(t); });
}

ForecastRecord recordOf(const Uuid& project, ForecastKind kind, std::string_view note, Timestamp now,
                        const CivilDate& asOf, std::int64_t backlog, double whatIfPercent,
                        const std::vector<PeriodCount>& history) {
  ForecastRecord record;
  record.id = Uuid::random();
  record.runAt = now;
  record.kindRaw = std::string(rawValue(kind));
  record.asOfDay = asOf.description();
  record.backlog = backlog;
  record.whatIfPercent = whatIfPercent;
  record.samples.reserve(history.size());
  record.provenance.reserve(history.size());
  for (const PeriodCount& period : history) {
    record.samples.push_back(period.count);
    record.provenance.emplace_back(rawValue(period.provenance));
  }
  record.note = text::trimmed(note);
  record.projectId = project;
  return record;
}

}  // namespace

ForecastService::ForecastService(Store& store) : store_(store), db_(store.db()) {}

std::vector<PeriodCount> ForecastService::history(const Uuid& project, CivilDate asOf) {
  ProjectSnapshot snapshot = requireSnapshot(db_, project);
  return historyOf(db_, snapshot, asOf);
}

ForecastInput ForecastService::input(const Uuid& project, CivilDate asOf, double whatIfPercent,
                                     std::optional<CivilDate> target, std::int64_t backlogChange) {
  ProjectSnapshot snapshot = requireSnapshot(db_, project);
  ForecastInput input;
  input.asOf = asOf;
  input.backlog = snapshot.remainingBacklog();
  input.history = historyOf(db_, snapshot, asOf);
  if (snapshot.project.committedDate) input.commitment = CivilDate::fromUtc(*snapshot.project.committedDate);
  input.target = target;
  return input.withWhatIf(whatIfPercent, backlogChange);
}

ForecastInput ForecastService::input(const Epic& epic, double share, CivilDate asOf, const icu::Calendar& calendar) {
  if (!(share > 0 && share <= 1)) throw ForecastServiceError(ForecastServiceError::Case::invalidShare);
  ProjectSnapshot snapshot = requireSnapshot(db_, epic.projectId);
  // The stored epic, not the caller's copy, which may be out of date.
  const Epic* stored = snapshot.epic(epic.id);
  if (stored == nullptr) throw MissingRecordError("That epic no longer exists.");

  ForecastInput input;
  input.asOf = asOf;
  input.backlog = openTicketsOf(snapshot, stored->id);
  // A share of 0.4 simulates 40% of the team's throughput.
  input.whatIfPercent = (share - 1) * 100;
  if (stored->dueDate) input.commitment = civilDateFromLocal(*stored->dueDate, calendar);
  input.history = historyOf(db_, snapshot, asOf);
  return input;
}

IterationForecastInput ForecastService::input(const Iteration& iteration, double whatIfPercent, CivilDate asOf,
                                              const icu::Calendar& calendar) {
  ProjectSnapshot snapshot = requireSnapshot(db_, iteration.projectId);
  const Iteration* stored = snapshot.iteration(iteration.id);
  if (stored == nullptr) throw MissingRecordError("That iteration no longer exists.");
  const IterationState state = stored->state();
  if (state == IterationState::closed) throw PMError(PMError::Case::iterationClosed);

  IterationForecastInput input;
  input.asOf = asOf;
  input.lastDay = civilDateFromLocal(stored->endDate, calendar);
  // An active iteration is simulated from today, a planned one from its
  // first day.
  if (state == IterationState::planned) input.firstDay = civilDateFromLocal(stored->startDate, calendar);
  input.open = static_cast<std::int64_t>(snapshot.openTickets(*stored).size());
  input.whatIfPercent = whatIfPercent;
  input.history = historyOf(db_, snapshot, asOf);
  return input;
}

void ForecastService::checkEstimate(std::optional<double> weeklyThroughput) {
  if (weeklyThroughput &&
      !(std::isfinite(*weeklyThroughput) && *weeklyThroughput >= 0 && *weeklyThroughput <= maxWeeklyEstimate)) {
    throw ForecastServiceError(ForecastServiceError::Case::invalidEstimate);
  }
}

void ForecastService::setColdStartEstimate(const Uuid& project, std::optional<double> weeklyThroughput) {
  checkEstimate(weeklyThroughput);
  Transaction transaction(db_);
  Project row = requireProject(db_, project);
  row.fillerLambda = weeklyThroughput;
  row.fillerTierRaw =
      std::string(rawValue(weeklyThroughput ? ProvenanceTier::userEstimated : ProvenanceTier::systemDefault));
  row.fillerCounts = fillerFor(row.id, weeklyThroughput.value_or(ColdStart::defaultLambda));
  rows::update(db_, row);
  transaction.commit();
}

void ForecastService::setCommitment(const Uuid& project, std::optional<Timestamp> committedDate) {
  Transaction transaction(db_);
  Project row = requireProject(db_, project);
  row.committedDate = committedDate;
  rows::update(db_, row);
  transaction.commit();
}

ForecastRecord ForecastService::log(const WhenForecast& forecast, const Uuid& project, std::string_view note,
                                    Timestamp now) {
  ForecastRecord record = recordOf(project, ForecastKind::when, note, now, forecast.asOf, forecast.backlog,
                                   forecast.whatIfPercent, forecast.history);
  for (const int level : confidenceLevels) {
    if (const auto date = forecast.dates.find(level); date != forecast.dates.end()) {
      record.resultDays.push_back(date->second.description());
    }
  }
  record.inconclusive = forecast.inconclusive;
  if (forecast.commitment) record.commitmentDay = forecast.commitment->description();
  record.confidencePct = forecast.commitmentConfidencePct;

  Transaction transaction(db_);
  requireProject(db_, project);
  rows::insert(db_, record);
  transaction.commit();
  return record;
}

// A by-date run keeps its counts in resultCounts and no days; its
// confidencePct is the chance that the whole backlog is done by the target.
ForecastRecord ForecastService::log(const ByDateForecast& forecast, const Uuid& project, std::string_view note,
                                    Timestamp now) {
  ForecastRecord record = recordOf(project, ForecastKind::byDate, note, now, forecast.asOf, forecast.backlog,
                                   forecast.whatIfPercent, forecast.history);
  record.targetDay = forecast.target.description();
  for (const int level : confidenceLevels) {
    if (const auto count = forecast.counts.find(level); count != forecast.counts.end()) {
      record.resultCounts.push_back(count->second);
    }
  }
  record.confidencePct = forecast.backlogDonePct;

  Transaction transaction(db_);
  requireProject(db_, project);
  rows::insert(db_, record);
  transaction.commit();
  return record;
}

void ForecastService::updateNote(const Uuid& record, std::string_view note) {
  Transaction transaction(db_);
  ForecastRecord row = requireRow<ForecastRecord>(db_, record, "That forecast no longer exists.");
  row.note = text::trimmed(note);
  rows::update(db_, row);
  transaction.commit();
}

void ForecastService::deleteRecord(const Uuid& record) {
  Transaction transaction(db_);
  requireRow<ForecastRecord>(db_, record, "That forecast no longer exists.");
  rows::remove<ForecastRecord>(db_, record);
  transaction.commit();
}

}  // namespace orvane
