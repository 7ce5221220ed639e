#include "core/exchange/XlsxParsers.h"

#include <expat.h>

#include <charconv>
#include <climits>
#include <cmath>

namespace orvane::XLSXReader {

namespace {

std::string_view localName(std::string_view name) {
  const auto colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// A whole decimal number; absent for anything else (signs, spaces, overflow).
std::optional<std::uint64_t> wholeNumber(std::string_view s) {
  std::uint64_t n = 0;
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), n);
  if (ec != std::errc() || end != s.data() + s.size() || s.empty()) return std::nullopt;
  return n;
}

// The value as a finite number, allowing surrounding blanks and a leading "+";
// absent when it is not one.
std::optional<double> decimalNumber(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\n' || s.front() == '\r')) {
    s.remove_prefix(1);
  }
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\n' || s.back() == '\r')) {
    s.remove_suffix(1);
  }
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty() || s.front() == '+') return std::nullopt;
  double d = 0;
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), d);
  if (ec != std::errc() || end != s.data() + s.size() || !std::isfinite(d)) return std::nullopt;
  return d;
}

}  // namespace

// Bridges expat's C callbacks to the virtual handlers. Handlers never throw
// (nothing may unwind through expat); they record a failure and stop.
struct XmlEventParserAccess {
  static void XMLCALL start(void* self, const XML_Char* name, const XML_Char** attributes) {
    auto* p = static_cast<XmlEventParser*>(self);
    if (!p->stopped_) p->start(localName(name), attributes);
    if (p->stopped_) XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
  static void XMLCALL end(void* self, const XML_Char* name) {
    auto* p = static_cast<XmlEventParser*>(self);
    if (!p->stopped_) p->end(localName(name));
    if (p->stopped_) XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
  static void XMLCALL text(void* self, const XML_Char* s, int length) {
    auto* p = static_cast<XmlEventParser*>(self);
    if (!p->stopped_) p->text(std::string_view(s, static_cast<std::size_t>(length)));
    if (p->stopped_) XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
  static void XMLCALL doctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    auto* p = static_cast<XmlEventParser*>(self);
    p->stopped_ = true;
    XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
};

bool XmlEventParser::run(std::string_view xml) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  if (parser == nullptr) return false;
  parser_ = parser;
  stopped_ = false;
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, &XmlEventParserAccess::start, &XmlEventParserAccess::end);
  XML_SetCharacterDataHandler(parser, &XmlEventParserAccess::text);
  XML_SetStartDoctypeDeclHandler(parser, &XmlEventParserAccess::doctype);

  bool ok = true;
  constexpr std::size_t kSlice = 1 << 20;
  std::size_t at = 0;
  do {
    const std::size_t length = std::min(kSlice, xml.size() - at);
    const bool last = at + length == xml.size();
    if (XML_Parse(parser, xml.data() + at, static_cast<int>(length), last ? XML_TRUE : XML_FALSE) != XML_STATUS_OK) {
      ok = false;
      break;
    }
    at += length;
  } while (at < xml.size());
  XML_ParserFree(parser);
  parser_ = nullptr;
  return ok && !stopped_;
}

std::optional<std::string_view> XmlEventParser::attribute(const char** attributes, std::string_view name) {
  for (const char** a = attributes; a[0] != nullptr; a += 2) {
    if (a[0] == name) return std::string_view(a[1]);
  }
  for (const char** a = attributes; a[0] != nullptr; a += 2) {
    if (localName(a[0]) == name) return std::string_view(a[1]);
  }
  return std::nullopt;
}

void FirstSheetParser::start(std::string_view name, const char** attributes) {
  if (seen_ || name != "sheet") return;
  seen_ = true;
  for (const char** a = attributes; a[0] != nullptr; a += 2) {
    if (std::string_view(a[0]) == "r:id") {
      id = a[1];
      return;
    }
  }
  for (const char** a = attributes; a[0] != nullptr; a += 2) {
    if (std::string_view(a[0]).ends_with(":id")) {
      id = a[1];
      return;
    }
  }
  for (const char** a = attributes; a[0] != nullptr; a += 2) {
    if (std::string_view(a[0]) == "id") {
      id = a[1];
      return;
    }
  }
}

void RelationshipParser::start(std::string_view name, const char** attributes) {
  if (name != "Relationship") return;
  const auto id = attribute(attributes, "Id");
  const auto target = attribute(attributes, "Target");
  if (!id || !target) return;
  map.emplace(std::string(*id), std::string(*target));
  if (const auto type = attribute(attributes, "Type")) types.emplace(std::string(*id), std::string(*type));
}

void SharedStringsParser::start(std::string_view name, const char**) {
  if (name == "si") {
    inItem = true;
    current.clear();
  } else if (name == "rPh") {
    ++phoneticDepth;
  } else if (name == "t" && inItem && phoneticDepth == 0) {
    inText = true;
  }
}

void SharedStringsParser::end(std::string_view name) {
  if (name == "si") {
    if (inItem) strings.push_back(std::move(current));
    current.clear();
    inItem = false;
    inText = false;
  } else if (name == "rPh") {
    if (phoneticDepth > 0) --phoneticDepth;
  } else if (name == "t") {
    inText = false;
  }
}

void SharedStringsParser::text(std::string_view s) {
  if (inItem && inText && phoneticDepth == 0) current += s;
}

void SheetParser::start(std::string_view name, const char** attributes) {
  if (name == "row") {
    const auto r = attribute(attributes, "r");
    const auto number = r ? wholeNumber(*r) : std::nullopt;
    row = number ? *number : row + 1;
    column = 0;
  } else if (name == "c") {
    inCell = true;
    inValue = inInline = inInlineText = false;
    phoneticDepth = 0;
    value.clear();
    const auto ref = attribute(attributes, "r");
    const auto position = ref ? cellReference(*ref) : std::nullopt;
    if (position) {
      column = position->first;
      row = position->second;
    } else {
      ++column;
    }
    const auto t = attribute(attributes, "t");
    type = t ? std::string(*t) : std::string();
  } else if (!inCell) {
    return;
  } else if (name == "v") {
    inValue = true;
  } else if (name == "is") {
    inInline = true;
  } else if (name == "rPh") {
    ++phoneticDepth;
  } else if (name == "t" && inInline) {
    inInlineText = true;
  }
}

void SheetParser::end(std::string_view name) {
  if (!inCell) return;
  if (name == "c") {
    finishCell();
    inCell = false;
  } else if (name == "v") {
    inValue = false;
  } else if (name == "is") {
    inInline = false;
  } else if (name == "rPh") {
    if (phoneticDepth > 0) --phoneticDepth;
  } else if (name == "t") {
    inInlineText = false;
  }
}

void SheetParser::text(std::string_view s) {
  if (!inCell || phoneticDepth > 0) return;
  // Inline text and a value are kept apart by the cell's type at its end;
  // a cell holds one or the other.
  if (inValue || inInlineText) value += s;
}

void SheetParser::finishCell() {
  Cell cell;
  if (type == "s") {
    const auto index = wholeNumber(value);
    cell = Cell::text(index && *index < sharedStrings.size() ? sharedStrings[*index] : std::string());
  } else if (type == "inlineStr" || type == "str" || type == "e") {
    cell = Cell::text(value);
  } else if (type == "b") {
    cell = Cell::text(value == "1" ? "TRUE" : "FALSE");
  } else if (const auto number = decimalNumber(value)) {
    cell = Cell::number(*number);
  } else {
    cell = Cell::text(value);
  }
  if (column < 1 || column > kMaxColumn || row < 1 || row > kMaxRow) return;
  if (!cell.isNumber()) textBytes += cell.asText().size();
  if (++cellCount > kMaxCells || textBytes > kMaxTextBytes) {
    tooLarge = true;
    stop();
    return;
  }
  rows[static_cast<std::uint32_t>(row)][static_cast<std::uint32_t>(column)] = std::move(cell);
}

std::optional<std::string> partPath(std::string_view target) {
  std::vector<std::string_view> segments;
  std::string_view rest = target;
  if (rest.starts_with('/')) {
    rest.remove_prefix(1);
  } else {
    segments.push_back("xl");
  }
  while (!rest.empty()) {
    const auto slash = rest.find('/');
    const std::string_view segment = rest.substr(0, slash);
    rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
    if (segment.empty() || segment == ".") continue;
    if (segment == "..") {
      if (segments.empty()) return std::nullopt;
      segments.pop_back();
      continue;
    }
    segments.push_back(segment);
  }
  if (segments.empty()) return std::nullopt;
  std::string path;
  for (const auto& segment : segments) {
    if (!path.empty()) path += '/';
    path += segment;
  }
  return path;
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> cellReference(std::string_view ref) {
  // Saturating, so an absurd reference still lands beyond the grid.
  constexpr std::uint64_t kSaturated = std::uint64_t{1} << 40;
  std::size_t i = 0;
  std::uint64_t column = 0;
  for (; i < ref.size(); ++i) {
    char c = ref[i];
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c < 'A' || c > 'Z') break;
    column = std::min(kSaturated, column * 26 + static_cast<std::uint64_t>(c - 'A' + 1));
  }
  if (i == 0 || i == ref.size()) return std::nullopt;
  std::uint64_t row = 0;
  for (; i < ref.size(); ++i) {
    const char c = ref[i];
    if (c < '0' || c > '9') return std::nullopt;
    row = std::min(kSaturated, row * 10 + static_cast<std::uint64_t>(c - '0'));
  }
  return std::pair{column, row};
}

}  // namespace orvane::XLSXReader
