#include <gtest/gtest.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "core/exchange/XlsxReadError.h"
#include "core/exchange/ZipArchive.h"
#include "core/exchange/ZipReader.h"

namespace orvane {
namespace {

std::uint32_t read32(const std::string& s, std::size_t at) {
  std::uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = v << 8 | static_cast<unsigned char>(s[at + i]);
  return v;
}

void patch16(std::string& s, std::size_t at, std::uint16_t v) {
  s[at] = static_cast<char>(v & 0xFF);
  s[at + 1] = static_cast<char>(v >> 8);
}

void patch32(std::string& s, std::size_t at, std::uint32_t v) {
  patch16(s, at, static_cast<std::uint16_t>(v & 0xFFFF));
  patch16(s, at + 2, static_cast<std::uint16_t>(v >> 16));
}

std::string rawDeflate(const std::string& data) {
  z_stream z{};
  deflateInit2(&z, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, data.size()), '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
  z.avail_in = static_cast<uInt>(data.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = static_cast<uInt>(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}

// A one-member archive whose member is `data` deflated, with its true sizes.
// Local header at 0; the directory header follows the data.
struct Deflated {
  std::string zip;
  std::size_t directory;
};

Deflated deflatedArchive(const std::string& name, const std::string& data) {
  const std::string packed = rawDeflate(data);
  std::vector<ZipArchive::File> files{{name, packed}};
  Deflated d{ZipArchive::stored(files), 30 + name.size() + packed.size()};
  patch16(d.zip, 8, 8);
  patch16(d.zip, d.directory + 10, 8);
  patch32(d.zip, 22, static_cast<std::uint32_t>(data.size()));
  patch32(d.zip, d.directory + 24, static_cast<std::uint32_t>(data.size()));
  return d;
}

std::string refusal(const std::string& zip) {
  try {
    ZipReader::entries(zip);
  } catch (const XLSXReadError& e) {
    return e.what();
  }
  return "read";
}

TEST(ZipArchive, Crc32OfTheStandardCheckString) {
  EXPECT_EQ(ZipArchive::crc32("123456789"), 0xCBF43926u);
  EXPECT_EQ(ZipArchive::crc32(""), 0u);
}

TEST(ZipArchive, NoFilesGiveTheEndRecordAlone) {
  const std::string zip = ZipArchive::stored({});
  EXPECT_EQ(zip, std::string("PK\x05\x06", 4) + std::string(18, '\0'));
  EXPECT_TRUE(ZipReader::entries(zip).empty());
}

TEST(ZipArchive, WritesUtf8NamesAndFixedDatesDeterministically) {
  const std::vector<ZipArchive::File> files{{"Ünïcode/ü.txt", "grüß"}, {"b", ""}};
  const std::string zip = ZipArchive::stored(files);
  EXPECT_EQ(zip, ZipArchive::stored(files));
  EXPECT_EQ(read32(zip, 6) & 0xFFFF, 0x0800u);  // flags
  EXPECT_EQ(read32(zip, 10), 0x5C210000u);      // time 0, date 2026-01-01
  EXPECT_EQ(read32(zip, 14), ZipArchive::crc32("grüß"));
  EXPECT_EQ(zip.substr(30, files[0].name.size()), files[0].name);
  const std::size_t end = zip.size() - 22;
  EXPECT_EQ(read32(zip, end + 8), 0x00020002u);  // two entries, twice
  const std::size_t directory = read32(zip, end + 16);
  EXPECT_EQ(read32(zip, directory + 8) & 0xFFFF, 0x0800u);

  const auto entries = ZipReader::entries(zip);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries.at("Ünïcode/ü.txt"), "grüß");
  EXPECT_EQ(entries.at("b"), "");
}

TEST(ZipReader, FindsTheEndRecordBehindATrailingComment) {
  std::vector<ZipArchive::File> files{{"a.xml", "<a/>"}};
  std::string zip = ZipArchive::stored(files);
  const std::string comment(65535, 'c');
  patch16(zip, zip.size() - 2, static_cast<std::uint16_t>(comment.size()));
  zip += comment;
  EXPECT_EQ(ZipReader::entries(zip).at("a.xml"), "<a/>");
}

TEST(ZipReader, InflatesDeflatedMembers) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "<row r=\"" + std::to_string(i) + "\"/>";
  EXPECT_EQ(ZipReader::entries(deflatedArchive("s.xml", text).zip).at("s.xml"), text);
  EXPECT_EQ(ZipReader::inflate(rawDeflate(""), 0), "");
}

TEST(ZipReader, RefusesDamagedAndHostileArchives) {
  const std::string notAWorkbook = "The file is not an Excel workbook (.xlsx).";
  const std::string unpack = "This workbook cannot be read: a compressed part could not be unpacked";
  const std::string text(100000, 'x');
  const Deflated good = deflatedArchive("a.xml", text);
  const std::size_t end = good.zip.size() - 22;

  struct Case {
    const char* what;
    std::string zip;
    std::string sentence;
  };
  std::vector<Case> cases;
  cases.push_back({"shorter than an end record", "PK\x05\x06", notAWorkbook});
  cases.push_back({"no end record", std::string(5000, 'P'), notAWorkbook});
  cases.push_back({"truncated", good.zip.substr(0, good.zip.size() - 30), notAWorkbook});
  std::string z = good.zip;
  patch32(z, end + 16, 0x7FFFFFF0u);
  cases.push_back({"directory offset past the end", z, notAWorkbook});
  z = good.zip;
  patch16(z, end + 10, 0xFFFF);
  cases.push_back({"entry count that cannot fit", z, notAWorkbook});
  z = good.zip;
  patch32(z, good.directory + 42, 0xFFFFFFF0u);
  cases.push_back({"local header offset past the end", z, notAWorkbook});
  z = good.zip;
  patch32(z, good.directory, 0x12345678u);
  cases.push_back({"bad directory signature", z, notAWorkbook});
  z = good.zip;
  patch32(z, good.directory + 20, 0x00FFFFFFu);
  cases.push_back({"compressed size past the end", z, notAWorkbook});
  z = good.zip;
  patch16(z, good.directory + 10, 12);
  cases.push_back({"unknown method", z, "This workbook cannot be read: compression method 12"});
  z = good.zip;
  patch16(z, good.directory + 8, 0x0801);
  cases.push_back({"encrypted", z, "This workbook cannot be read: a part is encrypted"});
  z = good.zip;
  patch32(z, good.directory + 24, 0xFFFFFFFFu);
  cases.push_back({"declared size above the cap", z, unpack});
  z = good.zip;
  patch32(z, good.directory + 24, static_cast<std::uint32_t>(text.size() - 1));
  cases.push_back({"inflates to more than declared (bomb)", z, unpack});
  z = good.zip;
  patch32(z, good.directory + 24, static_cast<std::uint32_t>(text.size() + 1));
  cases.push_back({"inflates to less than declared", z, unpack});
  z = good.zip;
  z[30 + 5 + 10] ^= 0x5A;
  cases.push_back({"corrupt deflate data", z, unpack});

  for (const Case& c : cases) EXPECT_EQ(refusal(c.zip), c.sentence) << c.what;
}

TEST(ZipReader, InflateStopsAtTheExpectedSize) {
  // 16 MiB of zeros deflate to ~16 KiB; declaring 10 bytes must fail fast
  // without unpacking the rest.
  const std::string bomb = rawDeflate(std::string(16 << 20, '\0'));
  EXPECT_THROW(ZipReader::inflate(bomb, 10), XLSXReadError);
  EXPECT_THROW(ZipReader::inflate(bomb.substr(0, bomb.size() / 2), 16 << 20), XLSXReadError);
}

}  // namespace
}  // namespace orvane
