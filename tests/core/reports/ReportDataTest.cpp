#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <memory>

#include "core/reports/ReportData.h"
#include "core/support/TempStore.h"

namespace orvane {
namespace {

using testing::at;

// New York is five hours behind UTC in early March: at 03:00 UTC on the 5th
// it is still the 4th there.
const Timestamp now = at(2026, 3, 5, 3);
const CivilDate localToday{2026, 3, 4};

std::unique_ptr<icu::Calendar> calendarIn(const char* zone) {
  UErrorCode status = U_ZERO_ERROR;
  auto calendar = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(zone), status);
  EXPECT_TRUE(U_SUCCESS(status));
  return calendar;
}

TEST(EpicStatusRule, FirstRuleThatHoldsDecides) {
  const CivilDate today{2026, 3, 10};
  const auto row = [](std::int64_t total, std::int64_t done, std::int64_t blocked, std::optional<CivilDate> start,
                      std::optional<CivilDate> due) {
    EpicStatusRow r;
    r.total = total;
    r.done = done;
    r.blocked = blocked;
    r.start = start;
    r.due = due;
    return r;
  };
  const CivilDate start{2026, 3, 5};
  const CivilDate due{2026, 3, 15};  // today is half way: the line expects 50%
  const struct {
    const char* label;
    EpicStatusRow row;
    EpicStatus status;
  } cases[] = {
      {"all done, even when late", row(2, 2, 0, {}, CivilDate{2026, 3, 1}), EpicStatus::complete},
      {"no tickets is never complete", row(0, 0, 0, {}, {}), EpicStatus::noDate},
      {"no tickets, future due", row(0, 0, 0, {}, due), EpicStatus::onTrack},
      {"due yesterday beats blocked", row(2, 1, 1, {}, today.addingDays(-1)), EpicStatus::late},
      {"due today is not late", row(2, 1, 0, {}, today), EpicStatus::onTrack},
      {"blocked without dates", row(2, 0, 1, {}, {}), EpicStatus::atRisk},
      {"40% against 50% is within the allowance", row(10, 4, 0, start, due), EpicStatus::onTrack},
      {"30% against 50% is at risk", row(10, 3, 0, start, due), EpicStatus::atRisk},
      {"before the start nothing is expected", row(10, 0, 0, CivilDate{2026, 3, 11}, due), EpicStatus::onTrack},
      {"start = due = today", row(3, 0, 0, today, today), EpicStatus::onTrack},
      {"due today, 86% done", row(100, 86, 0, CivilDate{2026, 1, 1}, today), EpicStatus::onTrack},
      {"due today, 84% done", row(100, 84, 0, CivilDate{2026, 1, 1}, today), EpicStatus::atRisk},
  };
  for (const auto& c : cases) EXPECT_EQ(epicStatus(c.row, today), c.status) << c.label;
  EXPECT_EQ(label(EpicStatus::atRisk), "At risk");
  EXPECT_EQ(rawValue(EpicStatus::noDate), "noDate");
}

class ReportDataTest : public ::testing::Test {
 protected:
  testing::TempStore t;
  BoardService& s = t.service;
  Project project = s.createProject("Shop", std::nullopt, at(2026, 1, 5));
  std::unique_ptr<icu::Calendar> newYork = calendarIn("America/New_York");

