#include "core/exchange/ZipArchive.h"

#include <array>
#include <limits>
#include <stdexcept>

namespace orvane::ZipArchive {

namespace {

constexpr std::uint16_t kVersion = 20;
constexpr std::uint16_t kUtf8NamesFlag = 0x0800;
constexpr std::uint16_t kMethodStored = 0;
constexpr std::uint16_t kTime = 0;       // 00:00:00
constexpr std::uint16_t kDate = 0x5C21;  // 2026-01-01 in DOS form

const std::array<std::uint32_t, 256>& crcTable() {
  static const std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> t{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1u) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  return table;
}

void put16(std::string& out, std::uint16_t v) {
  out.push_back(static_cast<char>(v & 0xFF));
  out.push_back(static_cast<char>(v >> 8));
}

void put32(std::string& out, std::uint32_t v) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>((v >> shift) & 0xFF));
}

std::uint32_t narrow32(std::size_t v) {
  if (v > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("ZIP archive larger than 4 GiB");
  return static_cast<std::uint32_t>(v);
}

std::uint16_t narrow16(std::size_t v) {
  if (v > std::numeric_limits<std::uint16_t>::max()) throw std::length_error("ZIP field larger than 65,535");
  return static_cast<std::uint16_t>(v);
}

}  // namespace

std::uint32_t crc32(std::string_view data) {
  const auto& table = crcTable();
  std::uint32_t c = 0xFFFFFFFFu;
  for (unsigned char byte : data) c = table[(c ^ byte) & 0xFFu] ^ (c >> 8);
  return c ^ 0xFFFFFFFFu;
}

std::string stored(std::span<const File> files) {
  const std::uint16_t count = narrow16(files.size());
  std::string out;
  std::string directory;
  for (const File& file : files) {
    const std::uint32_t offset = narrow32(out.size());
    const std::uint32_t crc = crc32(file.data);
    const std::uint32_t size = narrow32(file.data.size());
    const std::uint16_t nameLength = narrow16(file.name.size());

    put32(out, 0x04034B50u);
    put16(out, kVersion);
    put16(out, kUtf8NamesFlag);
    put16(out, kMethodStored);
    put16(out, kTime);
    put16(out, kDate);
    put32(out, crc);
    put32(out, size);
    put32(out, size);
    put16(out, nameLength);
    put16(out, 0);  // extra field length
    out += file.name;
    out += file.data;

    put32(directory, 0x02014B50u);
    put16(directory, kVersion);  // made by
    put16(directory, kVersion);  // needed
    put16(directory, kUtf8NamesFlag);
    put16(directory, kMethodStored);
    put16(directory, kTime);
    put16(directory, kDate);
    put32(directory, crc);
    put32(directory, size);
    put32(directory, size);
    put16(directory, nameLength);
    put16(directory, 0);  // extra length
    put16(directory, 0);  // comment length
    put16(directory, 0);  // disk number
    put16(directory, 0);  // internal attributes
    put32(directory, 0);  // external attributes
    put32(directory, offset);
    directory += file.name;
  }
  const std::uint32_t directoryOffset = narrow32(out.size());
  const std::uint32_t directorySize = narrow32(directory.size());
  out += directory;
  narrow32(out.size() + 22);

  put32(out, 0x06054B50u);
  put16(out, 0);  // this disk
  put16(out, 0);  // disk of the directory
  put16(out, count);
  put16(out, count);
  put32(out, directorySize);
  put32(out, directoryOffset);
  put16(out, 0);  // comment length
  return out;
}

}  // namespace orvane::ZipArchive
