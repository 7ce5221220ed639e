#include "core/board/ProjectFixture.h"

namespace orvane {
namespace {

using BoardRefusals = testing::ProjectFixture;

TEST_F(BoardRefusals, EachBrokenRuleThrowsItsSentenceAndChangesNothing) {
  const Uuid shop = project.id;
  const Uuid other = service.createProject("Other", std::nullopt, Timestamp{0},
                                           {{"Inbox", ColumnType::backlog, {}}, {"Finished", ColumnType::done, {}}})
                         .id;
  const Project bare{Uuid::random(), "Bare", "BARE", Timestamp{0}};  // no columns at all
  rows::insert(db, bare);
  const Epic foreignEpic{Uuid::random(), "Theme", std::nullopt, std::nullopt, std::nullopt, "", other};
  rows::insert(db, foreignEpic);
  const auto column = [&](const Uuid& project, std::string_view name) {
    return rows::select<BoardColumn>(db, "WHERE project_id = ?1 AND name = ?2", project, name).at(0).id;
  };
  const Uuid live = ticket("Live");
  const Uuid gone = service.createTicket(shop, {.title = "Gone", .column = column(shop, "To Do")}, Timestamp{0}).id;
  service.archive(gone, Timestamp{1});

  // A valid Backlog and Done after the given templates, so only the rule under test breaks.
  const auto with = [](std::vector<ColumnTemplate> templates) {
    templates.insert(templates.end(), {{"Backlog", ColumnType::backlog, {}}, {"Done", ColumnType::done, {}}});
    return templates;
  };
  const auto create = [&](std::string_view name, std::vector<ColumnTemplate> templates) {
    service.createProject(name, std::nullopt, Timestamp{0}, templates);
  };
  const std::string empty = "A name, title or comment cannot be empty.";
  const std::string badLimit = "A WIP limit must be 1 or more, or empty for no limit.";
  const std::string noColumns = "The board needs at least one Backlog column and one Done column.";
  const std::string foreignColumn = "That column belongs to a different project.";
  const std::string epicElsewhere = "That epic belongs to a different project.";
  expectRefusals({
      {"project name blank", [&] { create(" \n", with({})); }, empty},
      {"project name taken, before any template rule", [&] { create(" SHOP ", {}); }, "\"SHOP\" is already in use."},
      {"blank template, before clash and limit", [&] { create("New", with({{"A", ColumnType::inProgress, 0}, {"a"}, {" "}})); }, empty},
      {"template clash, before limit", [&] { create("New", with({{"Review", ColumnType::inProgress, 0}, {"review "}})); }, "\"review\" is already in use."},
      {"template limit", [&] { create("New", with({{"Doing", ColumnType::inProgress, 0}})); }, badLimit},
      {"templates without done", [&] { create("New", {{"Backlog"}, {"Doing", ColumnType::inProgress}}); }, noColumns},
      {"templates without backlog", [&] { create("New", {{"Done", ColumnType::done}}); }, noColumns},
      {"rename project blank", [&] { service.renameProject(shop, "\t"); }, empty},
      {"rename project taken", [&] { service.renameProject(shop, "other"); }, "\"other\" is already in use."},
      {"add column blank", [&] { service.addColumn(shop, " ", ColumnType::backlog, std::nullopt); }, empty},
      {"add column taken, before limit", [&] { service.addColumn(shop, "review", ColumnType::backlog, 0); }, "\"review\" is already in use."},
      {"add column limit", [&] { service.addColumn(shop, "QA", ColumnType::inProgress, 0); }, badLimit},
      {"rename column blank", [&] { service.renameColumn(column(shop, "Review"), ""); }, empty},
      {"rename column taken", [&] { service.renameColumn(column(shop, "Review"), " DONE"); }, "\"DONE\" is already in use."},
      {"limit below one", [&] { service.setWIPLimit(column(shop, "Review"), -3); }, badLimit},
      {"column holding an archived ticket", [&] { service.deleteColumn(column(shop, "To Do")); }, "Column \"To Do\" still has tickets. Move or delete them first."},
      {"only done column", [&] { service.deleteColumn(column(shop, "Done")); }, "The board needs at least one Done column."},
      {"only backlog column", [&] { service.deleteColumn(column(other, "Inbox")); }, "The board needs at least one Backlog column."},
      {"ticket title blank", [&] { service.createTicket(shop, {.title = " \n "}, Timestamp{0}); }, empty},
      {"board without columns", [&] { service.createTicket(bare.id, {.title = "T"}, Timestamp{0}); }, noColumns},
      {"ticket into a foreign column", [&] { service.createTicket(shop, {.title = "T", .column = column(other, "Inbox")}, Timestamp{0}); }, foreignColumn},
      {"ticket with a foreign epic", [&] { service.createTicket(shop, {.title = "T", .epic = foreignEpic.id}, Timestamp{0}); }, epicElsewhere},
      {"move archived", [&] { service.moveTicket(gone, column(shop, "Done"), 0, Timestamp{2}); }, "Archived tickets cannot be moved. Restore the ticket first."},
      {"move to a foreign column", [&] { service.moveTicket(live, column(other, "Finished"), 0, Timestamp{2}); }, foreignColumn},
      {"title edited to blank", [&] { service.updateTicket(live, {.title = "\t"}); }, empty},
      {"assign a foreign epic", [&] { service.assign(live, foreignEpic.id); }, epicElsewhere},
  });
}

TEST_F(BoardRefusals, NamesAreOneNameOnlyWhenEqualInLowerCase) {
  // Case folding would take "Straße" for "STRASSE", "Weiß" for "weiss" and
  // "ﬁle" (one ligature) for "FILE"; lower-casing keeps them apart.
  const struct {
    std::string first;
    std::string second;
    bool accepted;
  } pairs[] = {
      {"Straße", "STRASSE", true}, {"Weiß", "weiss", true},     {"ﬁle", "FILE", true},
      {"Émile", "émile", false},   {"ÉLODIE", "Élodie", false},
  };
  // Each kind of name: the first added, then the second beside it.
  const std::vector<std::pair<std::string, std::function<void(const std::string&)>>> kinds{
      {"project", [&](const std::string& name) { service.createProject(name, std::nullopt, Timestamp{0}); }},
      {"column", [&](const std::string& name) { service.addColumn(project.id, name, ColumnType::inProgress, {}); }},
      {"person", [&](const std::string& name) { service.createPerson(name, std::nullopt); }},
      {"epic", [&](const std::string& name) { service.createEpic(project.id, name, std::nullopt, std::nullopt); }},
      {"iteration",
       [&](const std::string& name) { service.createIteration(project.id, name, "", Timestamp{0}, Timestamp{86400}); }},
  };
  for (const auto& [kind, add] : kinds) {
    for (const auto& pair : pairs) {
      SCOPED_TRACE(kind + ": " + pair.first + " / " + pair.second);
      add(pair.first);
      if (pair.accepted) {
        EXPECT_NO_THROW(add(pair.second));
        continue;
      }
      try {
        add(pair.second);
        ADD_FAILURE() << "accepted";
      } catch (const std::exception& error) {
        EXPECT_EQ(std::string(error.what()), "\"" + pair.second + "\" is already in use.");
      }
    }
  }
  // The columns of a new project, given together.
  for (const auto& pair : pairs) {
    SCOPED_TRACE("column templates: " + pair.first + " / " + pair.second);
    const auto create = [&] {
      service.createProject(
          "Templates " + pair.first, std::nullopt, Timestamp{0},
          {{"Backlog", ColumnType::backlog, {}}, {pair.first}, {pair.second}, {"Done", ColumnType::done, {}}});
    };
    if (pair.accepted) {
      EXPECT_NO_THROW(create());
    } else {
      EXPECT_THROW(create(), BoardError);
    }
  }
}

}  // namespace
}  // namespace orvane
