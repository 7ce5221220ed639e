// Hostile workbooks must be read or refused with a sentence: no crash, hang
// or runaway allocation, from the ZIP container down to the CSV handed to the
// ticket import.
//
// Two input forms, so mutations reach the XML as well as the container:
//   - bytes starting with "PK": a whole .xlsx file;
//   - anything else: XML parts separated by NUL bytes (sheet, shared strings,
//     workbook, workbook relationships), packed here into a stored workbook;
//     parts left out get plain defaults.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/CsvCodec.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketXlsx.h"
#include "core/exchange/XlsxReadError.h"
#include "core/exchange/ZipArchive.h"

namespace {

std::string workbookFromParts(std::string_view input) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (parts.size() < 4) {
    const std::size_t cut = input.find('\0', start);
    parts.emplace_back(input.substr(start, cut == std::string_view::npos ? input.npos : cut - start));
    if (cut == std::string_view::npos) break;
    start = cut + 1;
  }
  std::vector<orvane::ZipArchive::File> files{{"xl/worksheets/sheet1.xml", parts[0]}};
  if (parts.size() > 1) files.push_back({"xl/sharedStrings.xml", parts[1]});
  files.push_back({"xl/workbook.xml", parts.size() > 2 ? parts[2]
                                                       : "<workbook xmlns:r=\"r\"><sheets><sheet name=\"S\" "
                                                         "sheetId=\"1\" r:id=\"rId1\"/></sheets></workbook>"});
  files.push_back({"xl/_rels/workbook.xml.rels",
                   parts.size() > 3 ? parts[3]
                                    : "<Relationships><Relationship Id=\"rId1\" Target=\"worksheets/sheet1.xml\"/>"
                                      "</Relationships>"});
  return orvane::ZipArchive::stored(files);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string xlsx = bytes.starts_with("PK") ? std::string(bytes) : workbookFromParts(bytes);
  std::string csv;
  try {
    csv = TicketXlsx::csv(xlsx);
  } catch (const XLSXReadError&) {
    return 0;
  }
  try {
    TicketCSV::parse(csv);
  } catch (const TicketCSVError&) {
  } catch (const CSVError&) {
  }
  // The import's own path: rows straight from the sheet, with their numbers.
  try {
    TicketXlsx::parse(xlsx);
  } catch (const TicketCSVError&) {
  }
  return 0;
}
