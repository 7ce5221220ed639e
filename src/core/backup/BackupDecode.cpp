// Reading a backup document from its JSON text.
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "core/backup/BackupDocument.h"
#include "core/backup/Base64.h"

namespace orvane::Backup {
namespace {

using nlohmann::json;

// Every record, declared first so the list template below finds them.
struct Path;
void read(const nlohmann::json& j, const Path& path, PersonRecord& r);
void read(const nlohmann::json& j, const Path& path, ColumnRecord& r);
void read(const nlohmann::json& j, const Path& path, EpicRecord& r);
void read(const nlohmann::json& j, const Path& path, EventRecord& r);
void read(const nlohmann::json& j, const Path& path, CommentRecord& r);
void read(const nlohmann::json& j, const Path& path, ChecklistRecord& r);
void read(const nlohmann::json& j, const Path& path, FileLinkRecord& r);
void read(const nlohmann::json& j, const Path& path, TicketRecord& r);
void read(const nlohmann::json& j, const Path& path, EpicDependencyRecord& r);
void read(const nlohmann::json& j, const Path& path, MilestoneRecord& r);
void read(const nlohmann::json& j, const Path& path, IterationRecord& r);
void read(const nlohmann::json& j, const Path& path, ForecastRecordData& r);
void read(const nlohmann::json& j, const Path& path, LinkRecord& r);
void read(const nlohmann::json& j, const Path& path, ProjectLinks& r);
void read(const nlohmann::json& j, const Path& path, ProjectRecord& r);

// Where a value sits in the document, kept as a chain on the stack and only
// spelt out ("projects[0].tickets[3].title") when something is wrong.
struct Path {
  const Path* parent = nullptr;
  const char* key = nullptr;  // null: an array element
  std::size_t index = 0;

  // Empty for the document itself.
  std::string text() const {
    if (!parent) return key ? std::string(key) : std::string();
    std::string prefix = parent->text();
    if (key) return prefix.empty() ? std::string(key) : prefix + "." + key;
    return prefix + "[" + std::to_string(index) + "]";
  }
};

[[noreturn]] void wrongType(const Path& path, const char* expected) {
  throw BackupError::unreadable("the value of " + path.text() + " is not " + expected + ".");
}

void read(const json& j, const Path& path, std::int64_t& out) {
  if (j.is_number_integer()) {
    if (j.is_number_unsigned() && j.get<std::uint64_t>() > std::uint64_t(std::numeric_limits<std::int64_t>::max())) {
      wrongType(path, "a whole number in range");
    }
    out = j.get<std::int64_t>();
    return;
  }
  // 3.0 is a whole number written by a writer that knows only doubles.
  if (j.is_number_float()) {
    const double d = j.get<double>();
    if (std::trunc(d) == d && d >= -9.2e18 && d <= 9.2e18) {
      out = static_cast<std::int64_t>(d);
      return;
    }
  }
  wrongType(path, "a whole number");
}

void read(const json& j, const Path& path, double& out) {
  if (!j.is_number()) wrongType(path, "a number");
  out = j.get<double>();
}

void read(const json& j, const Path& path, bool& out) {
  if (!j.is_boolean()) wrongType(path, "true or false");
  out = j.get<bool>();
}

void read(const json& j, const Path& path, std::string& out) {
  if (!j.is_string()) wrongType(path, "a text");
  out = j.get_ref<const std::string&>();
}

void read(const json& j, const Path& path, Uuid& out) {
  if (j.is_string()) {
    if (const auto id = Uuid::parse(j.get_ref<const std::string&>())) {
      out = *id;
      return;
    }
  }
  wrongType(path, "an identifier");
}

void read(const json& j, const Path& path, Timestamp& out) {
  if (!j.is_number()) wrongType(path, "a date (seconds since 1970)");
  out.secondsSince1970 = j.get<double>();
}

template <typename T>
void read(const json& j, const Path& path, std::vector<T>& out) {
  if (!j.is_array()) wrongType(path, "a list");
  out.clear();
  out.resize(j.size());
  for (std::size_t i = 0; i < out.size(); ++i) read(j[i], Path{&path, nullptr, i}, out[i]);
}

// The members of one JSON object, read field by field.
class Fields {
 public:
  Fields(const json& j, const Path& path) : object_(j), path_(path) {
    if (!j.is_object()) wrongType(path, "an object");
  }

