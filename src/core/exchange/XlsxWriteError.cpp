#include "core/exchange/XlsxWriteError.h"

#include "core/exchange/XlsxWriter.h"

namespace orvane {

namespace {

// 40000 -> "40,000".
std::string grouped(std::size_t n) {
  std::string digits = std::to_string(n);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
    digits.insert(digits.begin() + at, ',');
  return digits;
}

constexpr const char* kCsvKeepsEverything = " Nothing was exported; CSV export keeps every character.";

}  // namespace

XLSXWriteError XLSXWriteError::cellTooLong(const std::string& reference, const std::string& field, std::size_t units) {
  return {Case::cellTooLong, "The \"" + field + "\" cell of " + reference + " has " + grouped(units) +
                                 " characters, more than the " + grouped(XlsxWriter::kMaxCellUnits) +
                                 " an Excel cell can hold." + kCsvKeepsEverything};
}

XLSXWriteError XLSXWriteError::unwritableCharacter(const std::string& reference, const std::string& field) {
  return {Case::unwritableCharacter, "The \"" + field + "\" cell of " + reference +
                                         " holds a control character that an Excel workbook cannot carry." +
                                         kCsvKeepsEverything};
}

}  // namespace orvane
