#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// A random (version 4) UUID; its text is the canonical upper-case
// 8-4-4-4-12 form, which is also how the store keeps it.
struct Uuid {
  std::array<std::uint8_t, 16> bytes{};

  static Uuid random();
  // Accepts the canonical form in either case; nothing else.
  static std::optional<Uuid> parse(std::string_view text);

  std::string text() const;
  // The first eight bytes read as a big-endian number.
  std::uint64_t leadingWord() const;

  friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

}  // namespace orvane

template <>
struct std::hash<orvane::Uuid> {
  std::size_t operator()(const orvane::Uuid& id) const noexcept;
};
