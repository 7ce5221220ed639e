#include "core/model/Uuid.h"

#include <sys/random.h>

#include <cstring>
#include <stdexcept>

namespace orvane {
namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool isDashPosition(std::size_t i) { return i == 8 || i == 13 || i == 18 || i == 23; }

}  // namespace

Uuid Uuid::random() {
  Uuid id;
  std::size_t filled = 0;
  while (filled < id.bytes.size()) {
    const ssize_t got = getrandom(id.bytes.data() + filled, id.bytes.size() - filled, 0);
    if (got < 0) throw std::runtime_error("The system could not provide random numbers for a new identifier.");
    filled += static_cast<std::size_t>(got);
  }
  id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);  // version 4
  id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  Uuid id;
  std::size_t byte = 0;
  for (std::size_t i = 0; i < text.size();) {
    if (isDashPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      ++i;
      continue;
    }
    const int high = hexValue(text[i]);
    const int low = hexValue(text[i + 1]);
    if (high < 0 || low < 0 || isDashPosition(i + 1)) return std::nullopt;
    id.bytes[byte++] = static_cast<std::uint8_t>(high * 16 + low);
    i += 2;
  }
  return id;
}

std::string Uuid::text() const {
  std::string out;
  out.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) out += '-';
    out += hexDigits[bytes[i] >> 4];
    out += hexDigits[bytes[i] & 0x0F];
  }
  return out;
}

std::uint64_t Uuid::leadingWord() const {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < 8; ++i) word = (word << 8) | bytes[i];
  return word;
}

}  // namespace orvane

std::size_t std::hash<orvane::Uuid>::operator()(const orvane::Uuid& id) const noexcept {
  std::uint64_t a;
  std::uint64_t b;
  std::memcpy(&a, id.bytes.data(), 8);
  std::memcpy(&b, id.bytes.data() + 8, 8);
  return static_cast<std::size_t>(a ^ (b * 0x9E3779B97F4A7C15ULL));
}
