#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <set>

#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

// Does `from` reach `to` along the edges?
bool reaches(const std::multimap<Uuid, Uuid>& edges, const Uuid& from, const Uuid& to) {
  std::set<Uuid> seen;
  std::vector<Uuid> pending{from};
  while (!pending.empty()) {
    const Uuid at = pending.back();
    pending.pop_back();
    if (at == to) return true;
    if (!seen.insert(at).second) continue;
    for (auto [it, end] = edges.equal_range(at); it != end; ++it) pending.push_back(it->second);
  }
  return false;
}

bool hasCycle(const std::multimap<Uuid, Uuid>& edges) {
  for (const auto& [from, to] : edges) {
    if (reaches(edges, to, from)) return true;
  }
  return false;
}

void expectInvariants(const ProjectSnapshot& s, const std::map<Uuid, int>& columnChanges) {
  int backlogColumns = 0;
  int doneColumns = 0;
  for (std::size_t i = 0; i < s.columns.size(); ++i) {
    const BoardColumn& column = s.columns[i];
    ASSERT_EQ(column.position, static_cast<std::int64_t>(i)) << "column positions have a gap";
    backlogColumns += column.effectiveType() == ColumnType::backlog;
    doneColumns += column.effectiveType() == ColumnType::done;
    const auto active = s.activeTickets(column);
    for (std::size_t k = 0; k < active.size(); ++k) {
      ASSERT_EQ(active[k]->position, static_cast<std::int64_t>(k)) << "ticket positions in " << column.name;
    }
  }
  ASSERT_GE(backlogColumns, 1);
  ASSERT_GE(doneColumns, 1);

  for (const Ticket& ticket : s.tickets) {
    const BoardColumn* column = s.column(*ticket.columnId);
    ASSERT_NE(column, nullptr);
    const ColumnType type = column->effectiveType();
    ASSERT_EQ(ticket.completedAt.has_value(), type == ColumnType::done) << s.referenceCode(ticket);
    if (type != ColumnType::backlog) {
      ASSERT_TRUE(ticket.startedAt.has_value()) << s.referenceCode(ticket);
    }
    // One event per change of column, chained from creation to the column
    // the ticket is in now.
    std::vector<const TicketEvent*> events;
    for (const TicketEvent& event : s.events) {
      if (event.ticketId == ticket.id) events.push_back(&event);
    }
    ASSERT_EQ(static_cast<int>(events.size()), columnChanges.at(ticket.id)) << s.referenceCode(ticket);
    ASSERT_FALSE(events.front()->fromColumnId.has_value());
    for (std::size_t k = 1; k < events.size(); ++k) ASSERT_EQ(events[k]->fromColumnId, events[k - 1]->toColumnId);
    ASSERT_EQ(events.back()->toColumnId, *ticket.columnId);
  }

  std::multimap<Uuid, Uuid> waits;
  for (const TicketLink& link : s.links) {
    if (link.kindRaw == "blocked_by") waits.emplace(link.sourceId, link.targetId);
  }
  ASSERT_FALSE(hasCycle(waits)) << "tickets wait on each other";
  std::multimap<Uuid, Uuid> dependsOn;
  for (const EpicDependency& d : s.epicDependencies) dependsOn.emplace(d.successorId, d.predecessorId);
  ASSERT_FALSE(hasCycle(dependsOn)) << "epics wait on each other";
}

// Random sequences of board operations, many of them refused, must keep the
// board's invariants after every step, and a refused one must change nothing.
// ORVANE_RANDOM_SEED=n replays one sequence.
TEST(RandomOperations, KeepTheBoardInvariants) {
  std::vector<unsigned> seeds{1, 2, 3, 4};
  if (const char* seed = std::getenv("ORVANE_RANDOM_SEED")) seeds = {static_cast<unsigned>(std::atoi(seed))};
  for (const unsigned seed : seeds) {
    SCOPED_TRACE("ORVANE_RANDOM_SEED=" + std::to_string(seed));
    testing::TempStore t;
    BoardService& service = t.service;
    const Uuid project = service.createProject("Random", std::nullopt, Timestamp{0}).id;
    std::mt19937 random(seed);
    const auto pick = [&](const auto& items) -> const auto& {
      return items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(random)];
    };
    const auto chance = [&](int percent) { return std::uniform_int_distribution<int>(1, 100)(random) <= percent; };
    std::map<Uuid, int> columnChanges;
    double now = 1.7e9;

    for (int step = 0; step < 300; ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      now += 3600;
      const ProjectSnapshot s = *service.snapshot(project);
      std::vector<Uuid> tickets;
      std::vector<Uuid> active;
      for (const Ticket& ticket : s.tickets) {
        tickets.push_back(ticket.id);
        if (!ticket.isArchived()) active.push_back(ticket.id);
      }
      std::vector<Uuid> columns;
      for (const BoardColumn& column : s.columns) columns.push_back(column.id);
      std::vector<Uuid> epics;
      for (const Epic& epic : s.epics) epics.push_back(epic.id);

      const std::string before = testing::dumpStore(t.store.db());
      try {
        const int choice = std::uniform_int_distribution<int>(0, 11)(random);
        if (choice <= 2 || tickets.empty()) {
          NewTicket ticket{.title = "Ticket " + std::to_string(step)};
          if (chance(50)) ticket.column = pick(columns);
          columnChanges[service.createTicket(project, ticket, Timestamp{now}).id] = 1;
        } else if (choice <= 5) {
          const Uuid ticket = pick(tickets);
          const auto index = std::uniform_int_distribution<std::int64_t>(-3, 12)(random);
          if (service.moveTicket(ticket, pick(columns), index, Timestamp{now}).changedColumn) ++columnChanges[ticket];
        } else if (choice == 6) {
          if (chance(50)) service.archive(pick(tickets), Timestamp{now});
          else service.unarchive(pick(tickets));
        } else if (choice == 7) {
          if (chance(70)) {
            const auto type = pick(std::vector<ColumnType>{ColumnType::backlog, ColumnType::inProgress, ColumnType::done});
            service.addColumn(project, "Column " + std::to_string(step % 9), type, std::nullopt,
                              std::uniform_int_distribution<std::int64_t>(-1, 8)(random));
          } else {
            service.deleteColumn(pick(columns));
          }
        } else if (choice == 8) {
          if (chance(50)) service.moveColumn(pick(columns), std::uniform_int_distribution<std::int64_t>(-2, 9)(random));
          else service.deleteTicket(pick(tickets));
        } else if (choice == 9) {
          service.addLink(pick(tickets), pick(tickets), chance(70) ? LinkKind::blockedBy : LinkKind::relatedTo,
                          Timestamp{now});
        } else if (choice == 10 || epics.size() < 2) {
          service.createEpic(project, "Epic " + std::to_string(step % 7), std::nullopt, std::nullopt);
        } else {
          service.addEpicDependency(pick(epics), pick(epics), Timestamp{now});
        }
      } catch (const BoardError&) {
        ASSERT_EQ(testing::dumpStore(t.store.db()), before) << "a refused operation changed the store";
      } catch (const PMError&) {
        ASSERT_EQ(testing::dumpStore(t.store.db()), before) << "a refused operation changed the store";
      }
      const ProjectSnapshot after = *service.snapshot(project);
      std::erase_if(columnChanges, [&](const auto& entry) { return after.ticket(entry.first) == nullptr; });
      ASSERT_NO_FATAL_FAILURE(expectInvariants(after, columnChanges));
    }
  }
}

}  // namespace
}  // namespace orvane
