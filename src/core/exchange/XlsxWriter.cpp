#include "core/exchange/XlsxWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/exchange/ZipArchive.h"

namespace orvane::XlsxWriter {

namespace {

constexpr double kUnixEpochSerial = 25569.0;  // 1970-01-01 as a spreadsheet serial

// Style indices into cellXfs of styles.xml below.
constexpr int kStyleBold = 1;
constexpr int kStyleDate = 2;
constexpr int kStyleDateTime = 3;
constexpr int kStyleWrap = 4;

constexpr const char* kXmlHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
constexpr const char* kMainNs = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr const char* kRelNs = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

void appendCodePoint(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// Decodes one UTF-8 sequence at s[i], advancing i; U+FFFD for a malformed one.
char32_t decode(std::string_view s, std::size_t& i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char lead = byte(i);
  int length = 0;
  char32_t cp = 0;
  char32_t minimum = 0;
  if (lead < 0x80) {
    ++i;
    return lead;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2, cp = lead & 0x1F, minimum = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, cp = lead & 0x0F, minimum = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, cp = lead & 0x07, minimum = 0x10000;
  } else {
    ++i;
    return 0xFFFD;
  }
  if (i + length > s.size()) {
    ++i;
    return 0xFFFD;
  }
  for (int k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) {
      ++i;
      return 0xFFFD;
    }
    cp = cp << 6 | (byte(i + k) & 0x3F);
  }
  i += length;
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0xFFFD;
  return cp;
}

// Whether a code point is dropped from cells: XML cannot carry it.
bool dropped(char32_t cp) {
  return (cp < 0x20 && cp != '\t' && cp != '\n' && cp != '\r') || cp == 0xFFFE || cp == 0xFFFF;
}

// `text` as XML character data, made safe as promised in the header.
std::string escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t units = 0;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t cp = decode(text, i);
    if (dropped(cp)) continue;
    units += cp >= 0x10000 ? 2 : 1;
    if (units > kMaxCellUnits) break;
    switch (cp) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\r':
        out += "&#13;";
        break;  // a literal CR would be normalised away
      default:
        appendCodePoint(out, cp);
    }
  }
  return out;
}

}  // namespace

CellFit cellFit(std::string_view text) {
  CellFit fit;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t at = i;
    const char32_t cp = decode(text, i);
    const bool replaced = cp == 0xFFFD && !text.substr(at).starts_with("\xEF\xBF\xBD");
    if (dropped(cp) || replaced) {
      fit.keepsEveryCharacter = false;
    } else {
      fit.units += cp >= 0x10000 ? 2 : 1;
    }
  }
  return fit;
}

namespace {

std::string columnLetters(std::size_t index) {  // 0 -> "A"
  std::string letters;
  for (std::size_t n = index + 1; n > 0; n = (n - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (n - 1) % 26));
  return letters;
}

std::string numberText(double n) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, n);
  return std::string(buffer, result.ptr);
}

double serial(Timestamp at) { return kUnixEpochSerial + std::floor(at.secondsSince1970) / 86400.0; }

std::string sheetXml(const Sheet& sheet, bool active) {
  std::size_t width = 0;
  for (const auto& row : sheet.rows) width = std::max(width, row.size());
  std::string x = kXmlHeader;
  x += "<worksheet xmlns=\"";
  x += kMainNs;
  x += "\" xmlns:r=\"";
  x += kRelNs;
  x += "\">";
  const std::string last =
      width == 0 ? "A1" : columnLetters(width - 1) + std::to_string(std::max<std::size_t>(sheet.rows.size(), 1));
  x += "<dimension ref=\"A1" + (last == "A1" ? std::string() : ":" + last) + "\"/>";
  x += "<sheetViews><sheetView";
  if (active) x += " tabSelected=\"1\"";
  x += " workbookViewId=\"0\">";
  if (sheet.headerRow && !sheet.rows.empty()) {
    x += "<pane ySplit=\"1\" topLeftCell=\"A2\" activePane=\"bottomLeft\" state=\"frozen\"/>"
         "<selection pane=\"bottomLeft\" activeCell=\"A2\" sqref=\"A2\"/>";
  }
  x += "</sheetView></sheetViews><sheetFormatPr defaultRowHeight=\"15\"/>";
  if (!sheet.columnWidths.empty()) {
    x += "<cols>";
    for (std::size_t c = 0; c < sheet.columnWidths.size(); ++c) {
      const std::string n = std::to_string(c + 1);
      x += "<col min=\"" + n + "\" max=\"" + n + "\" width=\"" + numberText(sheet.columnWidths[c]) +
           "\" customWidth=\"1\"/>";
    }
    x += "</cols>";
  }
  x += "<sheetData>";
  for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
    const std::string rowNumber = std::to_string(r + 1);
    const bool header = sheet.headerRow && r == 0;
    x += "<row r=\"" + rowNumber + "\">";
    for (std::size_t c = 0; c < sheet.rows[r].size(); ++c) {
      const Cell& cell = sheet.rows[r][c];
      int style = header ? kStyleBold : (c < sheet.wrapColumns.size() && sheet.wrapColumns[c] ? kStyleWrap : 0);
      if (cell.kind == Cell::Kind::empty || (cell.kind != Cell::Kind::text && !std::isfinite(cell.number))) {
        continue;
      }
      if (cell.kind == Cell::Kind::date) style = kStyleDate;
      if (cell.kind == Cell::Kind::dateTime) style = kStyleDateTime;
      x += "<c r=\"" + columnLetters(c) + rowNumber + "\"";
      if (style != 0) x += " s=\"" + std::to_string(style) + "\"";
      if (cell.kind == Cell::Kind::text) {
        x += " t=\"inlineStr\"><is><t xml:space=\"preserve\">" + escaped(cell.text) + "</t></is></c>";
      } else {
        x += "><v>" + numberText(cell.number) + "</v></c>";
      }
    }
    x += "</row>";
  }
  x += "</sheetData><pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" "
       "footer=\"0.3\"/></worksheet>";
  return x;
}

