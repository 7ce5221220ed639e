#include "core/backup/Base64.h"

#include <array>
#include <cstdint>

namespace orvane::Backup::base64 {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> decodingTable() {
  std::array<std::int8_t, 256> table{};
  for (auto& entry : table) entry = -1;
  for (std::size_t i = 0; i < alphabet.size(); ++i)
    table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int8_t>(i);
  return table;
}

constexpr auto sextets = decodingTable();

}  // namespace

std::string encode(std::string_view bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= bytes.size(); i += 3) {
    const std::uint32_t v = std::uint32_t(static_cast<unsigned char>(bytes[i])) << 16 |
                            std::uint32_t(static_cast<unsigned char>(bytes[i + 1])) << 8 |
                            static_cast<unsigned char>(bytes[i + 2]);
    out += alphabet[v >> 18 & 63];
    out += alphabet[v >> 12 & 63];
    out += alphabet[v >> 6 & 63];
    out += alphabet[v & 63];
  }
  const std::size_t rest = bytes.size() - i;
  if (rest > 0) {
    std::uint32_t v = std::uint32_t(static_cast<unsigned char>(bytes[i])) << 16;
    if (rest == 2) v |= std::uint32_t(static_cast<unsigned char>(bytes[i + 1])) << 8;
    out += alphabet[v >> 18 & 63];
    out += alphabet[v >> 12 & 63];
    out += rest == 2 ? alphabet[v >> 6 & 63] : '=';
    out += '=';
  }
  return out;
}

std::optional<std::string> decode(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::string out;
  out.reserve(text.size() / 4 * 3);
  for (std::size_t i = 0; i < text.size(); i += 4) {
    const bool last = i + 4 == text.size();
    int padding = 0;
    std::uint32_t v = 0;
    for (std::size_t k = 0; k < 4; ++k) {
      const char c = text[i + k];
      if (c == '=' && last && k >= 2) {
        ++padding;
        v <<= 6;
        continue;
      }
      const std::int8_t sextet = sextets[static_cast<unsigned char>(c)];
      if (sextet < 0 || padding > 0) return std::nullopt;
      v = v << 6 | static_cast<std::uint32_t>(sextet);
    }
    out += static_cast<char>(v >> 16 & 0xFF);
    if (padding < 2) out += static_cast<char>(v >> 8 & 0xFF);
    if (padding < 1) out += static_cast<char>(v & 0xFF);
  }
  return out;
}

}  // namespace orvane::Backup::base64
