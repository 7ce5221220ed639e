// Writing a backup document as JSON text.
//
// The text is written directly rather than through a JSON tree: a store of
// 50,000 tickets makes a document of some 70 MB, and building millions of
// tree nodes first would cost more than the writing itself. The layout is
// exactly that of nlohmann::json's dump(2) (the same number and string
// forms, keys in byte order, two spaces per level), which the tests check
// by parsing and dumping the output again; so every record below lists its
// keys in byte order.
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "core/backup/BackupDocument.h"
#include "core/backup/Base64.h"

namespace orvane::Backup {
namespace {

class Writer {
 public:
  std::string take() { return std::move(out_); }

  // An object or array: `body` writes the members through key()/item().
  template <typename Body>
  void object(Body&& body) {
    open('{');
    body();
    close('}');
  }
  template <typename T, typename Each>
  void array(const std::vector<T>& values, Each&& each) {
    if (values.empty()) {
      out_ += "[]";
      return;
    }
    open('[');
    for (const T& v : values) {
      item();
      each(v);
    }
    close(']');
  }

  // Starts a member of the current object.
  Writer& key(std::string_view name) {
    item();
    out_ += '"';
    out_ += name;
    out_ += "\": ";
    return *this;
  }

  void value(std::int64_t v) {
    char buffer[24];
    out_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, v).ptr);
  }
  void value(double v) {
    if (!std::isfinite(v)) {
      out_ += "null";
      return;
    }
    char buffer[64];
    out_.append(buffer, nlohmann::detail::to_chars(buffer, buffer + sizeof buffer, v));
  }
  void value(Timestamp v) { value(v.secondsSince1970); }
  void value(bool v) { out_ += v ? "true" : "false"; }
  void value(const Uuid& v) { string(v.text()); }
  void value(const std::string& v) { string(v); }
  template <typename T>
  void value(const std::optional<T>& v) {
    if (v) {
      value(*v);
    } else {
      out_ += "null";
    }
  }
  template <typename T>
  void value(const std::vector<T>& values) {
    array(values, [this](const T& v) { value(v); });
  }

  // Escaped as nlohmann::json does: quote, backslash and control
  // characters; other text as it is. A byte that is not part of valid UTF-8
  // becomes U+FFFD, so a backup never fails on damaged text.
  void string(std::string_view text) {
    out_ += '"';
    std::size_t i = 0;
    while (i < text.size()) {
      const auto c = static_cast<unsigned char>(text[i]);
      if (c >= 0x80) {
        const std::size_t length = validSequence(text, i);
        if (length == 0) {
          out_ += "\xEF\xBF\xBD";
          ++i;
        } else {
          out_.append(text.substr(i, length));
          i += length;
        }
        continue;
      }
      switch (c) {
        case '"':
          out_ += "\\\"";
          break;
        case '\\':
          out_ += "\\\\";
          break;
        case '\b':
          out_ += "\\b";
          break;
        case '\f':
          out_ += "\\f";
          break;
        case '\n':
          out_ += "\\n";
          break;
        case '\r':
          out_ += "\\r";
          break;
        case '\t':
          out_ += "\\t";
          break;
        default:
          if (c < 0x20) {
            static constexpr char hex[] = "0123456789abcdef";
            out_ += "\\u00";
            out_ += hex[c >> 4];
            out_ += hex[c & 15];
          } else {
            out_ += static_cast<char>(c);
          }
      }
      ++i;
    }
    out_ += '"';
  }