  Uuid column(std::string_view name) {
    const ProjectSnapshot current = snap();
    for (const BoardColumn& c : current.columns) {
      if (c.name == name) return c.id;
    }
    throw std::logic_error("no column");
  }
  Uuid ticket(std::string title, std::optional<Uuid> epic = {}, std::optional<Timestamp> due = {}) {
    return s
        .createTicket(project.id, NewTicket{.title = std::move(title), .epic = epic, .dueDate = due}, at(2026, 1, 6))
        .id;
  }
  ProjectSnapshot snap() { return *s.snapshot(project.id); }
};

TEST_F(ReportDataTest, EpicDaysAndTodayAreInTheUserCalendar) {
  // Due at noon UTC on the 4th: the 4th in New York, today there, so not
  // late; a UTC reading would call it late.
  const Epic due = s.createEpic(project.id, "beta", std::nullopt, at(2026, 3, 4));
  const Epic later = s.createEpic(project.id, "Alpha", std::nullopt, at(2026, 4, 1));
  s.createEpic(project.id, "zeta", std::nullopt, std::nullopt);
  s.createEpic(project.id, "Gamma", std::nullopt, std::nullopt);
  ticket("open", due.id);
  ticket("open too", later.id);

  const std::vector<EpicStatusRow> rows = epicStatuses(snap(), now, *newYork);
  std::vector<std::string> names;
  for (const EpicStatusRow& r : rows) names.push_back(r.name);
  EXPECT_EQ(names, (std::vector<std::string>{"beta", "Alpha", "Gamma", "zeta"}));
  EXPECT_EQ(rows[0].due, localToday);
  EXPECT_EQ(rows[0].status, EpicStatus::onTrack);
  EXPECT_EQ(epicStatuses(snap(), now, *calendarIn("UTC"))[0].status, EpicStatus::late);
  EXPECT_EQ(rows[2].status, EpicStatus::noDate);
}

TEST_F(ReportDataTest, CompletedReportGroupsByEpicWithNoEpicLast) {
  const Epic web = s.createEpic(project.id, "web", "#ff0000", std::nullopt);
  const Epic api = s.createEpic(project.id, "API", std::nullopt, std::nullopt);
  const Uuid first = ticket("web one", web.id);
  const Uuid second = ticket("api one", api.id);
  const Uuid loose = ticket("loose");
  const Uuid early = ticket("too early", web.id);
  const Uuid archived = ticket("archived", web.id);
  const Person ann = s.createPerson("Ann", std::nullopt);
  s.setAssignee(first, ann.id);
  // 03:00 UTC on the 5th is the 4th in New York: inside a period ending on the 4th.
  s.moveTicket(first, column("Done"), std::nullopt, now);
  s.moveTicket(second, column("Done"), std::nullopt, at(2026, 3, 3, 12));
  s.moveTicket(loose, column("Done"), std::nullopt, at(2026, 3, 2, 12));
  // 02:00 UTC on the 2nd is still the 1st in New York.
  s.moveTicket(early, column("Done"), std::nullopt, at(2026, 3, 2, 2));
  s.moveTicket(archived, column("Done"), std::nullopt, at(2026, 3, 3));
  s.archive(archived, at(2026, 3, 3));

  const CompletedReport report = completedReport(snap(), CivilDate{2026, 3, 2}, localToday, *newYork);
  EXPECT_EQ(report.total, 3);
  ASSERT_EQ(report.groups.size(), 3u);
  EXPECT_EQ(report.groups[0].epicName, "API");
  EXPECT_EQ(report.groups[1].epicName, "web");
  EXPECT_EQ(report.groups[1].colorHex, "#ff0000");
  EXPECT_EQ(report.groups[1].items,
            (std::vector<CompletedItem>{{first, "SHOP-1", "web one", std::string("Ann"), localToday}}));
  EXPECT_EQ(report.groups[2].id, "none");
  EXPECT_EQ(report.groups[2].epicName, "No epic");
  EXPECT_EQ(report.groups[2].items[0].reference, "SHOP-3");

  const CompletedReport reversed = completedReport(snap(), localToday, CivilDate{2026, 3, 2}, *newYork);
  EXPECT_TRUE(reversed.groups.empty());
  EXPECT_EQ(reversed.total, 0);
}

TEST_F(ReportDataTest, RiskReportListsEachKindOfRisk) {
  EXPECT_TRUE(riskReport(snap(), now, *newYork).isClear());

  const Uuid flagged = ticket("flagged");
  const Uuid waiting = ticket("waiting");
  const Uuid blockerA = ticket("blocker a");
  const Uuid blockerB = ticket("blocker b");
  s.setBlocked(flagged, true);
  s.addLink(waiting, blockerA, LinkKind::blockedBy, at(2026, 1, 7));
  s.addLink(waiting, blockerB, LinkKind::blockedBy, at(2026, 1, 7));
  ticket("overdue", std::nullopt, Timestamp{now.secondsSince1970 - 1});
  ticket("due now", std::nullopt, now);
  // Review holds 3 (its limit, no breach); In Progress gets 6 of 5.
  for (int i = 0; i < 3; ++i) s.moveTicket(ticket("review"), column("Review"), std::nullopt, at(2026, 3, 4));
  // Finished work: cycle times of 1, 2 and 3 days give a p85 of 2.7 days.
  for (int days = 1; days <= 3; ++days) {
    const Uuid done = ticket("done");
    s.moveTicket(done, column("In Progress"), std::nullopt, at(2026, 2, 10));
    s.moveTicket(done, column("Done"), std::nullopt, at(2026, 2, 10 + days));
  }
  for (int i = 0; i < 5; ++i) s.moveTicket(ticket("young"), column("In Progress"), std::nullopt, at(2026, 3, 4));
  const Uuid old = ticket("old");
  s.moveTicket(old, column("In Progress"), std::nullopt, at(2026, 2, 20));

  const RiskReport risk = riskReport(snap(), now, *newYork);
  ASSERT_EQ(risk.blocked.size(), 2u);
  EXPECT_EQ(risk.blocked[0].detail, "flagged as blocked");
  EXPECT_TRUE(risk.blocked[0].flagged);
  EXPECT_EQ(risk.blocked[1].detail, "waiting on SHOP-3, SHOP-4");
  EXPECT_FALSE(risk.blocked[1].flagged);
  ASSERT_EQ(risk.overdue.size(), 1u);
  EXPECT_EQ(risk.overdue[0].title, "overdue");
  EXPECT_EQ(risk.overdue[0].detail, "due 4 Mar 2026");
  EXPECT_DOUBLE_EQ(*risk.p85CycleDays, 2.7);
  ASSERT_EQ(risk.ageing.size(), 1u);
  EXPECT_EQ(risk.ageing[0].id, old);
  EXPECT_EQ(risk.ageing[0].detail, "12.6 days in progress, older than 85% of finished work");
  ASSERT_EQ(risk.wipBreaches.size(), 1u);
  EXPECT_EQ(risk.wipBreaches[0], (WIPBreach{column("In Progress"), "In Progress", 6, 5}));
  EXPECT_FALSE(risk.isClear());
}

TEST_F(ReportDataTest, SummaryAndWorkloadCountPerPerson) {
  const Person ann = s.createPerson("ann", std::nullopt);
  const Person bob = s.createPerson("Bob", std::nullopt);
  s.createPerson("Idle", std::nullopt);
  const auto assigned = [&](std::string title, const Person& person, std::optional<Timestamp> due = {}) {
    const Uuid id = ticket(std::move(title), std::nullopt, due);
    s.setAssignee(id, person.id);
    return id;
  };
  assigned("ann open", ann);
  const Uuid annDoing = assigned("ann doing", ann, at(2026, 3, 1));
  s.moveTicket(annDoing, column("In Progress"), std::nullopt, at(2026, 3, 1));
  s.setBlocked(annDoing, true);
  // 14 days through the 4th in New York start on 19 Feb there (05:00 UTC).
  s.moveTicket(assigned("ann recent", ann), column("Done"), std::nullopt, at(2026, 2, 19, 5));
  s.moveTicket(assigned("ann too old", ann), column("Done"), std::nullopt, at(2026, 2, 19, 4));
  assigned("bob open", bob);
  assigned("bob open 2", bob);
  s.archive(assigned("bob archived", bob), at(2026, 3, 1));
  ticket("nobody's");

  EXPECT_EQ(projectSummary(snap(), now), (ProjectSummary{7, 4, 1, 2, 1, 1, 1}));
  const std::vector<WorkloadRow> rows = workload(snap(), now, 14, *newYork);
  ASSERT_EQ(rows.size(), 2u);
  // Equal open work: by name ignoring case.
  EXPECT_EQ(rows[0], (WorkloadRow{ann.id.text(), "ann", 1, 1, 1, 1, 1}));
  EXPECT_EQ(rows[1], (WorkloadRow{bob.id.text(), "Bob", 2, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace orvane
