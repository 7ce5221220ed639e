#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <memory>

#include "core/reports/DevelopmentPack.h"
#include "core/support/PackProject.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

std::unique_ptr<icu::Calendar> calendar(const char* zone, const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  auto made = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(zone), locale, status);
  EXPECT_TRUE(U_SUCCESS(status));
  return made;
}

// Wednesday 4 March 2026, late evening UTC: already the 5th in Tokyo.
const Timestamp now = at(2026, 3, 4, 22);

struct PackSet : ::testing::Test {
  testing::TempStore t;
  testing::TempDir files;
  testing::PackProject p{t.service, files.path(), now};
  std::unique_ptr<icu::Calendar> utc = calendar("UTC", icu::Locale::getUK());
  DevelopmentPacks packs = developmentPacks(*t.service.snapshot(p.project), now, *utc);
};

TEST_F(PackSet, OnePackPerPersonWithOpenFlaggedTickets) {
  ASSERT_EQ(packs.packs.size(), 2u);  // Cy has nothing flagged
  EXPECT_EQ(packs.packs[0].personName, "Ada Lovelace");
  EXPECT_EQ(packs.packs[0].email, "ada@example.com");
  EXPECT_EQ(packs.packs[1].personName, "Bob: the builder");
  EXPECT_EQ(packs.packs[1].email, "");
  // Done (SHOP-5) and archived (SHOP-6) tickets stay out even when flagged.
  std::vector<std::string> ada, bob;
  for (const PackTicket& ticket : packs.packs[0].tickets) ada.push_back(ticket.reference);
  for (const PackTicket& ticket : packs.packs[1].tickets) bob.push_back(ticket.reference);
  EXPECT_EQ(ada, (std::vector<std::string>{"SHOP-2", "SHOP-3"}));
  EXPECT_EQ(bob, (std::vector<std::string>{"SHOP-4"}));
  EXPECT_EQ(packs.unassignedTickets, 1);
  EXPECT_EQ(packs.weekStart, CivilDate(2026, 3, 2));
}

TEST_F(PackSet, TicketCarriesEveryFieldInItsOrder) {
  const PackTicket& ticket = packs.packs[0].tickets[0];
  EXPECT_EQ(ticket.title, "Checkout page");
  EXPECT_EQ(ticket.details, "Checkout page in detail.\nSecond line of the details.");
  EXPECT_EQ(ticket.due, CivilDate(2026, 3, 7));
  EXPECT_EQ(ticket.checklist, (std::vector<PackChecklistItem>{{"Card form", false}, {"Address form", true}}));
  EXPECT_EQ(ticket.comments, (std::vector<PackComment>{{CivilDate(2026, 3, 3), "Use the new button style."},
                                                       {CivilDate(2026, 3, 4), "Ask about VAT numbers."}}));
  // Links from both ends, each read from this ticket's side.
  EXPECT_EQ(ticket.links, (std::vector<PackLink>{{"Blocked by", "SHOP-1", "Agree the payment provider"},
                                                 {"Blocks", "SHOP-3", "Receipt e-mail"},
                                                 {"Related to", "SHOP-4", "Table widths"}}));
  ASSERT_EQ(ticket.files.size(), 3u);
  EXPECT_EQ(ticket.files[0], (PackFile{"gone.png", p.missingFile.string(), false}));
  EXPECT_TRUE(ticket.files[1].present);
  EXPECT_TRUE(ticket.files[2].present);
  EXPECT_EQ(packs.packs[0].fileCount(), 3);
  EXPECT_EQ(packs.packs[0].missingCount(), 1);
  EXPECT_EQ(packs.packs[1].missingCount(), 0);
}

TEST_F(PackSet, DaysAndWeekFollowTheUsersCalendar) {
  // In Tokyo it is Thursday the 5th; with Sunday as the first weekday the
  // week began on the 1st.
  const auto tokyo = calendar("Asia/Tokyo", icu::Locale::getUS());
  const DevelopmentPacks there = developmentPacks(*t.service.snapshot(p.project), now, *tokyo);
  EXPECT_EQ(there.weekStart, CivilDate(2026, 3, 1));
  EXPECT_EQ(there.packs[0].tickets[0].comments[1].day, CivilDate(2026, 3, 5));
  EXPECT_EQ(there.packs[0].fileStem, "Web - Shop - Ada Lovelace - week of 2026-03-01");
}

TEST_F(PackSet, FileNamesAreSafeAndDistinct) {
  EXPECT_EQ(packs.packs[0].pdfName(), "Web - Shop - Ada Lovelace - week of 2026-03-02.pdf");
  EXPECT_EQ(packs.packs[1].zipName(), "Web - Shop - Bob- the builder - week of 2026-03-02.zip");
  // Two people whose names differ only in what is made safe share no files.
  const Uuid other = t.service.createPerson("Bob/ the builder", std::nullopt).id;
  t.service.setAssignee(p.adaSecond, other);
  const DevelopmentPacks again = developmentPacks(*t.service.snapshot(p.project), now, *utc);
  ASSERT_EQ(again.packs.size(), 3u);
  EXPECT_EQ(again.packs[1].personName, "Bob/ the builder");
  EXPECT_EQ(again.packs[1].fileStem, "Web - Shop - Bob- the builder - week of 2026-03-02");
  EXPECT_EQ(again.packs[2].fileStem, "Web - Shop - Bob- the builder - week of 2026-03-02 (2)");
}

TEST(SafeFileNamePart, ReplacesSeparatorsAndControlsAndFallsBack) {
  const struct {
    std::string_view text;
    std::string expected;
  } cases[] = {
      {"a/b:c\\d", "a-b-c-d"},
      {"  padded\t", "padded"},
      {"line\nbreak", "line-break"},
      {std::string_view("nul\0byte", 8), "nul-byte"},
      {"   ", "fallback"},
      {".", "fallback"},
      {"..", "fallback"},
      {"...", "..."},
      {"Zoë", "Zoë"},
  };
  for (const auto& c : cases) EXPECT_EQ(safeFileNamePart(c.text, "fallback"), c.expected) << c.text;
}

TEST(PackMemberNames, FolderPerTicketAndRepeatedNamesNumbered) {
  PackTicket ticket;
  ticket.reference = "SHOP-2";
  ticket.files.push_back({"label", "/gone/plan.pdf", false});  // takes no name
  for (const char* path : {"/a/plan.pdf", "/b/plan.pdf", "/c/PLAN.pdf", "/d/notes", "/e/notes", "/f/.hidden"})
    ticket.files.push_back({"label", path, true});
  EXPECT_EQ(packMemberNames(ticket),
            (std::vector<std::string>{"", "SHOP-2/plan.pdf", "SHOP-2/plan (2).pdf", "SHOP-2/PLAN (3).pdf",
                                      "SHOP-2/notes", "SHOP-2/notes (2)", "SHOP-2/.hidden"}));
}

}  // namespace
}  // namespace orvane
