#include "core/exchange/ZipReader.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>

#include "core/exchange/XlsxReadError.h"

namespace orvane::ZipReader {

namespace {

constexpr std::size_t kEndRecordSize = 22;
constexpr std::size_t kLongestComment = 65535;
constexpr std::size_t kDirectoryHeaderSize = 46;
constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::uint32_t kEndSignature = 0x06054B50u;
constexpr std::uint32_t kDirectorySignature = 0x02014B50u;
constexpr std::uint32_t kLocalSignature = 0x04034B50u;
constexpr std::size_t kInflateChunk = 64 * 1024;

XLSXReadError unpackFailure() { return XLSXReadError::unsupported("a compressed part could not be unpacked"); }

// Little-endian reads; callers check the bounds first.
std::uint16_t read16(std::string_view d, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(d[at]) | static_cast<unsigned char>(d[at + 1]) << 8);
}

std::uint32_t read32(std::string_view d, std::size_t at) {
  return static_cast<std::uint32_t>(read16(d, at)) | static_cast<std::uint32_t>(read16(d, at + 2)) << 16;
}

// Whether [at, at + length) lies inside the buffer, without overflow.
bool fits(std::string_view d, std::uint64_t at, std::uint64_t length) {
  return at <= d.size() && length <= d.size() - at;
}

std::size_t findEndRecord(std::string_view d) {
  if (d.size() < kEndRecordSize) throw XLSXReadError::notAWorkbook();
  const std::size_t last = d.size() - kEndRecordSize;
  const std::size_t first = last > kLongestComment ? last - kLongestComment : 0;
  for (std::size_t at = last + 1; at-- > first;) {
    if (read32(d, at) == kEndSignature) return at;
  }
  throw XLSXReadError::notAWorkbook();
}

}  // namespace

namespace {

// Raw DEFLATE decoding of `data` into slices handed to `sink`; exactly
// `expectedSize` bytes must come out and the stream must end.
void inflateInto(std::string_view data, std::size_t expectedSize, const std::function<void(std::string_view)>& sink) {
  if (expectedSize > kMaxUnpackedBytes) throw unpackFailure();
  z_stream stream{};
  if (inflateInit2(&stream, -15) != Z_OK) throw unpackFailure();
  struct Guard {
    z_stream* s;
    ~Guard() { inflateEnd(s); }
  } guard{&stream};

  std::string buffer(kInflateChunk, '\0');
  std::size_t produced = 0;
  // Input is fed in slices that fit zlib's 32-bit counters.
  std::size_t consumed = 0;
  int status = Z_OK;
  while (status != Z_STREAM_END) {
    if (stream.avail_in == 0) {
      const std::size_t slice = std::min<std::size_t>(data.size() - consumed, 1u << 30);
      stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data() + consumed));
      stream.avail_in = static_cast<uInt>(slice);
      consumed += slice;
    }
    // Room for one byte more than expected, so an overlong stream is noticed
    // before a byte too many is handed on.
    const std::size_t chunk = std::min(kInflateChunk, expectedSize + 1 - produced);
    stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
    stream.avail_out = static_cast<uInt>(chunk);
    status = ::inflate(&stream, Z_NO_FLUSH);
    const std::size_t got = chunk - stream.avail_out;
    produced += got;
    if (produced > expectedSize) throw unpackFailure();
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) throw unpackFailure();
    if (got > 0) sink(std::string_view(buffer.data(), got));
    if (status == Z_STREAM_END) break;
    if (status == Z_BUF_ERROR) {
      // No progress possible: more input helps only if some is left.
      if (stream.avail_in == 0 && consumed < data.size()) continue;
      throw unpackFailure();
    }
    if (stream.avail_in == 0 && consumed == data.size() && stream.avail_out != 0) throw unpackFailure();
  }
  if (produced != expectedSize) throw unpackFailure();
}

}  // namespace

std::string inflate(std::string_view data, std::size_t expectedSize) {
  std::string out;
  inflateInto(data, expectedSize, [&](std::string_view slice) { out += slice; });
  return out;
}

