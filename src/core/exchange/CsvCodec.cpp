#include "core/exchange/CsvCodec.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <memory>

namespace orvane {

const char* CSVError::what() const noexcept {
  switch (kind_) {
    case Case::unterminatedQuote:
      return "The file ends inside a quoted field. A closing quote is missing.";
    case Case::tooManyFields:
      return "A record has more than 16,384 fields. Check that the file is a table with one ticket per line.";
  }
  return "";
}

namespace CSV {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// `text` itself when it is well-formed UTF-8; otherwise a copy in `storage`
// with every ill-formed sequence replaced by U+FFFD.
std::string_view wellFormed(std::string_view text, std::string& storage) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto length = static_cast<std::int64_t>(text.size());
  std::int64_t i = 0;
  while (i < length) {
    if (data[i] < 0x80) {
      ++i;
      continue;
    }
    std::int32_t next = 0;
    UChar32 c = 0;
    const auto remaining = static_cast<std::int32_t>(std::min<std::int64_t>(length - i, 4));
    U8_NEXT(data + i, next, remaining, c);
    if (c < 0) break;
    i += next;
  }
  if (i == length) return text;
  storage.assign(text.substr(0, static_cast<std::size_t>(i)));
  while (i < length) {
    std::int32_t next = 0;
    UChar32 c = 0;
    const auto remaining = static_cast<std::int32_t>(std::min<std::int64_t>(length - i, 4));
    U8_NEXT(data + i, next, remaining, c);
    if (c < 0) {
      storage += kReplacement;
    } else {
      storage.append(text.substr(static_cast<std::size_t>(i), static_cast<std::size_t>(next)));
    }
    i += next;
  }
  return storage;
}

// Walks a well-formed UTF-8 text one grapheme cluster at a time.
class Clusters {
 public:
  explicit Clusters(std::string_view text) : text_(text) {
    UErrorCode status = U_ZERO_ERROR;
    utext_ = utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status);
    breaks_.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status) || !breaks_) {
      // ICU without its break data: fall back to code points, which differ
      // only for combining marks and emoji sequences.
      breaks_.reset();
      return;
    }
    breaks_->setText(utext_, status);
    if (U_FAILURE(status)) breaks_.reset();
  }
  Clusters(const Clusters&) = delete;
  Clusters& operator=(const Clusters&) = delete;
  ~Clusters() {
    breaks_.reset();
    if (utext_ != nullptr) utext_close(utext_);
  }

  // The next cluster, or false at the end of the text.
  bool next(std::string_view& cluster) {
    if (position_ >= text_.size()) return false;
    std::size_t end = 0;
    // An ASCII character other than CR followed by an ASCII character is a
    // cluster of its own: the common case, without asking ICU.
    const auto byte = static_cast<unsigned char>(text_[position_]);
    if (byte < 0x80 && byte != '\r' &&
        (position_ + 1 == text_.size() || static_cast<unsigned char>(text_[position_ + 1]) < 0x80)) {
      end = position_ + 1;
    } else if (breaks_) {
      const auto boundary = breaks_->following(static_cast<std::int32_t>(position_));
      end = boundary == icu::BreakIterator::DONE ? text_.size() : static_cast<std::size_t>(boundary);
    } else {
      std::int32_t offset = 0;
      UChar32 c = 0;
      U8_NEXT(reinterpret_cast<const std::uint8_t*>(text_.data() + position_), offset,
              static_cast<std::int32_t>(std::min<std::size_t>(text_.size() - position_, 4)), c);
      end = position_ + static_cast<std::size_t>(offset);
      if (byte == '\r' && end < text_.size() && text_[end] == '\n') ++end;
    }
    cluster = text_.substr(position_, end - position_);
    position_ = end;
    return true;
  }

 private:
  std::string_view text_;
  std::size_t position_ = 0;
  UText* utext_ = nullptr;
  std::unique_ptr<icu::BreakIterator> breaks_;
};

