#include <gtest/gtest.h>

#include "core/exchange/CsvCodec.h"

namespace orvane {
namespace {

using Document = CSV::Document;

TEST(CsvCodecTest, DetectsTheDelimiterOfTheHeaderOnly) {
  const struct {
    const char* text;
    char expected;
  } cases[] = {
      {"a;b;c,d", ';'},
      {"a;b,c", ','},  // a tie goes to comma
      {"a\tb;c", ';'},
      {"a\tb\tc;d,e", '\t'},
      {"a\tb,c", ','},
      {"title", ','},
      {"", ','},
      {"\"x;y;z\",a", ','},   // delimiters inside quotes are not counted
      {"a,b\nc;d;e;f", ','},  // only the first record is looked at
      {"a,b\r\nc;d;e;f", ','},
      {"\xEF\xBB\xBF"
       "a;b",
       ';'},
  };
  for (const auto& c : cases) EXPECT_EQ(CSV::detectDelimiter(c.text), c.expected) << c.text;
}

TEST(CsvCodecTest, ParsesRecordsAndFields) {
  const struct {
    const char* text;
    Document expected;
  } cases[] = {
      {"a,\"b,c\"\r\nd", {{"a", "b,c"}, {"d"}}},
      {"a,b\n", {{"a", "b"}}},
      {"a\n\n\r\nb", {{"a"}, {"b"}}},  // blank lines skipped
      {"\"\"", {{""}}},                // a quoted empty field is a record
      {"\"\"\nx", {{""}, {"x"}}},
      {"a,,\n", {{"a", "", ""}}},
      {",", {{"", ""}}},
      {"\"say \"\"hi\"\"\",x", {{"say \"hi\"", "x"}}},
      {"ab\"c\",d", {{"ab\"c\"", "d"}}},  // a quote inside a field is literal
      {"\"multi\r\nline\"\r\n\"lf\nonly\"", {{"multi\r\nline"}, {"lf\nonly"}}},
      {"a\rb", {{"a"}, {"b"}}},
      {" a , b ", {{" a ", " b "}}},  // not trimmed
      {"\xEF\xBB\xBF"
       "a,b",
       {{"a", "b"}}},
      {"a,b\nc", {{"a", "b"}, {"c"}}},  // records differ in length
      {"\"q\"x,y", {{"qx", "y"}}},
      {"", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(CSV::parse(c.text, ','), c.expected) << c.text;
}

TEST(CsvCodecTest, WalksGraphemeClusters) {
  // A quote carrying a combining acute accent is an ordinary character.
  EXPECT_EQ(CSV::parse("\"\xCC\x81,b", ','), (Document{{"\"\xCC\x81", "b"}}));
  EXPECT_EQ(CSV::parse("caf\xC3\xA9;\xE2\x98\x95\n", ';'), (Document{{"caf\xC3\xA9", "\xE2\x98\x95"}}));
  // Bytes that are not UTF-8 read as U+FFFD.
  EXPECT_EQ(CSV::parse("a\xFF,b", ','), (Document{{"a\xEF\xBF\xBD", "b"}}));
}

TEST(CsvCodecTest, RefusesAnOpenQuoteAtTheEnd) {
  for (const char* text : {"\"abc", "a,\"b\nc", "\"a\"\"", "x\n\""}) {
    try {
      CSV::parse(text, ',');
      ADD_FAILURE() << text;
    } catch (const CSVError& error) {
      EXPECT_EQ(error, CSVError::unterminatedQuote());
      EXPECT_STREQ(error.what(), "The file ends inside a quoted field. A closing quote is missing.");
    }
  }
}

TEST(CsvCodecTest, RefusesARecordOfMoreFieldsThanASpreadsheetHasColumns) {
  const std::string widest(CSV::kMaxFields - 1, ',');
  EXPECT_EQ(CSV::parse(widest + "\nx", ',').front().size(), CSV::kMaxFields);
  try {
    CSV::parse("a\n" + widest + ",", ',');
    ADD_FAILURE();
  } catch (const CSVError& error) {
    EXPECT_EQ(error, CSVError::tooManyFields());
    EXPECT_STREQ(error.what(),
                 "A record has more than 16,384 fields. Check that the file is a table with one ticket per line.");
  }
}

TEST(CsvCodecTest, EncodesWithQuotingOnlyWhereNeeded) {
  EXPECT_EQ(CSV::encode({{" x", "x ", "say \"hi\"", "plain"}}), "\" x\",\"x \",\"say \"\"hi\"\"\",plain\n");
  EXPECT_EQ(CSV::encode({{"a,b", "c\nd", "e\rf"}, {"g"}}), "\"a,b\",\"c\nd\",\"e\rf\"\ng\n");
  EXPECT_EQ(CSV::encode({{"a;b", "c,d"}}, ';'), "\"a;b\";c,d\n");
  EXPECT_EQ(CSV::encode({{"a\tb"}}, '\t'), "\"a\tb\"\n");
  EXPECT_EQ(CSV::encode({}), "");
  EXPECT_EQ(CSV::encode({{""}}), "\n");
}

TEST(CsvCodecTest, EncodedTextParsesBackToTheSameRecords) {
  const Document rows = {
      {"title", "description"},
      {" lead", "two\r\nlines, \"quoted\""},
      {"\"\xCC\x81 mark", "tab\there"},
      {"", "x"},
  };
  for (char delimiter : {',', ';', '\t'}) {
    const std::string text = CSV::encode(rows, delimiter);
    EXPECT_EQ(CSV::detectDelimiter(text), delimiter);
    EXPECT_EQ(CSV::parse(text, delimiter), rows);
  }
}

}  // namespace
}  // namespace orvane
