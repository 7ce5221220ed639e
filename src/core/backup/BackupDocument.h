#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/backup/BackupError.h"
#include "core/model/Uuid.h"
#include "engine/Timestamp.h"

namespace orvane::Backup {

// The records of a backup document. They mirror the entities field for
// field; the JSON key of each field is its name here. Optional fields may be
// null or absent in a file; the optional arrays of a project came with later
// versions of the format and read as empty when absent.

struct PersonRecord {
  Uuid id;
  std::string name;
  std::optional<std::string> colorHex;
  std::optional<std::string> email;
  std::optional<std::string> phone;
};

struct ColumnRecord {
  Uuid id;
  std::string name;
  std::int64_t position = 0;
  std::string type;  // the column's raw type, as stored
  std::optional<std::int64_t> wipLimit;
};

struct EpicRecord {
  Uuid id;
  std::string name;
  std::optional<std::string> colorHex;
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> dueDate;
  std::string details;
};

// One column move of a ticket. The names keep history readable after a
// column is renamed or deleted.
struct EventRecord {
  Timestamp at;
  std::optional<Uuid> fromColumnID;
  std::optional<std::string> fromColumnName;
  Uuid toColumnID;
  std::string toColumnName;
};

struct CommentRecord {
  std::string body;
  Timestamp createdAt;
};

struct ChecklistRecord {
  std::string title;
  bool isDone = false;
  std::int64_t position = 0;
};

struct FileLinkRecord {
  std::string name;
  std::string path;
  std::optional<std::string> bookmark;  // opaque bytes, base64 in the file
  Timestamp addedAt;
};

struct TicketRecord {
  Uuid id;
  std::int64_t number = 0;
  std::string title;
  std::string details;
  std::int64_t priority = 0;  // the raw priority value
  std::int64_t position = 0;
  Timestamp createdAt;
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> completedAt;
  std::optional<Timestamp> archivedAt;
  std::optional<Timestamp> dueDate;
  std::vector<std::string> tags;
  bool blocked = false;
  std::optional<bool> thisWeek;  // absent before version 4: false
  std::optional<Uuid> columnID;
  std::optional<Uuid> epicID;
  std::optional<Uuid> assigneeID;
  std::vector<EventRecord> events;
  std::vector<CommentRecord> comments;
  std::vector<ChecklistRecord> checklist;
  std::vector<FileLinkRecord> fileLinks;
  std::optional<Uuid> iterationID;
};

struct EpicDependencyRecord {
  Uuid predecessorID;
  Uuid successorID;
  Timestamp createdAt;
};

struct MilestoneRecord {
  Uuid id;
  std::string name;
  std::string details;
  Timestamp date;
  std::optional<Timestamp> completedAt;
  std::optional<Uuid> epicID;
};

struct IterationRecord {
  Uuid id;
  std::string name;
  std::string goal;
  Timestamp startDate;
  Timestamp endDate;
  std::optional<Timestamp> startedAt;
  std::optional<Timestamp> closedAt;
  std::int64_t committedCount = 0;
  std::int64_t finishedCount = 0;
  std::int64_t carriedOverCount = 0;
};

// One saved forecast run; days are ISO civil-date text.
struct ForecastRecordData {
  Timestamp runAt;
  std::string kind;  // "when" or "by_date"
  std::string asOfDay;
  std::int64_t backlog = 0;
  std::optional<std::string> targetDay;
  double whatIfPercent = 0;
  std::vector<std::int64_t> samples;
  std::vector<std::string> provenance;  // one tier per sample
  std::vector<std::string> resultDays;
  std::vector<std::int64_t> resultCounts;
  bool inconclusive = false;
  std::optional<std::string> commitmentDay;
  std::optional<double> confidencePct;
  std::string note;
};

struct LinkRecord {
  std::string kind;  // the link's raw kind
  Timestamp createdAt;
  Uuid sourceID;  // the ticket that owns the link
  Uuid targetID;
};

struct ProjectLinks {
  Uuid projectID;
  std::vector<LinkRecord> links;
};

struct ProjectRecord {
  Uuid id;
  std::string name;
  std::string key;
  Timestamp createdAt;
  std::int64_t nextTicketNumber = 1;
  std::optional<Timestamp> committedDate;
  std::vector<std::int64_t> fillerCounts;
  std::string fillerTierRaw;
  std::optional<double> fillerLambda;
  std::string clientName;
  std::string clientCompany;
  std::string clientEmail;
  std::string internalName;
  std::string internalEmail;
  std::vector<ColumnRecord> columns;
  std::vector<EpicRecord> epics;
  std::vector<TicketRecord> tickets;
  std::vector<ForecastRecordData> forecasts;
  std::vector<IterationRecord> iterations;
  std::vector<EpicDependencyRecord> epicDependencies;
  std::vector<MilestoneRecord> milestones;
};

// The whole document.
struct File {
  std::string format{formatName};
  std::int64_t version = currentVersion;
  Timestamp createdAt;
  std::vector<PersonRecord> people;
  std::vector<ProjectRecord> projects;
  std::vector<ProjectLinks> links;
};

// The document as JSON text: keys sorted, two-space indentation, optional
// values written as null.
std::string encode(const File& file);

// Reads a document. Checks, in this order, that the text is JSON, that its
// "format" is formatName (notABackup otherwise, whatever else the document
// holds) and that its "version" is at most currentVersion (newerVersion),
// then reads every record, refusing a required key that is missing or of
// the wrong type (unreadable, naming where). Keys it does not know are
// ignored.
File decode(std::string_view bytes);

}  // namespace orvane::Backup
