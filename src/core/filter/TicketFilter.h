#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/model/ProjectSnapshot.h"
#include "core/model/TicketPriority.h"
#include "core/model/Uuid.h"

namespace orvane {

// A ticket's status by the type of its column.
enum class StatusFilter { any, notStarted, inProgress, done };

std::string_view rawValue(StatusFilter status);      // "any", "notStarted", "inProgress", "done"
std::string_view displayLabel(StatusFilter status);  // "Any status", "Not started", "In progress", "Done"
std::optional<StatusFilter> statusFilterFromRaw(std::string_view raw);
// Every case in picker order.
inline constexpr std::array allStatusFilters{StatusFilter::any, StatusFilter::notStarted, StatusFilter::inProgress,
                                             StatusFilter::done};

// Which iteration a ticket must be in.
struct IterationFilter {
  enum class Kind {
    any,       // no restriction
    active,    // the ticket's iteration is the active one
    none,      // in no iteration (the backlog)
    specific,  // in the iteration `id`
  };
  Kind kind = Kind::any;
  std::optional<Uuid> id;  // set for specific only

  static IterationFilter specific(const Uuid& iteration) { return {Kind::specific, iteration}; }
  static IterationFilter active() { return {Kind::active, std::nullopt}; }
  static IterationFilter none() { return {Kind::none, std::nullopt}; }

  friend bool operator==(const IterationFilter&, const IterationFilter&) = default;
};

// What the filter bar of every ticket view holds: a plain value that keeps
// ids, never entities, so it stays valid while the project changes. The
// default shows every ticket that is not archived.
struct TicketFilter {
  std::string text;  // search words, all of which must occur
  std::optional<Uuid> epicId;
  std::optional<Uuid> assigneeId;
  bool unassignedOnly = false;
  std::optional<TicketPriority> priority;
  std::optional<std::string> tag;  // compared ignoring case
  StatusFilter status = StatusFilter::any;
  bool blockedOnly = false;
  bool thisWeekOnly = false;
  IterationFilter iteration;
  bool includeArchived = false;
  bool archivedOnly = false;  // wins over includeArchived

  // Differs from the default in any field.
  bool isActive() const { return *this != TicketFilter{}; }

  // Every test must pass: archive, epic, assignee, priority, tag, blocked,
  // this week, iteration, status, then text. The text test looks at the
  // title, details, reference, epic name, assignee name, tags, comments and
  // checklist items together, ignoring case and diacritics ("emile" finds
  // "Émile"). `project` is the snapshot the ticket belongs to.
  bool matches(const Ticket& ticket, const ProjectSnapshot& project) const;

  // The matching tickets in their given order. Cheaper than calling matches
  // for each: the search words and the comments are indexed once.
  std::vector<const Ticket*> apply(std::span<const Ticket* const> tickets, const ProjectSnapshot& project) const;
  std::vector<const Ticket*> apply(std::span<const Ticket> tickets, const ProjectSnapshot& project) const;

  friend bool operator==(const TicketFilter&, const TicketFilter&) = default;
};

}  // namespace orvane
