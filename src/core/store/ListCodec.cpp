#include "core/store/ListCodec.h"

#include <charconv>

namespace orvane::ListCodec {
namespace {

void appendEscaped(std::string& out, std::string_view text) {
  static constexpr char hex[] = "0123456789abcdef";
  out += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20) {
      out += "\\u00";
      out += hex[byte >> 4];
      out += hex[byte & 0xF];
    } else {
      out += c;
    }
  }
  out += '"';
}

void appendUtf8(std::string& out, std::uint32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  void skipSpace() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\n' || text_[pos_] == '\t' || text_[pos_] == '\r')) ++pos_;
  }
  bool take(char c) {
    skipSpace();
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }
  bool atEnd() {
    skipSpace();
    return pos_ == text_.size();
  }
  bool integer(std::int64_t& value) {
    skipSpace();
    const auto [end, ec] = std::from_chars(text_.data() + pos_, text_.data() + text_.size(), value);
    if (ec != std::errc{}) return false;
    pos_ = static_cast<std::size_t>(end - text_.data());
    return true;
  }
  bool string(std::string& value) {
    if (!take('"')) return false;
    value.clear();
    while (pos_ < text_.size()) {
      const char c = text_[pos_++];
      if (c == '"') return true;
      if (c != '\\') {
        value += c;
        continue;
      }
      if (pos_ >= text_.size()) return false;
      const char escaped = text_[pos_++];
      switch (escaped) {
        case '"': case '\\': case '/': value += escaped; break;
        case 'b': value += '\b'; break;
        case 'f': value += '\f'; break;
        case 'n': value += '\n'; break;
        case 'r': value += '\r'; break;
        case 't': value += '\t'; break;
        case 'u': {
          std::uint32_t code = 0;
          if (!hex4(code)) return false;
          if (code >= 0xD800 && code < 0xDC00 && pos_ + 1 < text_.size() && text_[pos_] == '\\' && text_[pos_ + 1] == 'u') {
            pos_ += 2;
            std::uint32_t low = 0;
            if (!hex4(low)) return false;
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
          }
          appendUtf8(value, code);
          break;
        }
        default: return false;
      }
    }
    return false;
  }

 private:
  bool hex4(std::uint32_t& code) {
    if (pos_ + 4 > text_.size()) return false;
    for (int i = 0; i < 4; ++i) {
      const char c = text_[pos_++];
      code <<= 4;
      if (c >= '0' && c <= '9') code |= static_cast<std::uint32_t>(c - '0');
      else if (c >= 'a' && c <= 'f') code |= static_cast<std::uint32_t>(c - 'a' + 10);
      else if (c >= 'A' && c <= 'F') code |= static_cast<std::uint32_t>(c - 'A' + 10);
      else return false;
    }
    return true;
  }

  std::string_view text_;
  std::size_t pos_ = 0;
};

template <typename T, typename ReadItem>
std::vector<T> decode(std::string_view json, ReadItem readItem) {
  Reader reader(json);
  std::vector<T> values;
  if (!reader.take('[')) return {};
  if (reader.take(']')) return reader.atEnd() ? values : std::vector<T>{};
  do {
    T item{};
    if (!readItem(reader, item)) return {};
    values.push_back(std::move(item));
  } while (reader.take(','));
  if (!reader.take(']') || !reader.atEnd()) return {};
  return values;
}

}  // namespace

std::string encode(const std::vector<std::int64_t>& values) {
  std::string out = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) out += ',';
    out += std::to_string(values[i]);
  }
  return out + "]";
}

std::string encode(const std::vector<std::string>& values) {
  std::string out = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) out += ',';
    appendEscaped(out, values[i]);
  }
  return out + "]";
}

std::vector<std::int64_t> decodeIntegers(std::string_view json) {
  return decode<std::int64_t>(json, [](Reader& r, std::int64_t& v) { return r.integer(v); });
}

std::vector<std::string> decodeStrings(std::string_view json) {
  return decode<std::string>(json, [](Reader& r, std::string& v) { return r.string(v); });
}

}  // namespace orvane::ListCodec
