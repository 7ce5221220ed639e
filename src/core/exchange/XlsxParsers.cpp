#include "core/exchange/XlsxParsers.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <new>

#include "core/exchange/XlsxReadError.h"

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

// Bridges expat's C callbacks to the virtual handlers. Nothing may unwind
// through expat: an exception from a handler is kept, the parse stopped, and
// run() throws it on afterwards.
struct XmlEventParserAccess {
  template <typename Call>
  static void guarded(void* self, Call&& call) {
    auto* p = static_cast<XmlEventParser*>(self);
    if (!p->stopped_) {
      try {
        call(*p);
      } catch (...) {
        p->failure_ = std::current_exception();
        p->stopped_ = true;
      }
    }
    if (p->stopped_) XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
  static void XMLCALL start(void* self, const XML_Char* name, const XML_Char** attributes) {
    guarded(self, [&](XmlEventParser& p) {
      if (++p.depth_ > XmlEventParser::kMaxDepth) {
        throw XLSXReadError::unsupported("a part nests its elements more than " +
                                         std::to_string(XmlEventParser::kMaxDepth) + " levels deep");
      }
      p.start(localName(name), attributes);
    });
  }
  static void XMLCALL end(void* self, const XML_Char* name) {
    guarded(self, [&](XmlEventParser& p) {
      --p.depth_;
      p.end(localName(name));
    });
  }
  static void XMLCALL text(void* self, const XML_Char* s, int length) {
    guarded(self, [&](XmlEventParser& p) { p.text(std::string_view(s, static_cast<std::size_t>(length))); });
  }
  static void XMLCALL doctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    auto* p = static_cast<XmlEventParser*>(self);
    p->stopped_ = true;
    XML_StopParser(static_cast<XML_Parser>(p->parser_), XML_FALSE);
  }
};

bool XmlEventParser::run(std::string_view xml) {
  return run([xml](const std::function<void(std::string_view)>& sink) {
    // Slices keep each call within expat's int length.
    constexpr std::size_t kSlice = 1 << 20;
    for (std::size_t at = 0; at < xml.size(); at += kSlice) sink(xml.substr(at, kSlice));
  });
}

bool XmlEventParser::run(const XmlSource& source) {
  XML_Parser parser = XML_ParserCreate(nullptr);
  if (parser == nullptr) throw std::bad_alloc();
  struct Release {
    XmlEventParser* self;
    XML_Parser parser;
    ~Release() {
      XML_ParserFree(parser);
      self->parser_ = nullptr;
    }
  } release{this, parser};
  parser_ = parser;
  stopped_ = false;
  depth_ = 0;
  failure_ = nullptr;
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, &XmlEventParserAccess::start, &XmlEventParserAccess::end);
  XML_SetCharacterDataHandler(parser, &XmlEventParserAccess::text);
  XML_SetStartDoctypeDeclHandler(parser, &XmlEventParserAccess::doctype);

  // Once the XML is refused, the rest of the part is not even unpacked.
  struct Refused {};
  bool ok = true;
  try {
    source([&](std::string_view slice) {
      if (XML_Parse(parser, slice.data(), static_cast<int>(slice.size()), XML_FALSE) != XML_STATUS_OK) {
        ok = false;
        throw Refused{};
      }
    });
  } catch (const Refused&) {
  }
  if (ok && XML_Parse(parser, nullptr, 0, XML_TRUE) != XML_STATUS_OK) ok = false;
  if (failure_) std::rethrow_exception(failure_);
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
    strings.discardPending();
  } else if (name == "rPh") {
    ++phoneticDepth;
  } else if (name == "t" && inItem && phoneticDepth == 0) {
    inText = true;
  }
}

void SharedStringsParser::end(std::string_view name) {
  if (name == "si") {
    if (inItem) {
      if (strings.size() == kMaxStrings) {
        throw XLSXReadError::unsupported("the workbook has more than 4,000,000 shared strings");
      }
      strings.push();
    }
    inItem = false;
    inText = false;
  } else if (name == "rPh") {
    if (phoneticDepth > 0) --phoneticDepth;
  } else if (name == "t") {
    inText = false;
  }
}

