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

// The source of one part's XML, unpacked as it is read; absent when the
// archive has no such part.
std::optional<XmlSource> part(std::string_view data, const std::map<std::string, ZipReader::Member>& members,
                              std::string_view name) {
  const auto it = members.find(std::string(name));
  if (it == members.end()) return std::nullopt;
  const ZipReader::Member member = it->second;
  return XmlSource(
      [data, member](const std::function<void(std::string_view)>& sink) { ZipReader::unpack(data, member, sink); });
}

}  // namespace

void forEachFirstSheetRow(std::string_view data, const RowHandler& handler) {
  const auto members = ZipReader::directory(data);
  const auto workbook = part(data, members, kWorkbookPart);
  if (!workbook) throw XLSXReadError::notAWorkbook();

  FirstSheetParser firstSheet;
  if (!firstSheet.parse(*workbook)) throw XLSXReadError::notAWorkbook();
  RelationshipParser relationships;
  if (const auto rels = part(data, members, kWorkbookRelsPart)) {
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
  const auto sheet = part(data, members, sheetPath);
  if (!sheet) throw XLSXReadError::noSheet();

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
  if (const auto strings = part(data, members, sharedPath)) {
    if (!shared.parse(*strings)) throw XLSXReadError::noSheet();
  }

  SheetParser cells(shared.strings);
  if (!cells.parse(*sheet)) throw XLSXReadError::noSheet();
  cells.forEachRow(handler);
}

std::vector<std::vector<Cell>> firstSheetRows(std::string_view data) {
  std::vector<std::vector<Cell>> rows;
  std::size_t denseCells = 0;
  forEachFirstSheetRow(data, [&](std::uint32_t, const std::vector<CellView>& cells) {
    denseCells += cells.size();
    if (denseCells > SheetParser::kMaxCells) throw XLSXReadError::unsupported("the first sheet is too large");
    std::vector<Cell> row;
    row.reserve(cells.size());
    for (const CellView& cell : cells) row.push_back(cell.cell());
    rows.push_back(std::move(row));
  });
  return rows;
}

}  // namespace orvane::XLSXReader
