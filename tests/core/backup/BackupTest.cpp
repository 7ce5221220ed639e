#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/backup/Backup.h"
#include "core/model/ProjectSnapshot.h"
#include "core/store/Rows.h"
#include "core/support/StoreDump.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using nlohmann::json;
using testing::at;
using testing::dumpStore;
using testing::TempStore;

const Timestamp now = at(2026, 3, 5);

std::string fixture(const std::string& name) {
  std::ifstream in(std::string(ORVANE_TEST_DATA_DIR) + "/backup/" + name, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// The demo project plus what it lacks: a saved forecast and a file link with
// a bookmark of arbitrary bytes.
Project demoWithExtras(TempStore& t) {
  const Project demo = t.service.loadDemoProject(now);
  const auto snapshot = *t.service.snapshot(demo.id);
  ForecastRecord run;
  run.id = Uuid::random();
  run.runAt = Timestamp{now.secondsSince1970 - 0.25};
  run.kindRaw = "by_date";
  run.asOfDay = "2026-03-05";
  run.backlog = 12;
  run.targetDay = "2026-04-01";
  run.samples = {3, 4, 0};
  run.provenance = {"actual", "actual", "carried_forward"};
  run.resultDays = {"2026-04-02"};
  run.resultCounts = {9, 11};
  run.confidencePct = 85;
  run.note = "first look";
  run.projectId = demo.id;
  rows::insert(t.store.db(), run);
  rows::insert(t.store.db(), TicketFileLink{Uuid::random(), "notes", "/tmp/notes.txt", std::string("\0\xff\x01", 3),
                                            now, snapshot.tickets.front().id});
  return demo;
}

// Every identifier replaced by the order of its first appearance, so two
// documents compare equal when they differ only in identifiers.
json withoutIds(json document) {
  std::map<std::string, std::string> names;
  std::function<void(json&)> walk = [&](json& j) {
    if (j.is_string() && Uuid::parse(j.get<std::string>())) {
      j = names.emplace(j.get<std::string>(), "#" + std::to_string(names.size())).first->second;
    } else if (j.is_structured()) {
      for (auto& child : j) walk(child);
    }
  };
  walk(document);
  return document;
}

TEST(Backup, roundTripGivesTheSameDocumentApartFromIdentifiers) {
  TempStore source;
  demoWithExtras(source);
  const std::string first = source.service.makeBackup(now);

  TempStore target;
  const Backup::Report report = target.service.restoreBackup(first);
  EXPECT_EQ(report.projects, 1);
  EXPECT_EQ(report.forecasts, 1);
  EXPECT_GT(report.tickets, 20);
  EXPECT_GT(report.people, 0);
  EXPECT_GT(report.iterations, 0);
  EXPECT_GT(report.milestones, 0);
  EXPECT_GT(report.epicDependencies, 0);
  EXPECT_TRUE(report.warnings.empty());

  const std::string second = target.service.makeBackup(now);
  EXPECT_EQ(withoutIds(json::parse(first)), withoutIds(json::parse(second)));
  EXPECT_NE(json::parse(first)["projects"][0]["id"], json::parse(second)["projects"][0]["id"]);
  // Written in exactly the layout of nlohmann::json's dump(2).
  EXPECT_EQ(first, json::parse(first).dump(2));
  // What the document says about each field.
  const json document = json::parse(first);
  EXPECT_EQ(first.substr(0, 17), "{\n  \"createdAt\": ");  // sorted keys, two spaces
  EXPECT_EQ(document["version"], 4);
  EXPECT_EQ(document["createdAt"].get<double>(), now.secondsSince1970);
  const std::string id = document["projects"][0]["id"];
  EXPECT_EQ(id, Uuid::parse(id)->text());  // upper case
  EXPECT_EQ(document["projects"][0]["tickets"][0]["fileLinks"].back()["bookmark"], "AP8B");
  EXPECT_FALSE(document["links"][0]["links"].empty());
}

TEST(Backup, restoringIntoItsOwnStoreAddsACopyAndChangesNothing) {
  TempStore t;
  const Project demo = demoWithExtras(t);
  const auto before = t.service.snapshot(demo.id);
  const auto people = rows::select<Person>(t.store.db(), "ORDER BY id");

  t.service.restoreBackup(t.service.makeBackup(now));

  const auto projects = t.service.projects();
  ASSERT_EQ(projects.size(), 2u);
  EXPECT_EQ(projects[1].name, demo.name + " (restored)");
  const auto after = t.service.snapshot(demo.id);
  EXPECT_EQ(after->project, before->project);
  EXPECT_EQ(after->tickets, before->tickets);
  EXPECT_EQ(after->events, before->events);
  EXPECT_EQ(after->links, before->links);
  EXPECT_EQ(rows::select<Person>(t.store.db(), "ORDER BY id"), people);  // merged, not duplicated
  const auto copy = t.service.snapshot(projects[1].id);
  EXPECT_EQ(copy->tickets.size(), before->tickets.size());
  EXPECT_EQ(copy->links.size(), before->links.size());
  EXPECT_EQ(copy->tickets.front().assigneeId.has_value(), before->tickets.front().assigneeId.has_value());
}

TEST(Backup, aFileThatFailsInsertsNothing) {
  TempStore source;
  source.service.loadDemoProject(now);
  source.service.createProject("Zeta", std::nullopt, now);
  json good = json::parse(source.service.makeBackup(now));
  json brokenInTheMiddle = good;
  brokenInTheMiddle["projects"][0]["tickets"][3].erase("title");
  json wrongType = good;
  wrongType["projects"][0]["tickets"][5]["blocked"] = "yes";
  json newer = good;
  newer["version"] = 5;
  json otherFormat = good;
  otherFormat["format"] = "someone-else";
  json badBookmark = good;
  badBookmark["projects"][0]["tickets"][0]["fileLinks"] =
      json::array({{{"name", "a"}, {"path", "/a"}, {"bookmark", "A==="}, {"addedAt", 0}}});
  json badId = good;
  badId["people"][0]["id"] = "not-an-id";

  const struct {
    std::string bytes;
    std::string sentence;
  } cases[] = {
      {"{\"format\": \"orvane-backup\", ",
       "This file could not be read as a backup: it is not valid JSON (it ends too early)."},
      {"{\"format\": 'orvane-backup'}",
       "This file could not be read as a backup: it is not valid JSON (the error is at byte 12)."},
      {"", "This file could not be read as a backup: it is not valid JSON (it ends too early)."},
      {"[1, 2]", "This file is not a Orvane backup."},
      {otherFormat.dump(), "This file is not a Orvane backup."},
      {newer.dump(), "This backup was made by a newer version of Orvane (format 5). Update the app to restore it."},
      {brokenInTheMiddle.dump(),
       "This file could not be read as a backup: the key \"title\" is missing in projects[0].tickets[3]."},
      {wrongType.dump(),
       "This file could not be read as a backup: the value of projects[0].tickets[5].blocked is not true or false."},
      {badId.dump(), "This file could not be read as a backup: the value of people[0].id is not an identifier."},
      {badBookmark.dump(),
       "This file could not be read as a backup: the value of projects[0].tickets[0].fileLinks[0].bookmark is not "
       "base64 data."},
  };
  TempStore t;
  t.service.loadDemoProject(now);
  const std::string before = dumpStore(t.store.db());
  for (const auto& c : cases) {
    try {
      t.service.restoreBackup(c.bytes);
      ADD_FAILURE() << "restored: " << c.sentence;
    } catch (const Backup::BackupError& error) {
      EXPECT_EQ(error.what(), c.sentence);
    }
    EXPECT_EQ(dumpStore(t.store.db()), before) << c.sentence;
  }
}

TEST(Backup, aStoreFailureHalfwayRollsEverythingBack) {
  TempStore source;
  source.service.loadDemoProject(now);
  const std::string backup = source.service.makeBackup(now);
  TempStore t;
  t.service.createProject("Mine", std::nullopt, now);
  const std::string before = dumpStore(t.store.db());
  // A trigger makes the store refuse the tenth ticket.
  t.store.db().exec(
      "CREATE TEMP TRIGGER refuse BEFORE INSERT ON tickets WHEN NEW.number = 10 "
      "BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
  EXPECT_THROW(t.service.restoreBackup(backup), SqliteError);
  t.store.db().exec("DROP TRIGGER refuse");
  EXPECT_EQ(dumpStore(t.store.db()), before);
}

TEST(Backup, readsEveryVersionOfTheFormat) {
  const struct {
    std::string file;
    Backup::Report report;
  } cases[] = {
      {"v1.json", {1, 1, 1, 1, 0, 0, 0, {}}},
      {"v2.json", {1, 1, 0, 0, 1, 0, 0, {}}},
      {"v3.json", {1, 0, 0, 0, 0, 1, 1, {}}},
      {"v4_dangling.json",
       {1,
        1,
        0,
        0,
        0,
        0,
        0,
        {"LSE: an epic dependency referred to a missing epic and was dropped.",
         "LSE-7: a column move referred to a missing column and was dropped."}}},
  };
  for (const auto& c : cases) {
    TempStore t;
    EXPECT_EQ(t.service.restoreBackup(fixture(c.file)), c.report) << c.file;
  }
}

TEST(Backup, oldFilesReadWithTheirDefaultsAndDanglingReferencesLeftUnset) {
  TempStore t;
  t.service.restoreBackup(fixture("v1.json"));
  const auto old = *t.service.snapshot(t.service.projects().front().id);
  ASSERT_EQ(old.tickets.size(), 1u);
  const Ticket& ticket = old.tickets.front();
  EXPECT_FALSE(ticket.thisWeek);
  EXPECT_EQ(ticket.priorityRaw, 2);
  EXPECT_EQ(ticket.columnId, old.columns[1].id);
  EXPECT_EQ(old.people.front().id, ticket.assigneeId);
  EXPECT_EQ(old.project.createdAt.secondsSince1970, 1750000000.5);
  EXPECT_EQ(old.project.fillerCounts, (std::vector<std::int64_t>{2, 3}));
  EXPECT_EQ(old.events.size(), 2u);
  EXPECT_EQ(old.events[1].fromColumnId, old.columns[0].id);
  EXPECT_EQ(old.comments.size(), 1u);
  EXPECT_EQ(old.fileLinks.front().bookmark, std::nullopt);
  EXPECT_EQ(old.forecasts.front().provenance, (std::vector<std::string>{"actual", "user_estimated"}));
  EXPECT_TRUE(old.iterations.empty());
  EXPECT_TRUE(old.links.empty());

  TempStore u;
  u.service.restoreBackup(fixture("v4_dangling.json"));
  const auto loose = *u.service.snapshot(u.service.projects().front().id);
  const Ticket& moved = loose.tickets.front();
  EXPECT_TRUE(moved.thisWeek);
  EXPECT_EQ(moved.columnId, std::nullopt);
  EXPECT_EQ(moved.epicId, std::nullopt);
  EXPECT_EQ(moved.assigneeId, std::nullopt);
  EXPECT_EQ(loose.events.size(), 1u);
  EXPECT_TRUE(loose.links.empty());
  EXPECT_TRUE(loose.epicDependencies.empty());
}

TEST(Backup, mergesPeopleByNameIgnoringCaseAndKeepsTheFirstSpelling) {
  TempStore t;
  const Person ann = t.service.createPerson("Ann", std::nullopt);
  json file = json::parse(fixture("v1.json"));
  file["people"] = json::array({
      {{"id", "11111111-1111-4111-8111-111111111111"}, {"name", "ann"}},
      {{"id", "11111111-1111-4111-8111-111111111112"}, {"name", "Bob"}, {"email", "bob@example.com"}},
      {{"id", "11111111-1111-4111-8111-111111111113"}, {"name", "BOB"}},
      // Two names the store keeps apart, though case folding makes them one.
      {{"id", "11111111-1111-4111-8111-111111111114"}, {"name", "Straße"}},
      {{"id", "11111111-1111-4111-8111-111111111115"}, {"name", "STRASSE"}},
  });
  EXPECT_EQ(t.service.restoreBackup(file.dump()).people, 3);
  const auto people = rows::select<Person>(t.store.db(), "ORDER BY name");
  ASSERT_EQ(people.size(), 4u);
  EXPECT_EQ(people[0], ann);
  EXPECT_EQ(people[1].name, "Bob");
  EXPECT_EQ(people[1].email, "bob@example.com");
  EXPECT_EQ(people[2].name, "STRASSE");
  EXPECT_EQ(people[3].name, "Straße");
  EXPECT_EQ(t.service.snapshot(t.service.projects().front().id)->tickets.front().assigneeId, ann.id);
}

TEST(Backup, escapesTextAsJsonDoesAndMendsBrokenUtf8) {
  TempStore t;
  const std::string awkward = "Tab\there \"quoted\" back\\slash \x01\x1f\x7f \xC3\xA9\xF0\x9F\x98\x80 line\nbreak";
  rows::insert(t.store.db(), Person{Uuid::random(), awkward, std::nullopt, "", ""});
  rows::insert(t.store.db(), Person{Uuid::random(), "broken \xC3 \xED\xA0\x80 end\xF0\x9F", std::nullopt, "", ""});
  const std::string text = t.service.makeBackup(now);
  EXPECT_EQ(text, json::parse(text).dump(2));
  const json document = json::parse(text);
  // Each byte that starts no valid sequence becomes U+FFFD.
  EXPECT_EQ(document["people"][0]["name"],
            "broken \xEF\xBF\xBD \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD end\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(document["people"][1]["name"], awkward);
}

TEST(Backup, listsPeopleAndProjectsInNaturalOrder) {
  TempStore empty;
  const json nothing = json::parse(empty.service.makeBackup(now));
  EXPECT_EQ(nothing["people"], json::array());
  EXPECT_EQ(nothing["projects"], json::array());
  EXPECT_EQ(nothing["links"], json::array());
  EXPECT_EQ(nothing["format"], "orvane-backup");

  TempStore t;
  for (const char* name : {"Sprint 10", "sprint 2", "Alpha", "beta"}) t.service.createProject(name, std::nullopt, now);
  for (const char* name : {"zoe", "Adam", "Person 11", "person 9"}) t.service.createPerson(name, std::nullopt);
  const json document = json::parse(t.service.makeBackup(now));
  std::vector<std::string> projects, people;
  for (const auto& p : document["projects"]) projects.push_back(p["name"]);
  for (const auto& p : document["people"]) people.push_back(p["name"]);
  EXPECT_EQ(projects, (std::vector<std::string>{"Alpha", "beta", "sprint 2", "Sprint 10"}));
  EXPECT_EQ(people, (std::vector<std::string>{"Adam", "person 9", "Person 11", "zoe"}));
}

// A small project with one of everything that carries a date: "Shop", key
// SHOP, tickets 1 to 3 in the Backlog column, the first with a comment, two
// checklist items, a file link and a link to the second.
json smallBackup() {
  TempStore t;
  const Project shop = t.service.createProject("Shop", std::nullopt, now);
  const Uuid epic = t.service.createEpic(shop.id, "Launch", std::nullopt, now).id;
  t.service.createMilestone(shop.id, "Live", now, epic, "");
  t.service.createIteration(shop.id, "Sprint 1", "", now, now);
  std::vector<Uuid> tickets;
  for (const char* title : {"One", "Two", "Three"}) {
    tickets.push_back(t.service.createTicket(shop.id, NewTicket{.title = title}, now).id);
  }
  t.service.addComment(tickets[0], "hello", now);
  t.service.addChecklistItem(tickets[0], "a");
  t.service.addChecklistItem(tickets[0], "b");
  t.service.addFileLink(tickets[0], "/tmp/notes.txt", now);
  t.service.addLink(tickets[0], tickets[1], LinkKind::blockedBy, now);
  ForecastRecord run;
  run.id = Uuid::random();
  run.runAt = now;
  run.asOfDay = "2026-03-05";
  run.projectId = shop.id;
  rows::insert(t.store.db(), run);
  return json::parse(t.service.makeBackup(now));
}

TEST(Backup, refusesValuesNoStoreMayHoldAndAddsNothing) {
  const json good = smallBackup();
  const double lastSecond = 253402300799.0;  // 9999-12-31T23:59:59Z, the last supported
  const struct {
    std::function<void(json&)> change;
    std::string what;  // after "This backup cannot be restored: "
  } cases[] = {
      {[](json& f) { f["projects"][0]["createdAt"] = 1e300; },
       "project \"Shop\" has a createdAt outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["createdAt"] = -1e300; },
       "project \"Shop\" has a createdAt outside the years 0000 to 9999."},
      {[&](json& f) { f["projects"][0]["createdAt"] = lastSecond + 1; },
       "project \"Shop\" has a createdAt outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["createdAt"] = -62167219201.0; },  // a second before 0000-01-01
       "project \"Shop\" has a createdAt outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["committedDate"] = 1e17; },
       "project \"Shop\" has a committedDate outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][1]["completedAt"] = 1e300; },
       "project \"Shop\" has a completedAt of ticket 2 outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][2]["dueDate"] = -1e20; },
       "project \"Shop\" has a dueDate of ticket 3 outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][0]["events"][0]["at"] = 1e300; },
       "project \"Shop\" has a column move of ticket 1 dated outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][0]["comments"][0]["createdAt"] = 1e300; },
       "project \"Shop\" has a comment of ticket 1 dated outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][0]["fileLinks"][0]["addedAt"] = 1e300; },
       "project \"Shop\" has a file link of ticket 1 dated outside the years 0000 to 9999."},
      {[](json& f) { f["links"][0]["links"][0]["createdAt"] = 1e300; },
       "project \"Shop\" has a ticket link dated outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["epics"][0]["dueDate"] = 1e300; },
       "project \"Shop\" has a dueDate of epic \"Launch\" outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["milestones"][0]["date"] = 1e300; },
       "project \"Shop\" has a date of milestone \"Live\" outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["iterations"][0]["endDate"] = 1e300; },
       "project \"Shop\" has an endDate of iteration \"Sprint 1\" outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["forecasts"][0]["runAt"] = 1e300; },
       "project \"Shop\" has a saved forecast dated outside the years 0000 to 9999."},
      {[](json& f) { f["projects"][0]["tickets"][1]["number"] = 0; },
       "project \"Shop\" has a ticket numbered 0; ticket numbers run from 1 to 999999999."},
      {[](json& f) { f["projects"][0]["tickets"][1]["number"] = std::numeric_limits<std::int64_t>::min(); },
       "project \"Shop\" has a ticket numbered -9223372036854775808; ticket numbers run from 1 to 999999999."},
      {[](json& f) { f["projects"][0]["tickets"][1]["number"] = std::numeric_limits<std::int64_t>::max(); },
       "project \"Shop\" has a ticket numbered 9223372036854775807; ticket numbers run from 1 to 999999999."},
      {[](json& f) { f["projects"][0]["tickets"][2]["number"] = 1; }, "project \"Shop\" has two tickets numbered 1."},
      {[](json& f) { f["projects"][0]["tickets"][2]["title"] = " \n"; },
       "project \"Shop\" has a ticket without a title (number 3)."},
      {[](json& f) { f["projects"][0]["columns"][1]["name"] = ""; }, "project \"Shop\" has a column without a name."},
      {[](json& f) { f["projects"][0]["epics"][0]["name"] = "  "; }, "project \"Shop\" has an epic without a name."},
      {[](json& f) { f["projects"][0]["name"] = " "; }, "a project (key SHOP) has no name."},
      {[](json& f) { f["people"] = json::array({{{"id", "11111111-1111-4111-8111-111111111111"}, {"name", ""}}}); },
       "a person has no name."},
  };
  TempStore t;
  t.service.createProject("Mine", std::nullopt, now);
  const std::string before = dumpStore(t.store.db());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    json file = good;
    c.change(file);
    try {
      t.service.restoreBackup(file.dump());
      ADD_FAILURE() << "restored";
    } catch (const Backup::BackupError& error) {
      EXPECT_EQ(error.what(), "This backup cannot be restored: " + c.what + " Nothing was restored.");
      EXPECT_EQ(error.kind(), Backup::BackupError::Kind::unsupportedValue);
    }
    EXPECT_EQ(dumpStore(t.store.db()), before);
  }
  // The edges themselves are days like any other.
  json edges = good;
  edges["projects"][0]["createdAt"] = -62167219200.0;
  edges["projects"][0]["tickets"][0]["dueDate"] = lastSecond;
  EXPECT_TRUE(t.service.restoreBackup(edges.dump()).warnings.empty());
}

TEST(Backup, repairsValuesWithOneRightFormAndSaysWhatItDid) {
  const json good = smallBackup();
  const struct {
    std::function<void(json&)> change;
    std::vector<std::string> warnings;
    std::function<void(const ProjectSnapshot&)> expect;
  } cases[] = {
      {[](json& f) { f["projects"][0]["nextTicketNumber"] = 2; },
       {"SHOP: the next ticket number was not above the highest ticket number and was raised to 4."},
       [](const ProjectSnapshot& s) { EXPECT_EQ(s.project.nextTicketNumber, 4); }},
      {[](json& f) { f["projects"][0]["nextTicketNumber"] = -7; },
       {"SHOP: the next ticket number was not above the highest ticket number and was raised to 4."},
       [](const ProjectSnapshot& s) { EXPECT_EQ(s.project.nextTicketNumber, 4); }},
      {[](json& f) { f["projects"][0]["nextTicketNumber"] = std::numeric_limits<std::int64_t>::max(); },
       {"SHOP: the next ticket number was beyond 999999999 and was lowered to 4."},
       [](const ProjectSnapshot& s) { EXPECT_EQ(s.project.nextTicketNumber, 4); }},
      {[](json& f) {
         f["projects"][0]["columns"][0]["wipLimit"] = -3;
         f["projects"][0]["columns"][1]["wipLimit"] = 0;
       },
       {"SHOP: WIP limits below 1 were removed, leaving no limit (2 columns)."},
       [](const ProjectSnapshot& s) {
         for (const BoardColumn& c : s.columns) EXPECT_TRUE(!c.wipLimit || *c.wipLimit >= 1) << c.name;
       }},
      {[](json& f) { f["projects"][0]["columns"][3]["type"] = "testing"; },
       {"SHOP: unknown column types were read as Backlog (1 column)."},
       [](const ProjectSnapshot& s) {
         EXPECT_EQ(std::count_if(s.columns.begin(), s.columns.end(), [](auto& c) { return c.typeRaw == "backlog"; }),
                   3);
       }},
      {[](json& f) {
         for (auto& c : f["projects"][0]["columns"]) c["position"] = 7;
       },
       {"SHOP: column positions were out of order and were renumbered (5 columns)."},
       [&](const ProjectSnapshot& s) {
         ASSERT_EQ(s.columns.size(), 5u);  // in file order, 0..4
         for (std::size_t i = 0; i < s.columns.size(); ++i) {
           EXPECT_EQ(s.columns[i].position, static_cast<std::int64_t>(i));
           EXPECT_EQ(s.columns[i].name, good["projects"][0]["columns"][i]["name"]);
         }
       }},
      {[](json& f) {
         auto& tickets = f["projects"][0]["tickets"];
         tickets[0]["position"] = 5;
         tickets[1]["position"] = 5;
         tickets[2]["position"] = -1;
       },
       {"SHOP: ticket positions were out of order and were renumbered (3 tickets)."},
       [](const ProjectSnapshot& s) {
         EXPECT_EQ(s.tickets[2].position, 0);
         EXPECT_EQ(s.tickets[0].position, 1);
         EXPECT_EQ(s.tickets[1].position, 2);
       }},
      {[](json& f) {
         for (auto& item : f["projects"][0]["tickets"][0]["checklist"]) item["position"] = 3;
       },
       {"SHOP: checklist positions were out of order and were renumbered (2 items)."},
       [](const ProjectSnapshot& s) {
         std::vector<std::int64_t> positions;
         for (const ChecklistItem& item : s.checklistItems) positions.push_back(item.position);
         std::sort(positions.begin(), positions.end());
         EXPECT_EQ(positions, (std::vector<std::int64_t>{0, 1}));
       }},
      {[](json& f) { f["projects"][0]["key"] = " "; },
       {"SHOP: the project had no key; it was given one made from its name."},
       [](const ProjectSnapshot& s) { EXPECT_EQ(s.project.key, "SHOP"); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.warnings.front());
    json file = good;
    c.change(file);
    TempStore t;
    EXPECT_EQ(t.service.restoreBackup(file.dump()).warnings, c.warnings);
    const Uuid project = t.service.projects().front().id;
    c.expect(*t.service.snapshot(project));
    // The repaired project takes new work as any other does.
    const Ticket next = t.service.createTicket(project, NewTicket{.title = "Next"}, now);
    EXPECT_EQ(next.number, 4);
  }
}

TEST(Backup, aRestoredProjectWhoseNameOrKeyIsTakenGetsAFreeOneAndSaysSo) {
  const std::string backup = smallBackup().dump();
  TempStore t;
  EXPECT_TRUE(t.service.restoreBackup(backup).warnings.empty());
  EXPECT_EQ(t.service.restoreBackup(backup).warnings,
            (std::vector<std::string>{
                "SHOP2: \"Shop\" is already in use; restored as \"Shop (restored)\".",
                "SHOP2: the key SHOP is already in use; the tickets are numbered SHOP2-1, SHOP2-2 and so on."}));
  EXPECT_EQ(t.service.restoreBackup(backup).warnings,
            (std::vector<std::string>{
                "SHOP3: \"Shop\" is already in use; restored as \"Shop (restored 2)\".",
                "SHOP3: the key SHOP is already in use; the tickets are numbered SHOP3-1, SHOP3-2 and so on."}));
  std::vector<std::string> names;
  for (const Project& p : t.service.projects()) names.push_back(p.name + " " + p.key);
  EXPECT_EQ(names, (std::vector<std::string>{"Shop SHOP", "Shop (restored 2) SHOP3", "Shop (restored) SHOP2"}));

  // Names are compared ignoring case, within one file too; a free name with
  // a taken key changes only the key.
  json two = json::parse(backup);
  two["projects"].push_back(two["projects"][0]);
  two["projects"][1]["id"] = Uuid::random().text();
  two["projects"][1]["name"] = "SHOP";
  two["projects"][1]["key"] = "Shop";
  TempStore u;
  u.service.createProject("Other", "shop", now);
  EXPECT_EQ(u.service.restoreBackup(two.dump()).warnings,
            (std::vector<std::string>{
                "SHOP2: the key SHOP is already in use; the tickets are numbered SHOP2-1, SHOP2-2 and so on.",
                "Shop3: \"SHOP\" is already in use; restored as \"SHOP (restored)\".",
                "Shop3: the key Shop is already in use; the tickets are numbered Shop3-1, Shop3-2 and so on."}));
}

}  // namespace
}  // namespace orvane
