// Hostile bytes given to the ZIP reader must be read or refused with
// XLSXReadError: no crash, hang or runaway allocation. Every input is also
// cut into members and written with ZipArchive::stored, and the reader must
// give those members back unchanged.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/XlsxReadError.h"
#include "core/exchange/ZipArchive.h"
#include "core/exchange/ZipReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace orvane;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    ZipReader::entries(bytes);
  } catch (const XLSXReadError&) {
  }
  // The input as a raw DEFLATE stream, expected size taken from its length.
  try {
    ZipReader::inflate(bytes, size * 4);
  } catch (const XLSXReadError&) {
  }

  // Round trip: members split at each "//", named by index and first bytes.
  std::vector<ZipArchive::File> files;
  std::size_t start = 0;
  while (start <= bytes.size() && files.size() < 64) {
    const std::size_t cut = bytes.find("//", start);
    const std::string_view piece = bytes.substr(start, cut == std::string_view::npos ? bytes.npos : cut - start);
    files.push_back({std::to_string(files.size()) + "/" + std::string(piece.substr(0, 3)), std::string(piece)});
    if (cut == std::string_view::npos) break;
    start = cut + 2;
  }
  const auto read = ZipReader::entries(ZipArchive::stored(files));
  if (read.size() != files.size()) std::abort();
  for (const auto& file : files) {
    const auto it = read.find(file.name);
    if (it == read.end() || it->second != file.data) std::abort();
  }
  return 0;
}
