// Any bytes given to the CSV codec must be split into records or refused
// with CSVError: no crash, hang or runaway allocation. What was read must
// survive encode and parse again unchanged, with each delimiter, except
// where Unicode itself joins a field to its neighbour: a field that begins
// with a combining mark (it fuses with the delimiter or quote before it),
// ends with a prepended mark (it fuses with what follows), a record of one
// empty field (written as a blank line), or a first field that begins with
// a byte order mark.
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "core/exchange/CsvCodec.h"

namespace {

// Whether `field` between two quotes stays three clusters apart.
bool standsAlone(const std::string& field) {
  if (field.empty()) return true;
  static std::unique_ptr<icu::BreakIterator> breaks = [] {
    UErrorCode status = U_ZERO_ERROR;
    return std::unique_ptr<icu::BreakIterator>(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  }();
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8("\"" + field + "\"");
  breaks->setText(text);
  return breaks->isBoundary(1) && breaks->isBoundary(text.length() - 1);
}

bool survivesRoundTrip(const orvane::CSV::Document& records) {
  for (std::size_t r = 0; r < records.size(); ++r) {
    if (records[r].size() == 1 && records[r][0].empty()) return false;
    for (const auto& field : records[r]) {
      if (!standsAlone(field)) return false;
    }
  }
  return records.empty() || records[0].empty() || !records[0][0].starts_with("\xEF\xBB\xBF");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const char detected = CSV::detectDelimiter(text);
  if (detected != ',' && detected != ';' && detected != '\t') std::abort();
  for (char delimiter : {',', ';', '\t'}) {
    CSV::Document records;
    try {
      records = CSV::parse(text, delimiter);
    } catch (const CSVError&) {
      continue;
    }
    if (!survivesRoundTrip(records)) continue;
    const std::string encoded = CSV::encode(records, delimiter);
    if (CSV::parse(encoded, delimiter) != records) std::abort();
  }
  return 0;
}