void SharedStringsParser::text(std::string_view s) {
  if (!inItem || !inText || phoneticDepth > 0) return;
  if (strings.textBytes() + s.size() > kMaxTextBytes) {
    throw XLSXReadError::unsupported("the shared strings hold more than 128 MB of text");
  }
  strings.append(s);
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
  // a cell holds one or the other. One cell's text is bounded like the
  // sheet's: it cannot be longer than all of them together.
  if (!(inValue || inInlineText)) return;
  if (value.size() + s.size() > kMaxTextBytes) {
    throw XLSXReadError::unsupported("the first sheet holds more than 128 MB of text");
  }
  value += s;
}

void SheetParser::finishCell() {
  if (column < 1 || column > kMaxColumn || row < 1 || row > kMaxRow) return;
  Entry entry;
  entry.column = static_cast<std::uint32_t>(column);
  std::string_view text;
  if (type == "s") {
    const auto index = wholeNumber(value);
    if (index && *index < sharedStrings.size()) text = sharedStrings[*index];
  } else if (type == "inlineStr" || type == "str" || type == "e") {
    text = value;
  } else if (type == "b") {
    text = value == "1" ? "TRUE" : "FALSE";
  } else if (const auto number = decimalNumber(value)) {
    entry.isNumber = true;
    entry.number = *number;
  } else {
    text = value;
  }
  if (!entry.isNumber && text.empty()) return;  // blank: nothing to keep

  if (entries.size() == kMaxCells) {
    throw XLSXReadError::unsupported("the first sheet has more than 2,000,000 cells");
  }
  if (cellText.size() + text.size() > kMaxTextBytes) {
    throw XLSXReadError::unsupported("the first sheet holds more than 128 MB of text");
  }
  entry.textOffset = cellText.size();
  entry.textLength = static_cast<std::uint32_t>(text.size());
  cellText += text;

  const auto rowNumber = static_cast<std::uint32_t>(row);
  if (!runs.empty() && runs.back().row == rowNumber) {
    if (entries.back().column >= entry.column) inOrder = false;
    ++runs.back().entryCount;
  } else {
    if (!runs.empty() && runs.back().row > rowNumber) inOrder = false;
    runs.push_back({rowNumber, entries.size(), 1});
  }
  entries.push_back(entry);
}

void SheetParser::forEachRow(const RowHandler& handler) const {
  std::vector<CellView> dense;
  const auto view = [&](const Entry& e) {
    return CellView{e.isNumber, e.number, std::string_view(cellText).substr(e.textOffset, e.textLength)};
  };
  if (inOrder) {
    for (const Run& run : runs) {
      const Entry& last = entries[run.firstEntry + run.entryCount - 1];
      dense.assign(last.column, CellView{});
      for (std::size_t i = run.firstEntry; i < run.firstEntry + run.entryCount; ++i) {
        dense[entries[i].column - 1] = view(entries[i]);
      }
      handler(run.row, dense);
    }
    return;
  }
  // Rows or cells out of order, or repeated: gather each row's runs in
  // document order, so a later cell at a position wins.
  std::vector<std::size_t> order(runs.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return runs[a].row < runs[b].row; });
  for (std::size_t i = 0; i < order.size();) {
    const std::uint32_t rowNumber = runs[order[i]].row;
    std::uint32_t width = 0;
    std::size_t j = i;
    for (; j < order.size() && runs[order[j]].row == rowNumber; ++j) {
      const Run& run = runs[order[j]];
      for (std::size_t k = run.firstEntry; k < run.firstEntry + run.entryCount; ++k) {
        width = std::max(width, entries[k].column);
      }
    }
    dense.assign(width, CellView{});
    for (std::size_t k = i; k < j; ++k) {
      const Run& run = runs[order[k]];
      for (std::size_t e = run.firstEntry; e < run.firstEntry + run.entryCount; ++e) {
        dense[entries[e].column - 1] = view(entries[e]);
      }
    }
    handler(rowNumber, dense);
    i = j;
  }
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
