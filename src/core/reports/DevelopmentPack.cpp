#include "core/reports/DevelopmentPack.h"

#include <unicode/calendar.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <unordered_map>

#include "core/model/LinkKind.h"
#include "engine/LocalCivilDate.h"

namespace orvane {
namespace {

std::string linkRelation(LinkKind kind, bool outgoing) {
  if (kind == LinkKind::blockedBy && !outgoing) return "Blocks";
  return std::string(displayLabel(kind));
}

PackTicket packTicket(const ProjectSnapshot& project, const Ticket& ticket, const icu::Calendar& calendar,
                      const FilePresence& present) {
  PackTicket out;
  out.reference = project.referenceCode(ticket);
  out.title = ticket.title;
  out.details = ticket.details;
  if (ticket.dueDate) out.due = civilDateFromLocal(*ticket.dueDate, calendar);

  std::vector<const ChecklistItem*> items;
  for (const ChecklistItem& item : project.checklistItems)
    if (item.ticketId == ticket.id) items.push_back(&item);
  std::ranges::stable_sort(items, {}, &ChecklistItem::position);
  for (const ChecklistItem* item : items) out.checklist.push_back({item->title, item->isDone});

  std::vector<std::pair<std::int64_t, PackLink>> links;
  for (const TicketLink& link : project.links) {
    const bool outgoing = link.sourceId == ticket.id;
    if (!outgoing && link.targetId != ticket.id) continue;
    const Ticket* other = project.ticket(outgoing ? link.targetId : link.sourceId);
    const std::optional<LinkKind> kind = linkKindFromRaw(link.kindRaw);
    if (!other || !kind) continue;
    links.push_back({other->number, {linkRelation(*kind, outgoing), project.referenceCode(*other), other->title}});
  }
  std::ranges::stable_sort(links, {}, &std::pair<std::int64_t, PackLink>::first);
  for (auto& [number, link] : links) out.links.push_back(std::move(link));

  std::vector<const TicketComment*> comments;
  for (const TicketComment& comment : project.comments)
    if (comment.ticketId == ticket.id) comments.push_back(&comment);
  std::ranges::stable_sort(comments, {}, &TicketComment::createdAt);
  for (const TicketComment* comment : comments)
    out.comments.push_back({civilDateFromLocal(comment->createdAt, calendar), comment->body});

  for (const TicketFileLink& file : project.fileLinks)
    if (file.ticketId == ticket.id) out.files.push_back({file.name, file.path, present(file.path)});
  std::ranges::sort(out.files, [](const PackFile& a, const PackFile& b) {
    return std::tie(a.name, a.path) < std::tie(b.name, b.path);
  });
  return out;
}

// `stem`, or `stem (2)`, `stem (3)` ... whichever `taken` does not hold yet;
// the answer is added to `taken`. Compared without regard to ASCII case, so
// the names stay distinct on case-insensitive file systems too.
std::string distinctName(const std::string& stem, const std::string& extension, std::set<std::string>& taken) {
  const auto folded = [](std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
  };
  std::string candidate = stem + extension;
  for (int n = 2; taken.contains(folded(candidate)); ++n) candidate = stem + " (" + std::to_string(n) + ")" + extension;
  taken.insert(folded(candidate));
  return candidate;
}

}  // namespace

bool regularFileExists(const std::string& path) {
  std::error_code error;
  return !path.empty() && std::filesystem::is_regular_file(path, error);
}

std::int64_t DevelopmentPack::fileCount() const {
  std::int64_t count = 0;
  for (const PackTicket& ticket : tickets) count += static_cast<std::int64_t>(ticket.files.size());
  return count;
}

std::int64_t DevelopmentPack::missingCount() const {
  std::int64_t count = 0;
  for (const PackTicket& ticket : tickets) count += std::ranges::count(ticket.files, false, &PackFile::present);
  return count;
}

CivilDate weekStartOf(const CivilDate& day, const icu::Calendar& calendar) {
  // 1970-01-01 was a Thursday; ICU numbers the weekdays from Sunday = 1.
  const std::int64_t days = day.daysSinceEpoch();
  const std::int64_t weekday = ((days + 4) % 7 + 7) % 7 + 1;
  const std::int64_t first = static_cast<std::int64_t>(calendar.getFirstDayOfWeek());
  return day.addingDays(-((weekday - first + 7) % 7));
}

std::string safeFileNamePart(std::string_view text, std::string_view fallback) {
  std::string safe;
  safe.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    safe += (c == '/' || c == '\\' || c == ':' || byte < 0x20 || byte == 0x7f) && c != '\t' ? '-' : c;
  }
  const auto first = safe.find_first_not_of(" \t");
  if (first == std::string::npos) return std::string(fallback);
  safe = safe.substr(first, safe.find_last_not_of(" \t") - first + 1);
  if (safe == "." || safe == "..") return std::string(fallback);
  return safe;
}

std::vector<std::string> packMemberNames(const PackTicket& ticket) {
  const std::string folder = safeFileNamePart(ticket.reference, "ticket") + "/";
  std::set<std::string> taken;
  std::vector<std::string> names;
  for (const PackFile& file : ticket.files) {
    if (!file.present) {
      names.emplace_back();
      continue;
    }
    const std::string last = std::filesystem::path(file.path).filename().string();
    const std::string name = safeFileNamePart(last, "file");
    const auto dot = name.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > 0;
    names.push_back(folder + distinctName(hasExtension ? name.substr(0, dot) : name,
                                          hasExtension ? name.substr(dot) : std::string(), taken));
  }
  return names;
}

DevelopmentPacks developmentPacks(const ProjectSnapshot& project, Timestamp now, const icu::Calendar& calendar,
                                  const FilePresence& present) {
  DevelopmentPacks out;
  out.projectName = project.project.name;
  out.weekStart = weekStartOf(civilDateFromLocal(now, calendar), calendar);

  // Tickets come by number, so each pack's tickets do too.
  std::unordered_map<Uuid, std::vector<const Ticket*>> byPerson;
  for (const Ticket& ticket : project.tickets) {
    if (!ticket.thisWeek || !project.isOpen(ticket)) continue;
    if (!ticket.assigneeId || !project.person(*ticket.assigneeId)) {
      ++out.unassignedTickets;
      continue;
    }
    byPerson[*ticket.assigneeId].push_back(&ticket);
  }

  const std::string projectPart = safeFileNamePart(project.project.name, "project");
  const std::string weekPart = "week of " + out.weekStart.description();
  std::set<std::string> takenStems;
  for (const Person& person : project.people) {  // by name
    const auto found = byPerson.find(person.id);
    if (found == byPerson.end()) continue;
    DevelopmentPack pack;
    pack.personId = person.id;
    pack.personName = person.name;
    pack.email = person.email;
    pack.fileStem =
        distinctName(projectPart + " - " + safeFileNamePart(person.name, "person") + " - " + weekPart, "", takenStems);
    for (const Ticket* ticket : found->second) pack.tickets.push_back(packTicket(project, *ticket, calendar, present));
    out.packs.push_back(std::move(pack));
  }
  return out;
}

}  // namespace orvane
