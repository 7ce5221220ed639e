#include "core/store/EntityTables.h"

#include "core/store/ListCodec.h"

namespace orvane {
namespace {

std::string listText(const std::vector<std::int64_t>& values) { return ListCodec::encode(values); }
std::string listText(const std::vector<std::string>& values) { return ListCodec::encode(values); }

template <typename T>
std::vector<T> listFrom(const Statement& statement, int column) {
  if constexpr (std::is_same_v<T, std::string>) {
    return ListCodec::decodeStrings(statement.textView(column));
  } else {
    return ListCodec::decodeIntegers(statement.textView(column));
  }
}

}  // namespace

void Table<Project>::bind(Statement& s, const Project& r) {
  s.bindAll(r.id, r.name, r.key, r.createdAt, r.nextTicketNumber, r.committedDate, listText(r.fillerCounts),
            r.fillerTierRaw, r.fillerLambda, r.clientName, r.clientCompany, r.clientEmail, r.internalName,
            r.internalEmail);
}
Project Table<Project>::read(const Statement& s) {
  return Project{s.uuid(0),
                 s.text(1),
                 s.text(2),
                 s.timestamp(3),
                 s.int64(4),
                 s.optionalTimestamp(5),
                 listFrom<std::int64_t>(s, 6),
                 s.text(7),
                 s.optionalReal(8),
                 s.text(9),
                 s.text(10),
                 s.text(11),
                 s.text(12),
                 s.text(13)};
}

void Table<BoardColumn>::bind(Statement& s, const BoardColumn& r) {
  s.bindAll(r.id, r.name, r.position, r.typeRaw, r.wipLimit, r.projectId);
}
BoardColumn Table<BoardColumn>::read(const Statement& s) {
  return BoardColumn{s.uuid(0), s.text(1), s.int64(2), s.text(3), s.optionalInt64(4), s.uuid(5)};
}

void Table<Epic>::bind(Statement& s, const Epic& r) {
  s.bindAll(r.id, r.name, r.colorHex, r.startDate, r.dueDate, r.details, r.projectId);
}
Epic Table<Epic>::read(const Statement& s) {
  return Epic{s.uuid(0),          s.text(1), s.optionalText(2), s.optionalTimestamp(3), s.optionalTimestamp(4),
              s.text(5),          s.uuid(6)};
}

void Table<EpicDependency>::bind(Statement& s, const EpicDependency& r) {
  s.bindAll(r.id, r.createdAt, r.predecessorId, r.successorId);
}
EpicDependency Table<EpicDependency>::read(const Statement& s) {
  return EpicDependency{s.uuid(0), s.timestamp(1), s.uuid(2), s.uuid(3)};
}

void Table<Milestone>::bind(Statement& s, const Milestone& r) {
  s.bindAll(r.id, r.name, r.details, r.date, r.completedAt, r.projectId, r.epicId);
}
Milestone Table<Milestone>::read(const Statement& s) {
  return Milestone{s.uuid(0), s.text(1), s.text(2), s.timestamp(3), s.optionalTimestamp(4), s.uuid(5),
                   s.optionalUuid(6)};
}

void Table<Iteration>::bind(Statement& s, const Iteration& r) {
  s.bindAll(r.id, r.name, r.goal, r.startDate, r.endDate, r.startedAt, r.closedAt, r.committedCount, r.finishedCount,
            r.carriedOverCount, r.projectId);
}
Iteration Table<Iteration>::read(const Statement& s) {
  return Iteration{s.uuid(0),  s.text(1),  s.text(2),  s.timestamp(3), s.timestamp(4), s.optionalTimestamp(5),
                   s.optionalTimestamp(6), s.int64(7), s.int64(8), s.int64(9), s.uuid(10)};
}

void Table<Person>::bind(Statement& s, const Person& r) { s.bindAll(r.id, r.name, r.colorHex, r.email, r.phone); }
Person Table<Person>::read(const Statement& s) {
  return Person{s.uuid(0), s.text(1), s.optionalText(2), s.text(3), s.text(4)};
}

void Table<Ticket>::bind(Statement& s, const Ticket& r) {
  s.bindAll(r.id, r.number, r.title, r.details, r.priorityRaw, r.position, r.createdAt, r.startedAt, r.completedAt,
            r.archivedAt, r.dueDate, listText(r.tags), r.blocked, r.thisWeek, r.projectId, r.columnId, r.epicId,
            r.assigneeId, r.iterationId);
}
Ticket Table<Ticket>::read(const Statement& s) {
  Ticket t;
  t.id = s.uuid(0);
  t.number = s.int64(1);
  t.title = s.text(2);
  t.details = s.text(3);
  t.priorityRaw = s.int64(4);
  t.position = s.int64(5);
  t.createdAt = s.timestamp(6);
  t.startedAt = s.optionalTimestamp(7);
  t.completedAt = s.optionalTimestamp(8);
  t.archivedAt = s.optionalTimestamp(9);
  t.dueDate = s.optionalTimestamp(10);
  t.tags = listFrom<std::string>(s, 11);
  t.blocked = s.boolean(12);
  t.thisWeek = s.boolean(13);
  t.projectId = s.uuid(14);
  t.columnId = s.optionalUuid(15);
  t.epicId = s.optionalUuid(16);
  t.assigneeId = s.optionalUuid(17);
  t.iterationId = s.optionalUuid(18);
  return t;
}

void Table<TicketEvent>::bind(Statement& s, const TicketEvent& r) {
  s.bindAll(r.id, r.at, r.fromColumnId, r.fromColumnName, r.toColumnId, r.toColumnName, r.ticketId);
}
TicketEvent Table<TicketEvent>::read(const Statement& s) {
  return TicketEvent{s.uuid(0), s.timestamp(1), s.optionalUuid(2), s.optionalText(3), s.uuid(4), s.text(5), s.uuid(6)};
}

void Table<TicketComment>::bind(Statement& s, const TicketComment& r) {
  s.bindAll(r.id, r.body, r.createdAt, r.ticketId);
}
TicketComment Table<TicketComment>::read(const Statement& s) {
  return TicketComment{s.uuid(0), s.text(1), s.timestamp(2), s.uuid(3)};
}

void Table<ChecklistItem>::bind(Statement& s, const ChecklistItem& r) {
  s.bindAll(r.id, r.title, r.isDone, r.position, r.ticketId);
}
ChecklistItem Table<ChecklistItem>::read(const Statement& s) {
  return ChecklistItem{s.uuid(0), s.text(1), s.boolean(2), s.int64(3), s.uuid(4)};
}

void Table<TicketLink>::bind(Statement& s, const TicketLink& r) {
  s.bindAll(r.id, r.kindRaw, r.createdAt, r.sourceId, r.targetId);
}
TicketLink Table<TicketLink>::read(const Statement& s) {
  return TicketLink{s.uuid(0), s.text(1), s.timestamp(2), s.uuid(3), s.uuid(4)};
}

void Table<TicketFileLink>::bind(Statement& s, const TicketFileLink& r) {
  s.bindAll(r.id, r.name, r.path, r.bookmark, r.addedAt, r.ticketId);
}
TicketFileLink Table<TicketFileLink>::read(const Statement& s) {
  return TicketFileLink{s.uuid(0), s.text(1), s.text(2), s.optionalText(3), s.timestamp(4), s.uuid(5)};
}

void Table<ForecastRecord>::bind(Statement& s, const ForecastRecord& r) {
  s.bindAll(r.id, r.runAt, r.kindRaw, r.asOfDay, r.backlog, r.targetDay, r.whatIfPercent, listText(r.samples),
            listText(r.provenance), listText(r.resultDays), listText(r.resultCounts), r.inconclusive,
            r.commitmentDay, r.confidencePct, r.note, r.projectId);
}
ForecastRecord Table<ForecastRecord>::read(const Statement& s) {
  ForecastRecord r;
  r.id = s.uuid(0);
  r.runAt = s.timestamp(1);
  r.kindRaw = s.text(2);
  r.asOfDay = s.text(3);
  r.backlog = s.int64(4);
  r.targetDay = s.optionalText(5);
  r.whatIfPercent = s.real(6);
  r.samples = listFrom<std::int64_t>(s, 7);
  r.provenance = listFrom<std::string>(s, 8);
  r.resultDays = listFrom<std::string>(s, 9);
  r.resultCounts = listFrom<std::int64_t>(s, 10);
  r.inconclusive = s.boolean(11);
  r.commitmentDay = s.optionalText(12);
  r.confidencePct = s.optionalReal(13);
  r.note = s.text(14);
  r.projectId = s.optionalUuid(15);
  return r;
}

}  // namespace orvane