 private:
  // The length of the well-formed UTF-8 sequence at `i`, or 0.
  static std::size_t validSequence(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char c = byte(i);
    std::size_t length;
    unsigned char low = 0x80, high = 0xBF;  // the allowed range of the second byte
    if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      if (c == 0xE0) low = 0xA0;
      if (c == 0xED) high = 0x9F;  // no surrogates
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      if (c == 0xF0) low = 0x90;
      if (c == 0xF4) high = 0x8F;
    } else {
      return 0;
    }
    if (i + length > text.size()) return 0;
    if (byte(i + 1) < low || byte(i + 1) > high) return 0;
    for (std::size_t k = 2; k < length; ++k) {
      if (byte(i + k) < 0x80 || byte(i + k) > 0xBF) return 0;
    }
    return length;
  }

  void open(char bracket) {
    out_ += bracket;
    first_ = true;
    ++depth_;
  }
  void close(char bracket) {
    --depth_;
    if (first_) {  // nothing was written inside
      out_ += bracket;
    } else {
      newline();
      out_ += bracket;
    }
    first_ = false;
  }
  void item() {
    if (!first_) out_ += ',';
    first_ = false;
    newline();
  }
  void newline() {
    out_ += '\n';
    out_.append(2 * static_cast<std::size_t>(depth_), ' ');
  }

  std::string out_;
  int depth_ = 0;
  bool first_ = true;
};

// Each record's keys in byte order.

void write(Writer& w, const PersonRecord& r) {
  w.object([&] {
    w.key("colorHex").value(r.colorHex);
    w.key("email").value(r.email);
    w.key("id").value(r.id);
    w.key("name").value(r.name);
    w.key("phone").value(r.phone);
  });
}

void write(Writer& w, const ColumnRecord& r) {
  w.object([&] {
    w.key("id").value(r.id);
    w.key("name").value(r.name);
    w.key("position").value(r.position);
    w.key("type").value(r.type);
    w.key("wipLimit").value(r.wipLimit);
  });
}

void write(Writer& w, const EpicRecord& r) {
  w.object([&] {
    w.key("colorHex").value(r.colorHex);
    w.key("details").value(r.details);
    w.key("dueDate").value(r.dueDate);
    w.key("id").value(r.id);
    w.key("name").value(r.name);
    w.key("startDate").value(r.startDate);
  });
}

void write(Writer& w, const EventRecord& r) {
  w.object([&] {
    w.key("at").value(r.at);
    w.key("fromColumnID").value(r.fromColumnID);
    w.key("fromColumnName").value(r.fromColumnName);
    w.key("toColumnID").value(r.toColumnID);
    w.key("toColumnName").value(r.toColumnName);
  });
}

void write(Writer& w, const CommentRecord& r) {
  w.object([&] {
    w.key("body").value(r.body);
    w.key("createdAt").value(r.createdAt);
  });
}

void write(Writer& w, const ChecklistRecord& r) {
  w.object([&] {
    w.key("isDone").value(r.isDone);
    w.key("position").value(r.position);
    w.key("title").value(r.title);
  });
}

void write(Writer& w, const FileLinkRecord& r) {
  w.object([&] {
    w.key("addedAt").value(r.addedAt);
    w.key("bookmark").value(r.bookmark ? std::optional(base64::encode(*r.bookmark)) : std::nullopt);
    w.key("name").value(r.name);
    w.key("path").value(r.path);
  });
}

template <typename T>
void writeAll(Writer& w, const std::vector<T>& records) {
  w.array(records, [&](const T& r) { write(w, r); });
}

void write(Writer& w, const TicketRecord& r) {
  w.object([&] {
    w.key("archivedAt").value(r.archivedAt);
    w.key("assigneeID").value(r.assigneeID);
    w.key("blocked").value(r.blocked);
    writeAll(w.key("checklist"), r.checklist);
    w.key("columnID").value(r.columnID);
    writeAll(w.key("comments"), r.comments);
    w.key("completedAt").value(r.completedAt);
    w.key("createdAt").value(r.createdAt);
    w.key("details").value(r.details);
    w.key("dueDate").value(r.dueDate);
    w.key("epicID").value(r.epicID);
    writeAll(w.key("events"), r.events);
    writeAll(w.key("fileLinks"), r.fileLinks);
    w.key("id").value(r.id);
    w.key("iterationID").value(r.iterationID);
    w.key("number").value(r.number);
    w.key("position").value(r.position);
    w.key("priority").value(r.priority);
    w.key("startedAt").value(r.startedAt);
    w.key("tags").value(r.tags);
    w.key("thisWeek").value(r.thisWeek);
    w.key("title").value(r.title);
  });
}

