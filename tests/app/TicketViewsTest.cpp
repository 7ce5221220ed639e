#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "app/AppFixture.h"
#include "app/board/FilterBar.h"
#include "app/board/TicketCard.h"
#include "app/planning/CalendarDayCell.h"
#include "app/planning/CalendarView.h"
#include "app/shell/MainWindow.h"
#include "app/shell/ProjectPane.h"
#include "app/ticket/ArchivedView.h"
#include "app/ticket/TicketTableModel.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::at;

class TicketViewsTest : public QObject {
  Q_OBJECT

 private slots:
  void calendarPlacesTicketsAndEpicsOnTheirDays();
  void calendarKeepsGregorianDaysUnderAPersianLocale();
  void archivedViewRestoresDeletesAndExplainsEmptiness();
};

namespace {

QStringList entriesOn(const CalendarView& view, const CivilDate& day) {
  for (const CalendarDayCell* cell : view.cells()) {
    if (cell->day() == day) return cell->entries();
  }
  return {QStringLiteral("(no such day)")};
}

}  // namespace

void TicketViewsTest::calendarPlacesTicketsAndEpicsOnTheirDays() {
  AppFixture f;
  const Uuid project = f.board().createProject("Web", std::nullopt, f.clock).id;
  f.board().createTicket(project, NewTicket{.title = "Launch", .dueDate = at(2026, 3, 20, 15)}, f.clock);
  f.board().createTicket(project, NewTicket{.title = "Later", .dueDate = at(2026, 4, 2)}, f.clock);
  const Uuid epic = f.board().createEpic(project, "Payments", std::nullopt, std::nullopt).id;
  f.board().updateEpic(epic, "Payments", "", at(2026, 3, 2), at(2026, 3, 31), std::nullopt);

  CalendarView view(*f.context, nullptr);
  view.showProject(project);
  view.showMonth(2026, 3);
  QCOMPARE(view.monthTitle(), QString("March 2026"));
  QCOMPARE(view.cells().size() % 7, std::size_t(0));
  QCOMPARE(entriesOn(view, CivilDate(2026, 3, 20)), QStringList{"WEB-1 Launch"});
  QCOMPARE(entriesOn(view, CivilDate(2026, 3, 2)), QStringList{"▶ Payments starts"});
  QCOMPARE(entriesOn(view, CivilDate(2026, 3, 31)), QStringList{"◆ Payments due"});

  view.nextMonth();
  QCOMPARE(view.monthTitle(), QString("April 2026"));
  QCOMPARE(entriesOn(view, CivilDate(2026, 4, 2)), QStringList{"WEB-2 Later"});
  view.showMonth(2026, 13);  // month arithmetic rolls into the next year
  QCOMPARE(view.monthTitle(), QString("January 2027"));
  view.previousMonth();
  QCOMPARE(view.monthTitle(), QString("December 2026"));
}

void TicketViewsTest::calendarKeepsGregorianDaysUnderAPersianLocale() {
  AppFixture f;
  const Uuid project = f.board().createProject("Web", std::nullopt, f.clock).id;
  f.board().createTicket(project, NewTicket{.title = "Leap", .dueDate = at(2024, 2, 29)}, f.clock);

  // As LANG=fa_IR.UTF-8 and TZ=Asia/Tehran set them: ICU's own calendar for
  // the locale is the Persian one, weeks start on Saturday.
  const icu::Locale previousLocale = icu::Locale::getDefault();
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("fa_IR"), status);
  icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Tehran"));
  f.context = std::make_unique<AppContext>(f.t.store);
  f.context->setClock([&f] { return f.clock; });
  icu::Locale::setDefault(previousLocale, status);
  icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("UTC"));

  CalendarView view(*f.context, nullptr);
  view.showProject(project);
  view.showMonth(2024, 2);
  QCOMPARE(view.monthTitle(), QString("February 2024"));
  QCOMPARE(view.cells().size(), std::size_t(35));
  QCOMPARE(view.cells().front()->day(), CivilDate(2024, 1, 27));  // a Saturday
  QCOMPARE(entriesOn(view, CivilDate(2024, 2, 29)), QStringList{"WEB-1 Leap"});
  const ProjectSnapshot snapshot = f.snapshot(project);
  const TicketCardFactory cards(snapshot, f.context->calendar(), f.clock);
  QCOMPARE(cards.card(snapshot.tickets.at(0)).dueText, QString("29 Feb 2024"));
}

void TicketViewsTest::archivedViewRestoresDeletesAndExplainsEmptiness() {
  AppFixture f;
  const Uuid project = f.board().createProject("Web", std::nullopt, f.clock).id;
  const Uuid kept = f.board().createTicket(project, NewTicket{.title = "Kept"}, f.clock).id;
  const Uuid first = f.board().createTicket(project, NewTicket{.title = "Old idea"}, f.clock).id;
  const Uuid second = f.board().createTicket(project, NewTicket{.title = "Older idea"}, f.clock).id;
  MainWindow window(*f.context);
  window.show();
  window.selectProject(project);
  window.setViewMode(ProjectViewMode::archived);
  ArchivedView* view = window.pane()->archivedView();
  QCOMPARE(view->emptyText(), QString("No archived tickets"));

  f.board().archive(first, f.clock);
  f.board().archive(second, f.clock);
  f.context->notifyStoreChanged();
  QCOMPARE(view->model()->rowCount(), 2);
  QVERIFY(view->emptyText().isEmpty());

  // A filter that lets none through says so.
  window.pane()->filterBar()->searchField()->setText("nothing like this");
  QCOMPARE(view->emptyText(), QString("No archived tickets match"));
  window.pane()->filterBar()->searchField()->setText("older");
  QCOMPARE(view->model()->rowCount(), 1);
  window.pane()->filterBar()->clear();

  // Restore brings the ticket back to the bottom of its column.
  view->table()->selectRow(0);
  const Uuid restored = view->model()->card(0).id;
  view->restoreSelected();
  QCOMPARE(view->model()->rowCount(), 1);
  const ProjectSnapshot afterRestore = f.snapshot(project);
  QVERIFY(!afterRestore.ticket(restored)->isArchived());
  QCOMPARE(afterRestore.ticket(restored)->position, std::int64_t(1));

  // Delete asks first; cancel keeps the ticket, Delete removes it.
  view->table()->selectRow(0);
  const Uuid doomed = view->model()->card(0).id;
  view->deleteSelected();
  auto* confirm = view->findChild<QMessageBox*>("confirmDeleteTicket");
  QVERIFY(confirm != nullptr);
  QCOMPARE(confirm->text(), QString("Delete this ticket?"));
  confirm->button(QMessageBox::Cancel)->click();
  QVERIFY(f.snapshot(project).ticket(doomed) != nullptr);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  view->deleteSelected();
  confirm = view->findChild<QMessageBox*>("confirmDeleteTicket");
  QVERIFY(confirm != nullptr);
  for (QAbstractButton* button : confirm->buttons()) {
    if (button->text() == "Delete") button->click();
  }
  QVERIFY(f.snapshot(project).ticket(doomed) == nullptr);
  QVERIFY(f.snapshot(project).ticket(kept) != nullptr);
  QCOMPARE(view->emptyText(), QString("No archived tickets"));
}

QTEST_MAIN(TicketViewsTest)
#include "TicketViewsTest.moc"
