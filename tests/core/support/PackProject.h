#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "core/board/BoardService.h"
#include "core/support/TempStore.h"

namespace orvane::testing {

// A project whose week's work spans two people, with everything a
// development pack carries: checklists, comments, links both ways, and files
// linked from disk (real files under `files`, one of them gone). Beside them,
// tickets that belong in no pack: a done one and an archived one still
// flagged, an unflagged one, and a flagged one with nobody assigned.
struct PackProject {
  Uuid project;
  Uuid ada, bob, cy;
  Uuid adaFirst, adaSecond, bobTicket;
  std::filesystem::path planFile, sketchFile, bobFile, missingFile;
  std::string planBytes, sketchBytes, bobBytes;

  PackProject(BoardService& service, const std::filesystem::path& files, Timestamp now) {
    const auto write = [&](const std::string& name, const std::string& bytes) {
      const std::filesystem::path path = files / name;
      std::ofstream(path, std::ios::binary) << bytes;
      return path;
    };
    planBytes = std::string("%PDF-1.4\n\x00\x01\x02\xff plan", 19);
    sketchBytes.assign(70000, '\0');
    for (std::size_t i = 0; i < sketchBytes.size(); ++i) sketchBytes[i] = static_cast<char>((i * 131) % 251);
    bobBytes = "column,width\nname,12\n";
    std::filesystem::create_directories(files / "other");
    planFile = write("plan.pdf", planBytes);
    sketchFile = write("other/plan.pdf", sketchBytes);  // the same name as planFile, another folder
    bobFile = write("widths.csv", bobBytes);
    missingFile = files / "gone.png";

    project = service.createProject("Web / Shop", std::string_view("SHOP"), now).id;
    ada = service.createPerson("Ada Lovelace", std::nullopt).id;
    service.updatePerson(ada, "Ada Lovelace", "ada@example.com", "");
    bob = service.createPerson("Bob: the builder", std::nullopt).id;
    cy = service.createPerson("Cy", std::nullopt).id;

    const auto ticket = [&](const std::string& title, std::optional<Uuid> person, bool thisWeek,
                            std::optional<Timestamp> due = std::nullopt) {
      NewTicket fields;
      fields.title = title;
      fields.details = title + " in detail.\nSecond line of the details.";
      fields.dueDate = due;
      const Uuid id = service.createTicket(project, fields, now).id;
      if (person) service.setAssignee(id, person);
      if (thisWeek) service.setThisWeek(id, true);
      return id;
    };
    const Uuid blocker = ticket("Agree the payment provider", std::nullopt, false);                // SHOP-1
    adaFirst = ticket("Checkout page", ada, true, Timestamp{now.secondsSince1970 + 3 * 86400.0});  // SHOP-2
    adaSecond = ticket("Receipt e-mail", ada, true);                                               // SHOP-3
    bobTicket = ticket("Table widths", bob, true);                                                 // SHOP-4
    const Uuid done = ticket("Finished last week", ada, true);                                     // SHOP-5
    const Uuid archived = ticket("Shelved idea", bob, true);                                       // SHOP-6
    ticket("Nobody's yet", std::nullopt, true);                                                    // SHOP-7
    ticket("Cy's later work", cy, false);                                                          // SHOP-8

    service.addChecklistItem(adaFirst, "Card form");
    const Uuid second = service.addChecklistItem(adaFirst, "Address form").id;
    service.setChecklistItem(second, true);
    service.addComment(adaFirst, "Use the new button style.", Timestamp{now.secondsSince1970 - 86400.0});
    service.addComment(adaFirst, "Ask about VAT numbers.", now);
    service.addLink(adaFirst, blocker, LinkKind::blockedBy, now);
    service.addLink(adaSecond, adaFirst, LinkKind::blockedBy, now);
    service.addLink(bobTicket, adaFirst, LinkKind::relatedTo, now);
    service.addFileLink(adaFirst, planFile.string(), now);
    service.addFileLink(adaFirst, sketchFile.string(), now);
    service.addFileLink(adaFirst, missingFile.string(), now);
    service.addFileLink(bobTicket, bobFile.string(), now);
    service.addFileLink(done, bobFile.string(), now);

    const ProjectSnapshot snapshot = *service.snapshot(project);
    service.moveTicket(done, snapshot.columns.back().id, std::nullopt, now);  // the done column
    service.archive(archived, now);
  }
};

}  // namespace orvane::testing