std::map<std::string, Member> directory(std::string_view d) {
  const std::size_t end = findEndRecord(d);
  const std::uint16_t count = read16(d, end + 10);
  const std::uint32_t directoryOffset = read32(d, end + 16);
  // Each directory header takes at least 46 bytes, so a count that cannot fit
  // before the end record is refused before anything is walked.
  if (static_cast<std::uint64_t>(count) * kDirectoryHeaderSize > end) throw XLSXReadError::notAWorkbook();

  std::map<std::string, Member> result;
  std::uint64_t at = directoryOffset;
  for (std::uint16_t i = 0; i < count; ++i) {
    if (!fits(d, at, kDirectoryHeaderSize) || read32(d, at) != kDirectorySignature) {
      throw XLSXReadError::notAWorkbook();
    }
    const std::uint16_t flags = read16(d, at + 8);
    Member member;
    member.method = read16(d, at + 10);
    member.compressedSize = read32(d, at + 20);
    member.uncompressedSize = read32(d, at + 24);
    const std::uint16_t nameLength = read16(d, at + 28);
    const std::uint16_t extraLength = read16(d, at + 30);
    const std::uint16_t commentLength = read16(d, at + 32);
    const std::uint32_t localOffset = read32(d, at + 42);
    if (!fits(d, at + kDirectoryHeaderSize, nameLength)) throw XLSXReadError::notAWorkbook();
    std::string name(d.substr(at + kDirectoryHeaderSize, nameLength));
    at += kDirectoryHeaderSize + nameLength + extraLength + commentLength;

    if (!fits(d, localOffset, kLocalHeaderSize) || read32(d, localOffset) != kLocalSignature) {
      throw XLSXReadError::notAWorkbook();
    }
    member.dataStart =
        std::uint64_t{localOffset} + kLocalHeaderSize + read16(d, localOffset + 26) + read16(d, localOffset + 28);
    if (!fits(d, member.dataStart, member.compressedSize)) throw XLSXReadError::notAWorkbook();
    if (flags & 0x0001u) throw XLSXReadError::unsupported("a part is encrypted");
    result.emplace(std::move(name), member);
  }
  return result;
}

void unpack(std::string_view d, const Member& member, const std::function<void(std::string_view)>& sink) {
  const std::string_view packed = d.substr(member.dataStart, member.compressedSize);
  const std::uint64_t unpackedSize = member.method == 0 ? member.compressedSize : member.uncompressedSize;
  if (unpackedSize > kMaxUnpackedBytes) throw unpackFailure();
  if (member.method == 0) {
    for (std::size_t at = 0; at < packed.size(); at += kInflateChunk) sink(packed.substr(at, kInflateChunk));
  } else if (member.method == 8) {
    inflateInto(packed, member.uncompressedSize, sink);
  } else {
    throw XLSXReadError::unsupported("compression method " + std::to_string(member.method));
  }
}

std::map<std::string, std::string> entries(std::string_view d) {
  // Directory order decides which of two members with one name wins, and
  // the order of the checks: walk it as the directory lists it.
  const std::size_t end = findEndRecord(d);
  const std::uint16_t count = read16(d, end + 10);
  const std::uint32_t directoryOffset = read32(d, end + 16);
  if (static_cast<std::uint64_t>(count) * kDirectoryHeaderSize > end) throw XLSXReadError::notAWorkbook();
  const auto members = directory(d);

  std::map<std::string, std::string> result;
  std::uint64_t declaredTotal = 0;
  std::uint64_t at = directoryOffset;
  for (std::uint16_t i = 0; i < count; ++i) {
    const std::uint16_t nameLength = read16(d, at + 28);
    std::string name(d.substr(at + kDirectoryHeaderSize, nameLength));
    at += kDirectoryHeaderSize + nameLength + read16(d, at + 30) + read16(d, at + 32);
    if (result.contains(name)) continue;
    const Member& member = members.at(name);
    declaredTotal += member.method == 0 ? member.compressedSize : member.uncompressedSize;
    if (declaredTotal > kMaxUnpackedBytes) throw unpackFailure();
    std::string contents;
    unpack(d, member, [&](std::string_view slice) { contents += slice; });
    result.emplace(std::move(name), std::move(contents));
  }
  return result;
}

}  // namespace orvane::ZipReader
