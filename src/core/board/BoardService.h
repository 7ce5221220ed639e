#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/backup/BackupReport.h"
#include "core/board/BoardError.h"
#include "core/board/BoardTypes.h"
#include "core/board/PMError.h"
#include "core/exchange/TicketImport.h"
#include "core/model/LinkKind.h"
#include "core/model/ProjectSnapshot.h"
#include "core/store/Store.h"

namespace orvane {

// The one way to change what a user keeps. Every operation is one store
// transaction: it reads and checks every rule first, then writes, then
// commits. A broken rule throws BoardError or PMError (a record that is gone
// throws MissingRecordError) and leaves the store exactly as it was.
//
// Operations take the ids of the records they work on, so callers never hold
// stale copies. Texts are trimmed of surrounding white space and line breaks
// before they are checked and stored; names are compared ignoring case.
class BoardService {
 public:
  explicit BoardService(Store& store);

  // Reads.
  std::vector<Project> projects();  // by name
  std::optional<ProjectSnapshot> snapshot(const Uuid& project);

  // Projects and columns.
  Project createProject(std::string_view name, std::optional<std::string_view> key, Timestamp now,
                        const std::vector<ColumnTemplate>& columns = ColumnTemplate::standard());
  void deleteProject(const Uuid& project);
  BoardColumn addColumn(const Uuid& project, std::string_view name, ColumnType type,
                        std::optional<std::int64_t> wipLimit, std::optional<std::int64_t> at = std::nullopt);
  void renameColumn(const Uuid& column, std::string_view name);
  void setWIPLimit(const Uuid& column, std::optional<std::int64_t> limit);
  void moveColumn(const Uuid& column, std::int64_t to);
  void deleteColumn(const Uuid& column);

  // Tickets on the board.
  Ticket createTicket(const Uuid& project, const NewTicket& ticket, Timestamp now);
  MoveResult moveTicket(const Uuid& ticket, const Uuid& column, std::optional<std::int64_t> index, Timestamp now);
  void archive(const Uuid& ticket, Timestamp now);
  void unarchive(const Uuid& ticket);
  void deleteTicket(const Uuid& ticket);
  void updateTicket(const Uuid& ticket, const TicketFields& fields);
  void assign(const Uuid& ticket, std::optional<Uuid> epic);

  // People (global).
  Person createPerson(std::string_view name, std::optional<std::string> colorHex);
  void renamePerson(const Uuid& person, std::string_view name);
  void updatePerson(const Uuid& person, std::string_view name, std::string_view email, std::string_view phone);
  void deletePerson(const Uuid& person);
  void setAssignee(const Uuid& ticket, std::optional<Uuid> person);

  // Project setup.
  void renameProject(const Uuid& project, std::string_view name);
  void updateClient(const Uuid& project, std::string_view name, std::string_view company, std::string_view email);
  void updateSetup(const Uuid& project, const ProjectSetup& setup);

  // Epics, their dependencies, milestones.
  Epic createEpic(const Uuid& project, std::string_view name, std::optional<std::string> colorHex,
                  std::optional<Timestamp> dueDate);
  void updateEpic(const Uuid& epic, std::string_view name, std::string_view details, std::optional<Timestamp> startDate,
                  std::optional<Timestamp> dueDate, std::optional<std::string> colorHex);
  void deleteEpic(const Uuid& epic);
  EpicDependency addEpicDependency(const Uuid& successor, const Uuid& waitsFor, Timestamp now);
  void removeEpicDependency(const Uuid& dependency);
  Milestone createMilestone(const Uuid& project, std::string_view name, Timestamp date, std::optional<Uuid> epic,
                            std::string_view details);
  void updateMilestone(const Uuid& milestone, std::string_view name, Timestamp date, std::optional<Uuid> epic,
                       std::string_view details);
  void setMilestone(const Uuid& milestone, bool done, Timestamp now);
  void deleteMilestone(const Uuid& milestone);

  // Ticket details.
  void setBlocked(const Uuid& ticket, bool blocked);
  void setThisWeek(const Uuid& ticket, bool thisWeek);
  void clearThisWeek(const Uuid& project);  // every ticket of the project
  TicketComment addComment(const Uuid& ticket, std::string_view body, Timestamp now);
  void editComment(const Uuid& comment, std::string_view body);  // keeps createdAt
  void deleteComment(const Uuid& comment);
  ChecklistItem addChecklistItem(const Uuid& ticket, std::string_view title);
  void setChecklistItem(const Uuid& item, bool done);
  void renameChecklistItem(const Uuid& item, std::string_view title);
  void deleteChecklistItem(const Uuid& item);
  // Moves the item to `to` (clamped) among its ticket's items, renumbering
  // them 0..n-1.
  void moveChecklistItem(const Uuid& item, std::int64_t to);
  TicketLink addLink(const Uuid& source, const Uuid& target, LinkKind kind, Timestamp now);
  void removeLink(const Uuid& link);
  TicketFileLink addFileLink(const Uuid& ticket, std::string_view path, Timestamp now);
  void removeFileLink(const Uuid& fileLink);

  // Iterations.
  Iteration createIteration(const Uuid& project, std::string_view name, std::string_view goal, Timestamp startDate,
                            Timestamp endDate);
  void updateIteration(const Uuid& iteration, std::string_view name, std::string_view goal, Timestamp startDate,
                       Timestamp endDate);
  void setIteration(const Uuid& ticket, std::optional<Uuid> iteration);
  void startIteration(const Uuid& iteration, Timestamp now);
  IterationCloseResult closeIteration(const Uuid& iteration, const IterationCarryOver& carryOver, Timestamp now);
  void deleteIteration(const Uuid& iteration);

  // The whole store as a backup document, and a backup's content added
  // beside what is there (core/backup/Backup.h has the contracts).
  std::string makeBackup(Timestamp now);
  Backup::Report restoreBackup(std::string_view bytes);

  // Tickets parsed from a CSV file or a workbook, added to the project in one
  // transaction (core/exchange/TicketImport.h has the rules and the report).
  ImportReport importTickets(const ParsedImport& parsed, const Uuid& project, Timestamp now,
                             bool extendProjectHistory, const ImportOptions& options = {});

  // A realistic sample project, built through the operations above with dates
  // relative to `now`, all in one transaction: all of it or nothing.
  Project loadDemoProject(Timestamp now);

 private:
  // Runs `change` in one transaction and commits it; anything thrown rolls
  // the whole change back.
  template <typename Change>
  auto inTransaction(Change&& change) -> decltype(change()) {
    Transaction transaction(db_);
    if constexpr (std::is_void_v<decltype(change())>) {
      change();
      transaction.commit();
    } else {
      auto result = change();
      transaction.commit();
      return result;
    }
  }

  // The current row, or MissingRecordError naming what is gone.
  Project requireProject(const Uuid& id);
  BoardColumn requireColumn(const Uuid& id);
  Ticket requireTicket(const Uuid& id);
  Epic requireEpic(const Uuid& id);
  Person requirePerson(const Uuid& id);
  Iteration requireIteration(const Uuid& id);
  Milestone requireMilestone(const Uuid& id);

  Store& store_;
  Database& db_;
};

}  // namespace orvane
