// Projects and the columns of their boards.
#include <algorithm>

#include "core/board/BoardService.h"
#include "core/board/ServiceRules.h"
#include "core/store/Rows.h"
#include "core/text/Text.h"

namespace orvane {
namespace {

std::vector<BoardColumn> columnsOf(Database& db, const Uuid& project) {
  return rows::select<BoardColumn>(db, "WHERE project_id = ?1 ORDER BY position, rowid", project);
}

// Writes position 0..n-1 in list order, touching only columns that change.
void writeColumnPositions(Database& db, const std::vector<BoardColumn>& ordered) {
  Statement& update = db.cached("UPDATE board_columns SET position = ?2 WHERE id = ?1 AND position != ?2");
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    update.reset();
    update.bindAll(ordered[i].id, static_cast<std::int64_t>(i)).run();
  }
}

void requireLimit(const std::optional<std::int64_t>& limit) {
  if (limit && *limit < 1) throw BoardError::invalidWIPLimit();
}

std::int64_t clampedIndex(std::int64_t index, std::size_t size) {
  return std::clamp<std::int64_t>(index, 0, static_cast<std::int64_t>(size));
}

}  // namespace

Project BoardService::createProject(std::string_view name, std::optional<std::string_view> key, Timestamp now,
                                    const std::vector<ColumnTemplate>& columns) {
  return inTransaction([&] {
    Project project;
    project.id = Uuid::random();
    project.name = rules::requireText(name, BoardError::emptyText());
    if (rules::nameTaken(rows::select<Project>(db_, ""), project.name)) throw BoardError::duplicateName(project.name);

    // Each rule is checked over the whole list before the next one, so the
    // first broken rule is reported whatever the template order.
    std::vector<ColumnTemplate> templates = columns;
    for (ColumnTemplate& column : templates) column.name = rules::requireText(column.name, BoardError::emptyText());
    for (std::size_t i = 1; i < templates.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        if (text::sameName(templates[j].name, templates[i].name)) {
          throw BoardError::duplicateName(templates[i].name);
        }
      }
    }
    for (const ColumnTemplate& column : templates) requireLimit(column.wipLimit);
    const auto hasType = [&](ColumnType type) {
      return std::any_of(templates.begin(), templates.end(), [&](const ColumnTemplate& c) { return c.type == type; });
    };
    if (!hasType(ColumnType::done) || !hasType(ColumnType::backlog)) throw BoardError::noColumns();

    const std::string prefix = key ? text::trimmed(*key) : std::string();
    project.key = projectKey(prefix.empty() ? project.name : prefix);
    project.createdAt = now;
    rows::insert(db_, project);
    for (std::size_t i = 0; i < templates.size(); ++i) {
      rows::insert(db_, BoardColumn{Uuid::random(), templates[i].name, static_cast<std::int64_t>(i),
                                    std::string(rawValue(templates[i].type)), templates[i].wipLimit, project.id});
    }
    return project;
  });
}

void BoardService::deleteProject(const Uuid& project) {
  inTransaction([&] {
    requireProject(project);
    rows::remove<Project>(db_, project);
  });
}

void BoardService::renameProject(const Uuid& project, std::string_view name) {
  inTransaction([&] {
    Project row = requireProject(project);
    row.name = rules::requireText(name, BoardError::emptyText());
    if (rules::nameTaken(rows::select<Project>(db_, ""), row.name, row.id)) throw BoardError::duplicateName(row.name);
    rows::update(db_, row);
  });
}

BoardColumn BoardService::addColumn(const Uuid& project, std::string_view name, ColumnType type,
                                    std::optional<std::int64_t> wipLimit, std::optional<std::int64_t> at) {
  return inTransaction([&] {
    requireProject(project);
    std::vector<BoardColumn> columns = columnsOf(db_, project);
    BoardColumn column{
        Uuid::random(), rules::requireText(name, BoardError::emptyText()), 0, std::string(rawValue(type)), wipLimit,
        project};
    if (rules::nameTaken(columns, column.name)) throw BoardError::duplicateName(column.name);
    requireLimit(wipLimit);

    column.position = clampedIndex(at.value_or(static_cast<std::int64_t>(columns.size())), columns.size());
    rows::insert(db_, column);
    columns.insert(columns.begin() + column.position, column);
    writeColumnPositions(db_, columns);
    return column;
  });
}

void BoardService::renameColumn(const Uuid& column, std::string_view name) {
  inTransaction([&] {
    BoardColumn row = requireColumn(column);
    row.name = rules::requireText(name, BoardError::emptyText());
    if (rules::nameTaken(columnsOf(db_, row.projectId), row.name, row.id)) throw BoardError::duplicateName(row.name);
    rows::update(db_, row);
  });
}

void BoardService::setWIPLimit(const Uuid& column, std::optional<std::int64_t> limit) {
  inTransaction([&] {
    BoardColumn row = requireColumn(column);
    requireLimit(limit);
    row.wipLimit = limit;
    rows::update(db_, row);
  });
}

void BoardService::moveColumn(const Uuid& column, std::int64_t to) {
  inTransaction([&] {
    const BoardColumn moving = requireColumn(column);
    std::vector<BoardColumn> columns = columnsOf(db_, moving.projectId);
    std::erase_if(columns, [&](const BoardColumn& c) { return c.id == moving.id; });
    columns.insert(columns.begin() + clampedIndex(to, columns.size()), moving);
    writeColumnPositions(db_, columns);
  });
}

// A column always belongs to a project here: the store refuses a column row
// without one, so there is no "column without a project" to refuse.
void BoardService::deleteColumn(const Uuid& column) {
  inTransaction([&] {
    const BoardColumn doomed = requireColumn(column);
    Statement& holding = db_.cached("SELECT EXISTS (SELECT 1 FROM tickets WHERE column_id = ?1)");
    holding.bindAll(doomed.id);
    const bool hasTickets = holding.step() && holding.boolean(0);
    holding.reset();
    if (hasTickets) throw BoardError::columnNotEmpty(doomed.name);

    std::vector<BoardColumn> columns = columnsOf(db_, doomed.projectId);
    const ColumnType type = doomed.effectiveType();
    if (type != ColumnType::inProgress && std::count_if(columns.begin(), columns.end(), [&](const BoardColumn& c) {
                                            return c.effectiveType() == type;
                                          }) == 1) {
      throw BoardError::lastColumnOfType(type);
    }

    rows::remove<BoardColumn>(db_, doomed.id);
    std::erase_if(columns, [&](const BoardColumn& c) { return c.id == doomed.id; });
    writeColumnPositions(db_, columns);
  });
}

}  // namespace orvane
