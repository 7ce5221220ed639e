#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace orvane::ZipReader {

// Upper bound on one member's unpacked size and on the sum over an archive.
// Real workbooks are far below it; a larger declaration is refused before
// anything is allocated, so a hostile archive cannot claim gigabytes.
inline constexpr std::size_t kMaxUnpackedBytes = std::size_t{256} << 20;

// Every member of the archive in `data`, by name, unpacked. Stored and
// deflated members are read; sizes and offsets come from the central
// directory, so members written with data descriptors read as well. Where two
// members share a name the first one in the directory wins.
// Throws XLSXReadError:
//   notAWorkbook  no end record, a directory or local header that is missing,
//                 has a bad signature or runs past the buffer;
//   unsupported("a compressed part could not be unpacked")  a deflated member
//                 that does not inflate to exactly its declared size, or a
//                 member (or the archive) declaring more than kMaxUnpackedBytes;
//   unsupported("compression method N")  any method but 0 and 8;
//   unsupported("a part is encrypted")  a member with the encryption flag.
// ZIP64 archives are not read (their 0xFFFFFFFF sizes exceed the cap).
std::map<std::string, std::string> entries(std::string_view data);

// Where a member's data lies in the archive and how it is packed.
struct Member {
  std::uint16_t method = 0;
  std::uint64_t dataStart = 0;
  std::uint32_t compressedSize = 0;
  std::uint32_t uncompressedSize = 0;
};

// Every member of the archive in `data` by name, checked as entries() checks
// it (headers, bounds, encryption, declared sizes) but not unpacked.
std::map<std::string, Member> directory(std::string_view data);

// The unpacked bytes of one member of `data`, handed to `sink` in slices of
// at most 64 KiB as they are unpacked, so a large part never has to be held
// whole. Throws as entries() does for that member; an exception from `sink`
// passes through.
void unpack(std::string_view data, const Member& member, const std::function<void(std::string_view)>& sink);

// Raw DEFLATE (no zlib or gzip wrapper) decoding of `data`, which must give
// exactly `expectedSize` bytes and end its stream. The output grows as bytes
// really arrive, so a false `expectedSize` costs no memory.
// Throws XLSXReadError::unsupported("a compressed part could not be unpacked")
// on corrupt or short input, more or fewer bytes than expected, or an
// `expectedSize` above kMaxUnpackedBytes.
std::string inflate(std::string_view data, std::size_t expectedSize);

}  // namespace orvane::ZipReader
