#pragma once

// The streaming XML handlers behind XLSXReader. Each reads one part of a
// workbook through expat; parse() returns false when the part is not
// well-formed XML (or carries a document type declaration, which no workbook
// part has and which would open the door to entity expansion). Element and
// attribute names are matched on their local part, so prefixed forms ("x:c")
// read like plain ones.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/XlsxReader.h"

namespace orvane::XLSXReader {

class XmlEventParser {
 public:
  virtual ~XmlEventParser() = default;

 protected:
  // False when `xml` is not well-formed or a handler called stop().
  bool run(std::string_view xml);
  // Ends the parse early; run() then returns false.
  void stop() { stopped_ = true; }

  virtual void start(std::string_view name, const char** attributes) = 0;
  virtual void end(std::string_view name) = 0;
  virtual void text(std::string_view) {}

  // The value of the attribute whose name (or local part) is `name`.
  static std::optional<std::string_view> attribute(const char** attributes, std::string_view name);

 private:
  friend struct XmlEventParserAccess;
  bool stopped_ = false;
  void* parser_ = nullptr;
};

// The relationship id of the workbook's first `sheet` element: its "r:id",
// else any attribute ending in ":id", else "id".
class FirstSheetParser : public XmlEventParser {
 public:
  bool parse(std::string_view xml) { return run(xml); }
  std::optional<std::string> id;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view) override {}

 private:
  bool seen_ = false;
};

// Id to Target of every `Relationship`, and Id to Type (the first of a
// repeated Id wins).
class RelationshipParser : public XmlEventParser {
 public:
  bool parse(std::string_view xml) { return run(xml); }
  std::map<std::string, std::string> map;
  std::map<std::string, std::string> types;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view) override {}
};

// One string per `si`: the concatenated text of its `t` elements, leaving
// out phonetic runs (`rPh`, however deeply nested).
class SharedStringsParser : public XmlEventParser {
 public:
  bool parse(std::string_view xml) { return run(xml); }
  std::vector<std::string> strings;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view name) override;
  void text(std::string_view text) override;

 private:
  std::string current;
  bool inItem = false;
  bool inText = false;
  int phoneticDepth = 0;
};

// The cells (`c`) of a worksheet by row and column numbers (both from 1).
//
// Rules for what the format leaves open:
// - A cell without a usable `r` takes the column after the previous cell of
//   its row (A for the first) and the row of its `row` element; a `row`
//   without a usable `r` follows the previous row.
// - Cells beyond Excel's grid (column XFD = 16,384, row 1,048,576) are
//   dropped: no spreadsheet program can have written them.
// - A shared-string index that is not a number or out of range gives empty
//   text: the cell reads as blank rather than failing the whole workbook.
// - Error cells (type "e") keep their text, such as "#N/A".
// - A later cell at the same position replaces an earlier one.
// parse() fails (tooLarge set) past 2,000,000 cells or 256 MiB of cell text.
class SheetParser : public XmlEventParser {
 public:
  static constexpr std::size_t kMaxCells = 2'000'000;
  static constexpr std::size_t kMaxTextBytes = std::size_t{256} << 20;
  static constexpr std::uint32_t kMaxColumn = 16'384;
  static constexpr std::uint32_t kMaxRow = 1'048'576;

  explicit SheetParser(const std::vector<std::string>& sharedStrings) : sharedStrings(sharedStrings) {}
  bool parse(std::string_view xml) { return run(xml); }

  const std::vector<std::string>& sharedStrings;
  std::map<std::uint32_t, std::map<std::uint32_t, Cell>> rows;
  bool tooLarge = false;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view name) override;
  void text(std::string_view text) override;

 private:
  void finishCell();

  std::uint64_t column = 0;
  std::uint64_t row = 0;
  std::string type;
  std::string value;
  bool inValue = false;
  bool inInlineText = false;
  bool inInline = false;
  bool inCell = false;
  int phoneticDepth = 0;
  std::size_t cellCount = 0;
  std::size_t textBytes = 0;
};

// The part a workbook relationship target names: absolute targets ("/xl/...")
// start at the package root, others at "xl/"; "." and ".." segments are
// resolved. Absent when the path climbs above the root or names no file.
std::optional<std::string> partPath(std::string_view target);

// Column and row numbers (from 1) of a reference such as "B12"; absent when
// it is not letters followed by digits or exceeds the 64-bit range.
std::optional<std::pair<std::uint64_t, std::uint64_t>> cellReference(std::string_view ref);

}  // namespace orvane::XLSXReader