bool isLineBreak(std::string_view cluster) { return cluster == "\n" || cluster == "\r" || cluster == "\r\n"; }

}  // namespace

char detectDelimiter(std::string_view text) {
  std::string storage;
  Clusters clusters(wellFormed(text, storage));
  bool insideQuotes = false;
  std::int64_t commas = 0;
  std::int64_t semicolons = 0;
  std::int64_t tabs = 0;
  std::string_view cluster;
  while (clusters.next(cluster)) {
    if (cluster == "\"") {
      insideQuotes = !insideQuotes;
    } else if (!insideQuotes) {
      if (isLineBreak(cluster)) break;
      if (cluster == ",") ++commas;
      if (cluster == ";") ++semicolons;
      if (cluster == "\t") ++tabs;
    }
  }
  char chosen = ',';
  if (semicolons > commas) chosen = ';';
  if (tabs > std::max(commas, semicolons)) chosen = '\t';
  return chosen;
}

Document parse(std::string_view text, char delimiter) {
  Document records;
  forEachRecord(text, delimiter, [&](Record& record) { records.push_back(std::move(record)); });
  return records;
}

void forEachRecord(std::string_view text, char delimiter, const std::function<void(Record&)>& handler) {
  std::string storage;
  text = wellFormed(text, storage);
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());

  const std::string_view delimiterText(&delimiter, 1);
  Record record;
  std::string field;
  bool insideQuotes = false;
  bool quoted = false;

  Clusters clusters(text);
  std::string_view cluster;
  // A doubled quote inside quotes is seen one cluster late: after a quote
  // inside quotes, the next cluster decides whether it was an escape.
  bool pendingQuote = false;
  while (clusters.next(cluster)) {
    if (pendingQuote) {
      pendingQuote = false;
      if (cluster == "\"") {
        field += '"';
        continue;
      }
      insideQuotes = false;  // the lone quote closed the field's quotes
    }
    if (insideQuotes) {
      if (cluster == "\"") {
        pendingQuote = true;
      } else {
        field += cluster;
      }
      continue;
    }
    if (cluster == "\"") {
      if (field.empty()) {
        insideQuotes = true;
        quoted = true;
      } else {
        field += cluster;
      }
    } else if (cluster == delimiterText) {
      if (record.size() + 1 == kMaxFields) throw CSVError::tooManyFields();
      record.push_back(std::move(field));
      field.clear();
      quoted = false;
    } else if (isLineBreak(cluster)) {
      const bool blankLine = record.empty() && field.empty() && !quoted;
      record.push_back(std::move(field));
      field.clear();
      quoted = false;
      if (!blankLine) handler(record);
      record.clear();
    } else {
      field += cluster;
    }
  }
  if (pendingQuote) insideQuotes = false;
  if (insideQuotes) throw CSVError::unterminatedQuote();
  if (!(record.empty() && field.empty() && !quoted)) {
    record.push_back(std::move(field));
    handler(record);
  }
}

std::string encode(const Document& rows, char delimiter) {
  const char special[] = {delimiter, '"', '\n', '\r', '\0'};
  std::string out;
  for (const auto& row : rows) {
    bool first = true;
    for (const auto& field : row) {
      if (!first) out += delimiter;
      first = false;
      const bool needsQuotes =
          field.find_first_of(special) != std::string::npos || field.starts_with(' ') || field.ends_with(' ');
      if (!needsQuotes) {
        out += field;
        continue;
      }
      out += '"';
      if (field.find('"') == std::string::npos) {
        out += field;
      } else {
        // Only a quote that stands alone as a character is doubled: one that
        // carries a combining mark is read back as an ordinary character.
        std::string storage;
        Clusters clusters(wellFormed(field, storage));
        std::string_view cluster;
        while (clusters.next(cluster)) {
          out += cluster;
          if (cluster == "\"") out += '"';
        }
      }
      out += '"';
    }
    out += '\n';
  }
  return out;
}

}  // namespace CSV
}  // namespace orvane
