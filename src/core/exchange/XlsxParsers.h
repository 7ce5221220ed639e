#pragma once

// The streaming XML handlers behind XLSXReader. Each reads one part of a
// workbook through expat, whole or in slices as it is unpacked; parse()
// returns false when the part is not well-formed XML (or carries a document
// type declaration, which no workbook part has and which would open the door
// to entity expansion). Element and attribute names are matched on their
// local part, so prefixed forms ("x:c") read like plain ones.
//
// Every part is read within fixed bounds, so a small hostile file cannot
// claim gigabytes: elements nest at most kMaxDepth deep, and the shared
// strings and the sheet's cells have caps of their own. Past a bound parse()
// throws XLSXReadError::unsupported with a sentence that names it.

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/XlsxReader.h"

namespace orvane::XLSXReader {

// Hands a part's bytes to `sink` in order, slice by slice.
using XmlSource = std::function<void(const std::function<void(std::string_view)>& sink)>;

class XmlEventParser {
 public:
  // Workbook parts nest a handful of levels (rich text in a cell: six).
  static constexpr int kMaxDepth = 256;

  virtual ~XmlEventParser() = default;

 protected:
  // False when the XML is not well-formed or a handler called stop(). An
  // exception thrown by a handler (or by the source) ends the parse and is
  // thrown on from here once expat is released.
  bool run(std::string_view xml);
  bool run(const XmlSource& source);
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
  int depth_ = 0;
  std::exception_ptr failure_;
  void* parser_ = nullptr;
};

// The relationship id of the workbook's first `sheet` element: its "r:id",
// else any attribute ending in ":id", else "id".
class FirstSheetParser : public XmlEventParser {
 public:
  bool parse(std::string_view xml) { return run(xml); }
  bool parse(const XmlSource& source) { return run(source); }
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
  bool parse(const XmlSource& source) { return run(source); }
  std::map<std::string, std::string> map;
  std::map<std::string, std::string> types;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view) override {}
};

// The shared strings of a workbook, packed: one text buffer and where each
// string ends, so a million short strings take a few megabytes, not dozens.
class SharedStrings {
 public:
  std::size_t size() const { return ends_.size(); }
  // REQUIRES: index < size().
  std::string_view operator[](std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(text_).substr(begin, ends_[index] - begin);
  }
  // Adds the text appended by append() since the last push as one string.
  void append(std::string_view s) { text_ += s; }
  void push() { ends_.push_back(static_cast<std::uint32_t>(text_.size())); }
  std::size_t pendingBytes() const { return text_.size() - (ends_.empty() ? 0 : ends_.back()); }
  std::size_t textBytes() const { return text_.size(); }
  void discardPending() { text_.resize(ends_.empty() ? 0 : ends_.back()); }

 private:
  std::string text_;
  std::vector<std::uint32_t> ends_;
};

// One string per `si`: the concatenated text of its `t` elements, leaving
// out phonetic runs (`rPh`, however deeply nested). Throws past
// kMaxStrings strings ("the workbook has more than 4,000,000 shared
// strings") or kMaxTextBytes of their text ("the shared strings hold more
// than 128 MB of text").
class SharedStringsParser : public XmlEventParser {
 public:
  static constexpr std::size_t kMaxStrings = 4'000'000;
  static constexpr std::size_t kMaxTextBytes = std::size_t{128} << 20;

  bool parse(std::string_view xml) { return run(xml); }
  bool parse(const XmlSource& source) { return run(source); }
  SharedStrings strings;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view name) override;
  void text(std::string_view text) override;

 private:
  bool inItem = false;
  bool inText = false;
  int phoneticDepth = 0;
};

// The cells (`c`) of a worksheet that hold something (a number or text that
// is not empty), packed: one text buffer, one entry per cell, one record per
// run of cells in the same row. Blank cells, such as the styled empty cells
// of a formatted range, are not kept: they cost nothing however many there
// are.
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
// - A later cell that holds something replaces an earlier one at the same
//   position; rows and cells may come in any order.
// parse() throws XLSXReadError::unsupported past kMaxCells cells that hold
// something ("the first sheet has more than 2,000,000 cells") or
// kMaxTextBytes of their text ("the first sheet holds more than 128 MB of
// text").
class SheetParser : public XmlEventParser {
 public:
  static constexpr std::size_t kMaxCells = 2'000'000;
  static constexpr std::size_t kMaxTextBytes = std::size_t{128} << 20;
  static constexpr std::uint32_t kMaxColumn = 16'384;
  static constexpr std::uint32_t kMaxRow = 1'048'576;

  struct Entry {
    std::uint32_t column = 0;
    std::uint32_t textLength = 0;
    std::uint64_t textOffset = 0;
    double number = 0;
    bool isNumber = false;
  };
  struct Run {
    std::uint32_t row = 0;
    std::size_t firstEntry = 0;
    std::size_t entryCount = 0;
  };

  explicit SheetParser(const SharedStrings& sharedStrings) : sharedStrings(sharedStrings) {}
  bool parse(std::string_view xml) { return run(xml); }
  bool parse(const XmlSource& source) { return run(source); }

  // Calls `handler` once per row that holds something, in row order, with
  // the row's cells from column A to its last non-blank cell (gaps blank).
  // The views live until the handler returns. Call after parse().
  using RowHandler = std::function<void(std::uint32_t row, const std::vector<CellView>& cells)>;
  void forEachRow(const RowHandler& handler) const;

  const SharedStrings& sharedStrings;

 protected:
  void start(std::string_view name, const char** attributes) override;
  void end(std::string_view name) override;
  void text(std::string_view text) override;

 private:
  void finishCell();

  std::string cellText;
  std::vector<Entry> entries;
  std::vector<Run> runs;
  bool inOrder = true;  // runs ascend by row, entries within a run by column

  std::uint64_t column = 0;
  std::uint64_t row = 0;
  std::string type;
  std::string value;
  bool inValue = false;
  bool inInlineText = false;
  bool inInline = false;
  bool inCell = false;
  int phoneticDepth = 0;
};

// The part a workbook relationship target names: absolute targets ("/xl/...")
// start at the package root, others at "xl/"; "." and ".." segments are
// resolved. Absent when the path climbs above the root or names no file.
std::optional<std::string> partPath(std::string_view target);

// Column and row numbers (from 1) of a reference such as "B12"; absent when
// it is not letters followed by digits or exceeds the 64-bit range.
std::optional<std::pair<std::uint64_t, std::uint64_t>> cellReference(std::string_view ref);

}  // namespace orvane::XLSXReader