void write(Writer& w, const EpicDependencyRecord& r) {
  w.object([&] {
    w.key("createdAt").value(r.createdAt);
    w.key("predecessorID").value(r.predecessorID);
    w.key("successorID").value(r.successorID);
  });
}

void write(Writer& w, const MilestoneRecord& r) {
  w.object([&] {
    w.key("completedAt").value(r.completedAt);
    w.key("date").value(r.date);
    w.key("details").value(r.details);
    w.key("epicID").value(r.epicID);
    w.key("id").value(r.id);
    w.key("name").value(r.name);
  });
}

void write(Writer& w, const IterationRecord& r) {
  w.object([&] {
    w.key("carriedOverCount").value(r.carriedOverCount);
    w.key("closedAt").value(r.closedAt);
    w.key("committedCount").value(r.committedCount);
    w.key("endDate").value(r.endDate);
    w.key("finishedCount").value(r.finishedCount);
    w.key("goal").value(r.goal);
    w.key("id").value(r.id);
    w.key("name").value(r.name);
    w.key("startDate").value(r.startDate);
    w.key("startedAt").value(r.startedAt);
  });
}

void write(Writer& w, const ForecastRecordData& r) {
  w.object([&] {
    w.key("asOfDay").value(r.asOfDay);
    w.key("backlog").value(r.backlog);
    w.key("commitmentDay").value(r.commitmentDay);
    w.key("confidencePct").value(r.confidencePct);
    w.key("inconclusive").value(r.inconclusive);
    w.key("kind").value(r.kind);
    w.key("note").value(r.note);
    w.key("provenance").value(r.provenance);
    w.key("resultCounts").value(r.resultCounts);
    w.key("resultDays").value(r.resultDays);
    w.key("runAt").value(r.runAt);
    w.key("samples").value(r.samples);
    w.key("targetDay").value(r.targetDay);
    w.key("whatIfPercent").value(r.whatIfPercent);
  });
}

void write(Writer& w, const LinkRecord& r) {
  w.object([&] {
    w.key("createdAt").value(r.createdAt);
    w.key("kind").value(r.kind);
    w.key("sourceID").value(r.sourceID);
    w.key("targetID").value(r.targetID);
  });
}

void write(Writer& w, const ProjectLinks& r) {
  w.object([&] {
    writeAll(w.key("links"), r.links);
    w.key("projectID").value(r.projectID);
  });
}

void write(Writer& w, const ProjectRecord& r) {
  w.object([&] {
    w.key("clientCompany").value(r.clientCompany);
    w.key("clientEmail").value(r.clientEmail);
    w.key("clientName").value(r.clientName);
    writeAll(w.key("columns"), r.columns);
    w.key("committedDate").value(r.committedDate);
    w.key("createdAt").value(r.createdAt);
    writeAll(w.key("epicDependencies"), r.epicDependencies);
    writeAll(w.key("epics"), r.epics);
    w.key("fillerCounts").value(r.fillerCounts);
    w.key("fillerLambda").value(r.fillerLambda);
    w.key("fillerTierRaw").value(r.fillerTierRaw);
    writeAll(w.key("forecasts"), r.forecasts);
    w.key("id").value(r.id);
    w.key("internalEmail").value(r.internalEmail);
    w.key("internalName").value(r.internalName);
    writeAll(w.key("iterations"), r.iterations);
    w.key("key").value(r.key);
    writeAll(w.key("milestones"), r.milestones);
    w.key("name").value(r.name);
    w.key("nextTicketNumber").value(r.nextTicketNumber);
    writeAll(w.key("tickets"), r.tickets);
  });
}

}  // namespace

std::string encode(const File& file) {
  Writer w;
  w.object([&] {
    w.key("createdAt").value(file.createdAt);
    w.key("format").value(file.format);
    writeAll(w.key("links"), file.links);
    writeAll(w.key("people"), file.people);
    writeAll(w.key("projects"), file.projects);
    w.key("version").value(file.version);
  });
  return w.take();
}

}  // namespace orvane::Backup
