// Placeholders until these operations are written; each throws.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include <stdexcept>

#include "core/board/BoardService.h"

namespace orvane {

Person BoardService::createPerson(std::string_view name, std::optional<std::string> colorHex) { throw std::logic_error("createPerson is not written yet"); }
void BoardService::renamePerson(const Uuid& person, std::string_view name) { throw std::logic_error("renamePerson is not written yet"); }
void BoardService::updatePerson(const Uuid& person, std::string_view name, std::string_view email, std::string_view phone) { throw std::logic_error("updatePerson is not written yet"); }
void BoardService::deletePerson(const Uuid& person) { throw std::logic_error("deletePerson is not written yet"); }
void BoardService::setAssignee(const Uuid& ticket, std::optional<Uuid> person) { throw std::logic_error("setAssignee is not written yet"); }
void BoardService::updateClient(const Uuid& project, std::string_view name, std::string_view company, std::string_view email) { throw std::logic_error("updateClient is not written yet"); }
void BoardService::updateSetup(const Uuid& project, const ProjectSetup& setup) { throw std::logic_error("updateSetup is not written yet"); }
Epic BoardService::createEpic(const Uuid& project, std::string_view name, std::optional<std::string> colorHex, std::optional<Timestamp> dueDate) { throw std::logic_error("createEpic is not written yet"); }
void BoardService::updateEpic(const Uuid& epic, std::string_view name, std::string_view details, std::optional<Timestamp> startDate, std::optional<Timestamp> dueDate, std::optional<std::string> colorHex) { throw std::logic_error("updateEpic is not written yet"); }
void BoardService::deleteEpic(const Uuid& epic) { throw std::logic_error("deleteEpic is not written yet"); }
EpicDependency BoardService::addEpicDependency(const Uuid& successor, const Uuid& waitsFor, Timestamp now) { throw std::logic_error("addEpicDependency is not written yet"); }
void BoardService::removeEpicDependency(const Uuid& dependency) { throw std::logic_error("removeEpicDependency is not written yet"); }
Milestone BoardService::createMilestone(const Uuid& project, std::string_view name, Timestamp date, std::optional<Uuid> epic, std::string_view details) { throw std::logic_error("createMilestone is not written yet"); }
void BoardService::updateMilestone(const Uuid& milestone, std::string_view name, Timestamp date, std::optional<Uuid> epic, std::string_view details) { throw std::logic_error("updateMilestone is not written yet"); }
void BoardService::setMilestone(const Uuid& milestone, bool done, Timestamp now) { throw std::logic_error("setMilestone is not written yet"); }
void BoardService::deleteMilestone(const Uuid& milestone) { throw std::logic_error("deleteMilestone is not written yet"); }
void BoardService::setBlocked(const Uuid& ticket, bool blocked) { throw std::logic_error("setBlocked is not written yet"); }
void BoardService::setThisWeek(const Uuid& ticket, bool thisWeek) { throw std::logic_error("setThisWeek is not written yet"); }
void BoardService::clearThisWeek(const Uuid& project) { throw std::logic_error("clearThisWeek is not written yet"); }
TicketComment BoardService::addComment(const Uuid& ticket, std::string_view body, Timestamp now) { throw std::logic_error("addComment is not written yet"); }
ChecklistItem BoardService::addChecklistItem(const Uuid& ticket, std::string_view title) { throw std::logic_error("addChecklistItem is not written yet"); }
void BoardService::setChecklistItem(const Uuid& item, bool done) { throw std::logic_error("setChecklistItem is not written yet"); }
void BoardService::renameChecklistItem(const Uuid& item, std::string_view title) { throw std::logic_error("renameChecklistItem is not written yet"); }
void BoardService::deleteChecklistItem(const Uuid& item) { throw std::logic_error("deleteChecklistItem is not written yet"); }
TicketLink BoardService::addLink(const Uuid& source, const Uuid& target, LinkKind kind, Timestamp now) { throw std::logic_error("addLink is not written yet"); }
void BoardService::removeLink(const Uuid& link) { throw std::logic_error("removeLink is not written yet"); }
TicketFileLink BoardService::addFileLink(const Uuid& ticket, std::string_view path, Timestamp now) { throw std::logic_error("addFileLink is not written yet"); }
void BoardService::removeFileLink(const Uuid& fileLink) { throw std::logic_error("removeFileLink is not written yet"); }

}  // namespace orvane
