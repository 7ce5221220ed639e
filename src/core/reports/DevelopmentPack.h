#pragma once

#include <unicode/utypes.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/model/ProjectSnapshot.h"
#include "engine/CivilDate.h"

U_NAMESPACE_BEGIN
class Calendar;
U_NAMESPACE_END

namespace orvane {

// A file linked to a pack's ticket. `present` says whether the file could be
// found when the pack was put together; a missing one is listed in the PDF,
// never dropped.
struct PackFile {
  std::string name;  // the link's label
  std::string path;  // absolute, as linked
  bool present = false;

  friend bool operator==(const PackFile&, const PackFile&) = default;
};

// A link to another ticket, read from this ticket's side: "Blocked by",
// "Blocks" or "Related to", and the other ticket.
struct PackLink {
  std::string relation;
  std::string reference;
  std::string title;

  friend bool operator==(const PackLink&, const PackLink&) = default;
};

struct PackChecklistItem {
  std::string title;
  bool isDone = false;

  friend bool operator==(const PackChecklistItem&, const PackChecklistItem&) = default;
};

struct PackComment {
  CivilDate day;  // in the user's calendar
  std::string body;

  friend bool operator==(const PackComment&, const PackComment&) = default;
};

struct PackTicket {
  std::string reference;  // "SHOP-12": what the developer quotes in replies
  std::string title;
  std::string details;
  std::optional<CivilDate> due;              // in the user's calendar
  std::vector<PackChecklistItem> checklist;  // by position
  std::vector<PackLink> links;               // by the other ticket's number
  std::vector<PackComment> comments;         // oldest first
  std::vector<PackFile> files;               // by label, then path

  friend bool operator==(const PackTicket&, const PackTicket&) = default;
};

// One person's work for the week: the open tickets assigned to them and
// flagged "this week", by number.
struct DevelopmentPack {
  Uuid personId;
  std::string personName;
  std::string email;  // may be empty: then the pack cannot be mailed
  // The name the pack's files share ("Shop - Ada - week of 2026-03-02"), made
  // safe as a file name and distinct from every other pack of the set.
  std::string fileStem;
  std::vector<PackTicket> tickets;

  std::int64_t fileCount() const;     // linked files, present or not
  std::int64_t missingCount() const;  // linked files not found
  std::string pdfName() const { return fileStem + ".pdf"; }
  std::string zipName() const { return fileStem + ".zip"; }

  friend bool operator==(const DevelopmentPack&, const DevelopmentPack&) = default;
};

struct DevelopmentPacks {
  std::string projectName;
  CivilDate weekStart;                 // the first day of today's week in the user's calendar
  std::vector<DevelopmentPack> packs;  // by person name
  // Open tickets flagged "this week" with nobody assigned: in no pack, so the
  // sheet says how many there are.
  std::int64_t unassignedTickets = 0;

  friend bool operator==(const DevelopmentPacks&, const DevelopmentPacks&) = default;
};

// Tells whether the file at a path can be found; the real file system by
// default, so the packs say what writing them will meet.
using FilePresence = std::function<bool(const std::string& path)>;
bool regularFileExists(const std::string& path);

// The development packs of `project` on the day of `now` in `calendar`: one
// per person with at least one open, not archived ticket flagged "this
// week". Done tickets are left out even when still flagged: a pack is the
// work still to do, and a flag left on a finished ticket must not send it
// again.
DevelopmentPacks developmentPacks(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar,
                                  const FilePresence& present = regularFileExists);

// The first day of the week that holds `day`, by the calendar's first weekday.
CivilDate weekStartOf(const CivilDate& day, const icu::Calendar& calendar);

// `text` made safe as one file name: "/", "\", ":", NUL and other control
// characters become "-", spaces and tabs are trimmed from both ends, and an
// empty, "." or ".." result becomes `fallback`.
std::string safeFileNamePart(std::string_view text, std::string_view fallback);

// The names of the linked files inside a pack's ZIP: "SHOP-12/plan.pdf", the
// ticket's reference as the folder and the file's own last path component,
// made safe; a name met twice in one folder gets " (2)", " (3)" before its
// extension. One name per file of `ticket.files`, in order; a file that is
// not present gets an empty name and takes none from the others.
std::vector<std::string> packMemberNames(const PackTicket& ticket);

}  // namespace orvane
