#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "core/model/BoardColumn.h"
#include "core/model/Epic.h"
#include "core/model/ForecastRecord.h"
#include "core/model/Iteration.h"
#include "core/model/Person.h"
#include "core/model/Project.h"
#include "core/model/Ticket.h"
#include "engine/CivilDate.h"

namespace orvane {

class Database;

// Every row of one project (and all people, who are global) in memory,
// indexed by id: what screens, metrics and forecasts read. The derived
// values the rest of the system relies on are defined here, once.
struct ProjectSnapshot {
  Project project;
  std::vector<BoardColumn> columns;  // board order
  std::vector<Ticket> tickets;       // archived included, by number
  std::vector<Epic> epics;           // by name
  std::vector<EpicDependency> epicDependencies;
  std::vector<Milestone> milestones;  // by date
  std::vector<Iteration> iterations;  // by start date
  std::vector<Person> people;         // by name
  std::vector<TicketEvent> events;    // by instant
  std::vector<TicketComment> comments;
  std::vector<ChecklistItem> checklistItems;
  std::vector<TicketLink> links;
  std::vector<TicketFileLink> fileLinks;
  std::vector<ForecastRecord> forecasts;  // by run time

  // Reads the project in one read transaction, so the rows are consistent.
  // Absent when there is no such project.
  static std::optional<ProjectSnapshot> load(Database& db, const Uuid& projectId);

  const Ticket* ticket(const Uuid& id) const;
  const BoardColumn* column(const Uuid& id) const;
  const Epic* epic(const Uuid& id) const;
  const Iteration* iteration(const Uuid& id) const;
  const Person* person(const Uuid& id) const;

  // Not archived, and in no column or in a column that is not of type done.
  bool isOpen(const Ticket& ticket) const;
  // The project key, "-" and the number: "FRC-12".
  std::string referenceCode(const Ticket& ticket) const;
  // Targets of the ticket's blocked-by links that are still open.
  std::vector<const Ticket*> openBlockers(const Ticket& ticket) const;
  // The manual flag, or any open blocker.
  bool isBlocked(const Ticket& ticket) const;

  // The column's tickets that are not archived, by position.
  std::vector<const Ticket*> activeTickets(const BoardColumn& column) const;

  // The number of open tickets: the backlog of a project forecast.
  std::int64_t remainingBacklog() const;
  // The UTC day of each completed, non-archived ticket, duplicates kept.
  std::vector<CivilDate> completionDatesUTC() const;
  // Open tickets that are blocked.
  std::vector<const Ticket*> blockedTickets() const;
  // Open tickets whose due date has passed.
  std::vector<const Ticket*> overdueTickets(Timestamp now) const;

  const Iteration* activeIteration() const;
  // An iteration's tickets that are not archived; of those, the done and the
  // open ones.
  std::vector<const Ticket*> activeTickets(const Iteration& iteration) const;
  std::vector<const Ticket*> doneTickets(const Iteration& iteration) const;
  std::vector<const Ticket*> openTickets(const Iteration& iteration) const;

 private:
  void buildIndexes();

  std::unordered_map<Uuid, std::size_t> ticketIndex_;
  std::unordered_map<Uuid, std::size_t> columnIndex_;
  std::unordered_map<Uuid, std::size_t> epicIndex_;
  std::unordered_map<Uuid, std::size_t> iterationIndex_;
  std::unordered_map<Uuid, std::size_t> personIndex_;
};

}  // namespace orvane