std::string stylesXml() {
  std::string x = kXmlHeader;
  x += "<styleSheet xmlns=\"";
  x += kMainNs;
  x += "\">"
       "<numFmts count=\"2\"><numFmt numFmtId=\"164\" formatCode=\"yyyy\\-mm\\-dd\"/>"
       "<numFmt numFmtId=\"165\" formatCode=\"yyyy\\-mm\\-dd\\ hh:mm:ss\"/></numFmts>"
       "<fonts count=\"2\"><font><sz val=\"11\"/><name val=\"Calibri\"/><family val=\"2\"/></font>"
       "<font><b/><sz val=\"11\"/><name val=\"Calibri\"/><family val=\"2\"/></font></fonts>"
       "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
       "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
       "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
       "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
       "<cellXfs count=\"5\">"
       "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
       "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyFont=\"1\"/>"
       "<xf numFmtId=\"164\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
       "<xf numFmtId=\"165\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
       "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyAlignment=\"1\">"
       "<alignment vertical=\"top\" wrapText=\"1\"/></xf>"
       "</cellXfs>"
       "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>"
       "</styleSheet>";
  return x;
}

}  // namespace

Cell Cell::ofDate(Timestamp at) { return {Kind::date, {}, std::floor(serial(at))}; }

Cell Cell::ofDateTime(Timestamp at) { return {Kind::dateTime, {}, serial(at)}; }

double fittingWidth(const std::vector<std::string>& texts, double minimum, double maximum) {
  std::size_t longest = 0;
  for (const auto& text : texts) {
    // Characters, not bytes: UTF-8 continuation bytes do not count; each line
    // of a multi-line text counts on its own.
    std::size_t line = 0;
    for (unsigned char c : text) {
      if (c == '\n') {
        line = 0;
      } else if ((c & 0xC0) != 0x80) {
        longest = std::max(longest, ++line);
      }
    }
  }
  return std::clamp(static_cast<double>(longest) + 2.0, minimum, maximum);
}

std::string workbook(std::span<const Sheet> sheets) {
  std::string types = kXmlHeader;
  types +=
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
      "<Override PartName=\"/xl/workbook.xml\" "
      "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/>"
      "<Override PartName=\"/xl/styles.xml\" "
      "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml\"/>";
  std::string book = kXmlHeader;
  book += "<workbook xmlns=\"";
  book += kMainNs;
  book += "\" xmlns:r=\"";
  book += kRelNs;
  book += "\"><bookViews><workbookView activeTab=\"0\"/></bookViews><sheets>";
  std::string bookRels = kXmlHeader;
  bookRels += "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  std::vector<ZipArchive::File> files;
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    const std::string n = std::to_string(i + 1);
    types += "<Override PartName=\"/xl/worksheets/sheet" + n +
             ".xml\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml\"/>";
    book += "<sheet name=\"" + escaped(sheets[i].name) + "\" sheetId=\"" + n + "\" r:id=\"rId" + n + "\"/>";
    bookRels += "<Relationship Id=\"rId" + n +
                "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet\" "
                "Target=\"worksheets/sheet" +
                n + ".xml\"/>";
  }
  types += "</Types>";
  book += "</sheets></workbook>";
  bookRels += "<Relationship Id=\"rId" + std::to_string(sheets.size() + 1) +
              "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles\" "
              "Target=\"styles.xml\"/></Relationships>";

  files.push_back({"[Content_Types].xml", std::move(types)});
  files.push_back(
      {"_rels/.rels", std::string(kXmlHeader) +
                          "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                          "<Relationship Id=\"rId1\" "
                          "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument\" "
                          "Target=\"xl/workbook.xml\"/></Relationships>"});
  files.push_back({"xl/workbook.xml", std::move(book)});
  files.push_back({"xl/_rels/workbook.xml.rels", std::move(bookRels)});
  files.push_back({"xl/styles.xml", stylesXml()});
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    files.push_back({"xl/worksheets/sheet" + std::to_string(i + 1) + ".xml", sheetXml(sheets[i], i == 0)});
  }
  return ZipArchive::stored(files);
}

}  // namespace orvane::XlsxWriter
