#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace orvane::ZipArchive {

// One member of an archive: its path inside the archive (UTF-8, "/" between
// folders) and its bytes.
struct File {
  std::string name;
  std::string data;
};

// A ZIP archive of `files`, in the given order, every member stored without
// compression. Every member carries the same fixed date (2026-01-01 00:00) and
// the UTF-8 name flag, so the same files always give byte-identical archives.
// No files give the 22-byte end record alone.
// REQUIRES: fewer than 65,536 files, names shorter than 65,536 bytes and an
// archive below 4 GiB (nothing here writes ZIP64); std::length_error otherwise.
std::string stored(std::span<const File> files);

// The standard CRC-32 (reflected polynomial 0xEDB88320, initial value and
// final XOR 0xFFFFFFFF).
std::uint32_t crc32(std::string_view data);

}  // namespace orvane::ZipArchive
