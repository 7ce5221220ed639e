#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include "app/AppFixture.h"
#include "app/planning/PeopleView.h"
#include "app/shell/UndoHistory.h"
#include "app/ticket/TicketOpener.h"
#include "core/store/Rows.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;

namespace {

QStringList alerts(QWidget& parent) {
  QStringList texts;
  for (auto* box : parent.findChildren<QMessageBox*>(QStringLiteral("alert"))) texts << box->text();
  return texts;
}

}  // namespace

class PeopleViewTest : public QObject {
  Q_OBJECT

 private slots:
  void addRenameAndContactDetailsAreEditedInPlace();
  void deletingAPersonLeavesTheirTicketsUnassigned();
  void returnInTheNameFieldAddsOnceAndSaysNothingElse();
};

void PeopleViewTest::addRenameAndContactDetailsAreEditedInPlace() {
  AppFixture f;
  PeopleView view(*f.context, nullptr);
  view.addPerson("  bob ");
  view.addPerson("Ada");
  QTableWidget* table = view.table();
  QCOMPARE(table->rowCount(), 2);
  QCOMPARE(table->item(0, 0)->text(), QString("Ada"));  // by name, ignoring case

  table->item(1, 0)->setText("Bob");
  table->item(1, 1)->setText("bob@example.com");
  table->item(1, 2)->setText(" +44 20 7946 0000 ");
  std::optional<Person> stored;
  for (const Person& p : rows::select<Person>(f.t.store.db(), "WHERE name = 'Bob'")) stored = p;
  QVERIFY(stored);
  QCOMPARE(stored->email, std::string("bob@example.com"));
  QCOMPARE(stored->phone, std::string("+44 20 7946 0000"));
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Change phone number"));
  QVERIFY(alerts(view).isEmpty());

  // Refusals keep the sentence and put the cell back.
  table->item(0, 1)->setText("ada at example");
  table->item(0, 0)->setText("BOB");
  QCOMPARE(alerts(view), (QStringList{"That does not look like an email address.", "\"BOB\" is already in use."}));
  QCOMPARE(table->item(0, 0)->text(), QString("Ada"));
  QCOMPARE(table->item(0, 1)->text(), QString());
}

void PeopleViewTest::deletingAPersonLeavesTheirTicketsUnassigned() {
  AppFixture f;
  const Uuid project = f.board().createProject("Apollo", "AP", f.clock).id;
  const Person ada = f.board().createPerson("Ada", std::nullopt);
  std::vector<Uuid> tickets;
  for (const char* title : {"Engine", "Fuel"}) {
    tickets.push_back(f.board().createTicket(project, {.title = title}, f.clock).id);
    f.board().setAssignee(tickets.back(), ada.id);
  }
  f.board().archive(tickets.back(), f.clock);
  PeopleView view(*f.context, nullptr);
  QCOMPARE(view.table()->item(0, 3)->text(), QString("2"));
  view.table()->selectRow(0);
  view.deleteSelected();
  auto* confirm = view.findChild<QMessageBox*>("confirmDeletePerson");
  QVERIFY(confirm != nullptr);
  QCOMPARE(confirm->informativeText(), QString("Their 2 tickets stay where they are, unassigned."));
  confirm->findChild<QPushButton*>("confirm")->click();

  QCOMPARE(view.table()->rowCount(), 0);
  const ProjectSnapshot after = f.snapshot(project);
  QCOMPARE(after.tickets.size(), std::size_t(2));
  for (const Ticket& ticket : after.tickets) QVERIFY(!ticket.assigneeId);

  f.context->undo(&view);
  for (const Ticket& ticket : f.snapshot(project).tickets) QCOMPARE(ticket.assigneeId, std::optional<Uuid>(ada.id));
  QCOMPARE(view.table()->rowCount(), 1);
}

void PeopleViewTest::returnInTheNameFieldAddsOnceAndSaysNothingElse() {
  AppFixture f;
  // The window the app opens: a dialog, where Return also presses a button.
  std::unique_ptr<QWidget> window(openPeopleWindow(*f.context, nullptr));
  window->setAttribute(Qt::WA_DeleteOnClose, false);
  auto* field = window->findChild<QLineEdit*>("newPerson");
  auto* add = window->findChild<QPushButton*>("addPerson");
  auto* remove = window->findChild<QPushButton*>("deletePerson");
  auto* problem = window->findChild<QLabel*>("newPersonProblem");
  QVERIFY(field && add && remove && problem);
  QVERIFY(!add->isEnabled());     // nothing typed yet
  QVERIFY(!remove->isEnabled());  // nobody chosen
  QVERIFY(problem->isHidden());

  QTest::keyClicks(field, "Ada");
  QVERIFY(add->isEnabled());
  QTest::keyClick(field, Qt::Key_Return);
  QCOMPARE(rows::select<Person>(f.t.store.db(), "").size(), std::size_t(1));
  QCOMPARE(field->text(), QString());
  QVERIFY(alerts(*window).isEmpty());
  QVERIFY(problem->isHidden());

  // A taken name is refused where it is typed, in the service's words, and
  // Return does nothing with it.
  QTest::keyClicks(field, " ADA");
  QVERIFY(!add->isEnabled());
  QCOMPARE(problem->text(), QString("\"ADA\" is already in use."));
  QVERIFY(!problem->isHidden());
  QTest::keyClick(field, Qt::Key_Return);
  QCOMPARE(rows::select<Person>(f.t.store.db(), "").size(), std::size_t(1));
  QVERIFY(alerts(*window).isEmpty());

  auto* table = window->findChild<QTableWidget*>("people");
  table->selectRow(0);
  QVERIFY(remove->isEnabled());
}

QTEST_MAIN(PeopleViewTest)
#include "PeopleViewTest.moc"
