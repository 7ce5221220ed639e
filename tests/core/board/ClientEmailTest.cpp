#include "core/board/ClientEmail.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(ClientEmail, acceptsOnlyAnAtWithALocalPartAndADottedDomain) {
  for (const char* text : {"a@b.c", " \tann.lee@mail.example.com\n", "a+tag@b.c.d"}) {
    EXPECT_TRUE(ClientEmail::isValid(text)) << text;
  }
  for (const char* text : {"", "ann lee@example.com", "ann@exa\u00A0mple.com", "ann.example.com", "@example.com",
                           "ann@example@com.org", "a@bc", "a@.bc", "a@bc."}) {
    EXPECT_FALSE(ClientEmail::isValid(text)) << text;
  }
}

TEST(ClientEmail, sameIgnoresSurroundingSpaceAndCase) {
  EXPECT_TRUE(ClientEmail::same(" Ann@Example.COM\n", "ann@example.com"));
  EXPECT_TRUE(ClientEmail::same("\u00C9LISE@example.fr", "\u00E9lise@example.fr"));
  EXPECT_FALSE(ClientEmail::same("ann@example.com", "anne@example.com"));
}

}  // namespace
}  // namespace orvane
