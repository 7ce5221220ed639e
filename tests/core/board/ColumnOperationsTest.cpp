#include <gtest/gtest.h>

#include "core/store/Rows.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::TempStore;

std::vector<BoardColumn> board(TempStore& t, const Uuid& project) {
  return rows::select<BoardColumn>(t.store.db(), "WHERE project_id = ?1 ORDER BY position", project);
}

// The column names in board order; a position out of step shows as "!".
std::string order(TempStore& t, const Uuid& project) {
  std::string names;
  const auto columns = board(t, project);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    names += (i ? "|" : "") + columns[i].name + (columns[i].position == static_cast<std::int64_t>(i) ? "" : "!");
  }
  return names;
}

Uuid columnNamed(TempStore& t, const Uuid& project, std::string_view name) {
  for (const BoardColumn& column : board(t, project)) {
    if (column.name == name) return column.id;
  }
  throw std::logic_error("no column " + std::string(name));
}

TEST(ColumnOperations, NewProjectsGetTrimmedNamesKeysAndTheirColumnsInOrder) {
  TempStore t;
  const Project shop = t.service.createProject("  web shop 2025 \n", std::nullopt, testing::at(2025, 1, 6));
  EXPECT_EQ(shop.name, "web shop 2025");
  EXPECT_EQ(shop.key, "WEBSHO");
  EXPECT_EQ(shop.createdAt, testing::at(2025, 1, 6));
  EXPECT_EQ(shop.nextTicketNumber, 1);
  EXPECT_TRUE(shop.fillerCounts.empty());
  EXPECT_EQ(shop.fillerTierRaw, "system_default");
  EXPECT_EQ(*rows::find<Project>(t.store.db(), shop.id), shop);
  const auto columns = board(t, shop.id);
  ASSERT_EQ(columns.size(), ColumnTemplate::standard().size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ColumnTemplate& expected = ColumnTemplate::standard()[i];
    EXPECT_EQ(columns[i].position, static_cast<std::int64_t>(i));
    EXPECT_EQ(ColumnTemplate({columns[i].name, *columns[i].type(), columns[i].wipLimit}), expected);
  }

  const struct {
    const char* name;
    std::optional<std::string_view> key;
    const char* expected;
  } keys[] = {{"-", std::nullopt, "TKT"}, {"Forecasting", " frc-1 ", "FRC1"}, {"Platform", " \t", "PLATFO"}};
  for (const auto& k : keys) EXPECT_EQ(t.service.createProject(k.name, k.key, Timestamp{0}).key, k.expected) << k.name;

  const Project lab = t.service.createProject(
      "Lab", std::nullopt, Timestamp{0},
      {{" Inbox ", ColumnType::backlog, {}}, {"Doing", ColumnType::inProgress, 2}, {"Shipped\t", ColumnType::done, {}}});
  EXPECT_EQ(order(t, lab.id), "Inbox|Doing|Shipped");
  EXPECT_EQ(board(t, lab.id)[1].typeRaw, "in_progress");
  EXPECT_EQ(board(t, lab.id)[1].wipLimit, 2);
}

TEST(ColumnOperations, AddingAndMovingClampTheIndexAndRenumberTheBoard) {
  TempStore t;
  const Uuid p = t.service.createProject("Shop", std::nullopt, Timestamp{0}).id;
  const BoardColumn qa = t.service.addColumn(p, " QA ", ColumnType::inProgress, 2, 3);
  EXPECT_EQ(*rows::find<BoardColumn>(t.store.db(), qa.id), (BoardColumn{qa.id, "QA", 3, "in_progress", 2, p}));
  EXPECT_EQ(t.service.addColumn(p, "Last", ColumnType::backlog, std::nullopt).position, 6);
  t.service.addColumn(p, "First", ColumnType::done, std::nullopt, -4);
  t.service.addColumn(p, "Far", ColumnType::inProgress, std::nullopt, 99);
  EXPECT_EQ(order(t, p), "First|Backlog|To Do|In Progress|QA|Review|Done|Last|Far");

  t.service.moveColumn(columnNamed(t, p, "Done"), -3);
  t.service.moveColumn(columnNamed(t, p, "First"), 99);
  t.service.moveColumn(columnNamed(t, p, "QA"), 1);
  EXPECT_EQ(order(t, p), "Done|QA|Backlog|To Do|In Progress|Review|Last|Far|First");
}

TEST(ColumnOperations, RenamesAllowACaseChangeAndLeaveHistoryAlone) {
  TempStore t;
  const Uuid p = t.service.createProject("Shop", std::nullopt, Timestamp{0}).id;
  const Uuid review = columnNamed(t, p, "Review");
  const Uuid ticket = t.service.createTicket(p, {.title = "Copy", .column = review}, Timestamp{0}).id;
  t.service.renameColumn(review, " REVIEW ");
  t.service.renameProject(p, "SHOP\n");
  t.service.setWIPLimit(review, std::nullopt);

  const BoardColumn renamed = *rows::find<BoardColumn>(t.store.db(), review);
  EXPECT_EQ(renamed.name, "REVIEW");
  EXPECT_EQ(renamed.wipLimit, std::nullopt);
  EXPECT_EQ(rows::find<Project>(t.store.db(), p)->name, "SHOP");
  EXPECT_EQ(rows::select<TicketEvent>(t.store.db(), "WHERE ticket_id = ?1", ticket).at(0).toColumnName, "Review");
}

TEST(ColumnOperations, DeletingKeepsABacklogAndADoneColumnAndRenumbers) {
  TempStore t;
  const Uuid p = t.service.createProject("Shop", std::nullopt, Timestamp{0}).id;
  t.service.addColumn(p, "Shipped", ColumnType::done, std::nullopt);
  // An unknown type read back from the store counts as a backlog column.
  t.store.db().cached("UPDATE board_columns SET type_raw = 'icebox' WHERE id = ?1").bindAll(columnNamed(t, p, "To Do")).run();
  for (const char* name : {"In Progress", "Done", "Backlog"}) t.service.deleteColumn(columnNamed(t, p, name));
  EXPECT_EQ(order(t, p), "To Do|Review|Shipped");

  EXPECT_THROW(t.service.deleteColumn(columnNamed(t, p, "To Do")), BoardError);
  EXPECT_THROW(t.service.deleteColumn(columnNamed(t, p, "Shipped")), BoardError);
  t.service.deleteColumn(columnNamed(t, p, "Review"));  // an empty In Progress column always goes
  EXPECT_EQ(order(t, p), "To Do|Shipped");
}

}  // namespace
}  // namespace orvane
