#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

// A delimited text that cannot be split into records. what() is the complete
// sentence the user sees.
class CSVError : public std::exception {
 public:
  enum class Case { unterminatedQuote, tooManyFields };

  static CSVError unterminatedQuote() { return CSVError(Case::unterminatedQuote); }
  // A record with more than CSV::kMaxFields fields.
  static CSVError tooManyFields() { return CSVError(Case::tooManyFields); }

  Case kind() const { return kind_; }
  const char* what() const noexcept override;

  friend bool operator==(const CSVError& a, const CSVError& b) { return a.kind_ == b.kind_; }

 private:
  explicit CSVError(Case kind) : kind_(kind) {}
  Case kind_;
};

// Delimiter-separated text: records of fields, and back. Knows nothing of what
// the fields mean. Texts are UTF-8 and are walked by user-perceived characters
// (grapheme clusters), so "\r\n" is one line break and a double quote that
// carries a combining mark is an ordinary character, not a quote.
namespace CSV {

// The most fields a record may have: a spreadsheet's 16,384 columns. A line
// of a million delimiters is no table, and holding its empty fields would
// take far more memory than the file.
inline constexpr std::size_t kMaxFields = 16'384;

using Record = std::vector<std::string>;
using Document = std::vector<Record>;

// ',', ';' or '\t': whichever occurs most often outside quotes in the first
// record; ties go to comma, then semicolon; comma when there is none at all.
char detectDelimiter(std::string_view text);

// The records of `text`. A leading byte order mark is dropped; blank lines
// are skipped; quoted fields may hold delimiters, doubled quotes and line
// breaks (kept as they stand). Fields are not trimmed and records are not
// padded. Bytes that are not valid UTF-8 are read as U+FFFD.
// Throws CSVError::unterminatedQuote when the text ends inside quotes, and
// CSVError::tooManyFields for a record of more than kMaxFields fields.
Document parse(std::string_view text, char delimiter);

// The records of `text` as parse() reads them, handed to `handler` one at a
// time, so a long file never has to be held as records. The record is
// reused after the handler returns. Throws as parse() does, after the
// records before the open quote were handed over; an exception from the
// handler passes through.
void forEachRecord(std::string_view text, char delimiter, const std::function<void(Record&)>& handler);

// The text of `rows`: fields joined by `delimiter`, each record followed by
// "\n", no byte order mark. A field is quoted when it holds the delimiter, a
// double quote, "\n" or "\r", or begins or ends with a space.
std::string encode(const Document& rows, char delimiter = ',');

}  // namespace CSV
}  // namespace orvane
