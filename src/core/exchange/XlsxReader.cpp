#include "core/exchange/XlsxReader.h"

#include "core/exchange/XlsxParsers.h"
#include "core/exchange/XlsxReadError.h"
#include "core/exchange/ZipReader.h"

namespace orvane::XLSXReader {

namespace {

constexpr std::string_view kWorkbookPart = "xl/workbook.xml";
constexpr std::string_view kWorkbookRelsPart = "xl/_rels/workbook.xml.rels";
constexpr std::string_view kDefaultSheetPart = "xl/worksheets/sheet1.xml";
constexpr std::string_view kDefaultSharedStringsPart = "xl/sharedStrings.xml";

XLSXReadError tooLarge() { return XLSXReadError::unsupported("the first sheet is too large"); }

const std::string* part(const std::map<std::string, std::string>& parts, std::string_view name) {
  const auto it = parts.find(std::string(name));
  return it == parts.end() ? nullptr : &it->second;
}

}  // namespace

std::vector<std::vector<Cell>> firstSheetRows(std::string_view data) {
  const auto parts = ZipReader::entries(data);
  const std::string* workbook = part(parts, kWorkbookPart);
  if (workbook == nullptr) throw XLSXReadError::notAWorkbook();

  FirstSheetParser firstSheet;
  if (!firstSheet.parse(*workbook)) throw XLSXReadError::notAWorkbook();
  RelationshipParser relationships;
  if (const std::string* rels = part(parts, kWorkbookRelsPart)) {
    if (!relationships.parse(*rels)) throw XLSXReadError::notAWorkbook();
  }

  // The sheet the first `sheet` element points at; the conventional part when
  // the workbook does not say. A target that climbs out of the package names
  // no part at all.
  std::string sheetPath(kDefaultSheetPart);
  if (firstSheet.id) {
    if (const auto target = relationships.map.find(*firstSheet.id); target != relationships.map.end()) {
      const auto resolved = partPath(target->second);
      if (!resolved) throw XLSXReadError::noSheet();
      sheetPath = *resolved;
    }
  }
  const std::string* sheet = part(parts, sheetPath);
  if (sheet == nullptr) throw XLSXReadError::noSheet();

  // Shared strings: the part the workbook's relationships name, else the
  // conventional one.
  std::string sharedPath(kDefaultSharedStringsPart);
  for (const auto& [id, type] : relationships.types) {
    if (type.ends_with("/sharedStrings")) {
      if (const auto resolved = partPath(relationships.map.at(id))) sharedPath = *resolved;
      break;
    }
  }
  SharedStringsParser shared;
  if (const std::string* strings = part(parts, sharedPath)) {
    if (!shared.parse(*strings)) throw XLSXReadError::noSheet();
  }

  SheetParser cells(shared.strings);
  const bool parsed = cells.parse(*sheet);
  if (cells.tooLarge) throw tooLarge();
  if (!parsed) throw XLSXReadError::noSheet();

  std::size_t denseCells = 0;
  for (const auto& [number, row] : cells.rows) denseCells += row.rbegin()->first;
  if (denseCells > SheetParser::kMaxCells) throw tooLarge();

  std::vector<std::vector<Cell>> rows;
  rows.reserve(cells.rows.size());
  for (auto& [number, row] : cells.rows) {
    std::vector<Cell> dense(row.rbegin()->first, Cell::text({}));
    for (auto& [column, cell] : row) dense[column - 1] = std::move(cell);
    rows.push_back(std::move(dense));
  }
  return rows;
}

}  // namespace orvane::XLSXReader