  template <typename T>
  void required(const char* key, T& out) const {
    const auto it = object_.find(key);
    if (it == object_.end()) {
      const std::string where = path_.text();
      throw BackupError::unreadable("the key \"" + std::string(key) + "\" is missing" +
                                    (where.empty() ? std::string() : " in " + where) + ".");
    }
    read(*it, Path{&path_, key}, out);
  }

  // Absent or null: no value.
  template <typename T>
  void optional(const char* key, std::optional<T>& out) const {
    const auto it = object_.find(key);
    if (it == object_.end() || it->is_null()) {
      out.reset();
      return;
    }
    read(*it, Path{&path_, key}, out.emplace());
  }

  // An array that older versions did not write: absent or null reads empty.
  template <typename T>
  void optionalList(const char* key, std::vector<T>& out) const {
    const auto it = object_.find(key);
    if (it == object_.end() || it->is_null()) {
      out.clear();
      return;
    }
    read(*it, Path{&path_, key}, out);
  }

  void bytes(const char* key, std::optional<std::string>& out) const {
    std::optional<std::string> text;
    optional(key, text);
    out.reset();
    if (!text) return;
    out = base64::decode(*text);
    if (!out) wrongType(Path{&path_, key}, "base64 data");
  }

 private:
  const json& object_;
  const Path& path_;
};

void read(const json& j, const Path& path, PersonRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.optional("colorHex", r.colorHex);
  f.optional("email", r.email);
  f.optional("phone", r.phone);
}

void read(const json& j, const Path& path, ColumnRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.required("position", r.position);
  f.required("type", r.type);
  f.optional("wipLimit", r.wipLimit);
}

void read(const json& j, const Path& path, EpicRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.optional("colorHex", r.colorHex);
  f.optional("startDate", r.startDate);
  f.optional("dueDate", r.dueDate);
  f.required("details", r.details);
}

void read(const json& j, const Path& path, EventRecord& r) {
  const Fields f(j, path);
  f.required("at", r.at);
  f.optional("fromColumnID", r.fromColumnID);
  f.optional("fromColumnName", r.fromColumnName);
  f.required("toColumnID", r.toColumnID);
  f.required("toColumnName", r.toColumnName);
}

void read(const json& j, const Path& path, CommentRecord& r) {
  const Fields f(j, path);
  f.required("body", r.body);
  f.required("createdAt", r.createdAt);
}

void read(const json& j, const Path& path, ChecklistRecord& r) {
  const Fields f(j, path);
  f.required("title", r.title);
  f.required("isDone", r.isDone);
  f.required("position", r.position);
}

void read(const json& j, const Path& path, FileLinkRecord& r) {
  const Fields f(j, path);
  f.required("name", r.name);
  f.required("path", r.path);
  f.bytes("bookmark", r.bookmark);
  f.required("addedAt", r.addedAt);
}

void read(const json& j, const Path& path, TicketRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("number", r.number);
  f.required("title", r.title);
  f.required("details", r.details);
  f.required("priority", r.priority);
  f.required("position", r.position);
  f.required("createdAt", r.createdAt);
  f.optional("startedAt", r.startedAt);
  f.optional("completedAt", r.completedAt);
  f.optional("archivedAt", r.archivedAt);
  f.optional("dueDate", r.dueDate);
  f.required("tags", r.tags);
  f.required("blocked", r.blocked);
  f.optional("thisWeek", r.thisWeek);
  f.optional("columnID", r.columnID);
  f.optional("epicID", r.epicID);
  f.optional("assigneeID", r.assigneeID);
  f.required("events", r.events);
  f.required("comments", r.comments);
  f.required("checklist", r.checklist);
  f.required("fileLinks", r.fileLinks);
  f.optional("iterationID", r.iterationID);
}

void read(const json& j, const Path& path, EpicDependencyRecord& r) {
  const Fields f(j, path);
  f.required("predecessorID", r.predecessorID);
  f.required("successorID", r.successorID);
  f.required("createdAt", r.createdAt);
}

void read(const json& j, const Path& path, MilestoneRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.required("details", r.details);
  f.required("date", r.date);
  f.optional("completedAt", r.completedAt);
  f.optional("epicID", r.epicID);
}

void read(const json& j, const Path& path, IterationRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.required("goal", r.goal);
  f.required("startDate", r.startDate);
  f.required("endDate", r.endDate);
  f.optional("startedAt", r.startedAt);
  f.optional("closedAt", r.closedAt);
  f.required("committedCount", r.committedCount);
  f.required("finishedCount", r.finishedCount);
  f.required("carriedOverCount", r.carriedOverCount);
}

void read(const json& j, const Path& path, ForecastRecordData& r) {
  const Fields f(j, path);
  f.required("runAt", r.runAt);
  f.required("kind", r.kind);
  f.required("asOfDay", r.asOfDay);
  f.required("backlog", r.backlog);
  f.optional("targetDay", r.targetDay);
  f.required("whatIfPercent", r.whatIfPercent);
  f.required("samples", r.samples);
  f.required("provenance", r.provenance);
  f.required("resultDays", r.resultDays);
  f.required("resultCounts", r.resultCounts);
  f.required("inconclusive", r.inconclusive);
  f.optional("commitmentDay", r.commitmentDay);
  f.optional("confidencePct", r.confidencePct);
  f.required("note", r.note);
}

void read(const json& j, const Path& path, LinkRecord& r) {
  const Fields f(j, path);
  f.required("kind", r.kind);
  f.required("createdAt", r.createdAt);
  f.required("sourceID", r.sourceID);
  f.required("targetID", r.targetID);
}

void read(const json& j, const Path& path, ProjectLinks& r) {
  const Fields f(j, path);
  f.required("projectID", r.projectID);
  f.required("links", r.links);
}

void read(const json& j, const Path& path, ProjectRecord& r) {
  const Fields f(j, path);
  f.required("id", r.id);
  f.required("name", r.name);
  f.required("key", r.key);
  f.required("createdAt", r.createdAt);
  f.required("nextTicketNumber", r.nextTicketNumber);
  f.optional("committedDate", r.committedDate);
  f.required("fillerCounts", r.fillerCounts);
  f.required("fillerTierRaw", r.fillerTierRaw);
  f.optional("fillerLambda", r.fillerLambda);
  f.required("clientName", r.clientName);
  f.required("clientCompany", r.clientCompany);
  f.required("clientEmail", r.clientEmail);
  f.required("internalName", r.internalName);
  f.required("internalEmail", r.internalEmail);
  f.required("columns", r.columns);
  f.required("epics", r.epics);
  f.required("tickets", r.tickets);
  f.required("forecasts", r.forecasts);
  f.optionalList("iterations", r.iterations);
  f.optionalList("epicDependencies", r.epicDependencies);
  f.optionalList("milestones", r.milestones);
}

}  // namespace

File decode(std::string_view bytes) {
  json document;
  try {
    document = json::parse(bytes.begin(), bytes.end());
  } catch (const json::parse_error& error) {
    if (error.byte > bytes.size()) throw BackupError::unreadable("it is not valid JSON (it ends too early).");
    throw BackupError::unreadable("it is not valid JSON (the error is at byte " + std::to_string(error.byte) + ").");
  } catch (const json::out_of_range&) {
    throw BackupError::unreadable("it holds a number too large to read.");
  }
  // The file's kind and version come first, so a file of another kind or of
  // a newer format gets that answer rather than a complaint about its shape.
  const auto format = document.is_object() ? document.find("format") : document.end();
  if (format == document.end() || !format->is_string() || format->get_ref<const std::string&>() != formatName) {
    throw BackupError::notABackup();
  }
  const Path root;
  const Fields fields(document, root);
  File file;
  fields.required("version", file.version);
  if (file.version > currentVersion) throw BackupError::newerVersion(file.version);
  file.format = formatName;
  fields.required("createdAt", file.createdAt);
  fields.required("people", file.people);
  fields.required("projects", file.projects);
  fields.optionalList("links", file.links);
  return file;
}

}  // namespace orvane::Backup
