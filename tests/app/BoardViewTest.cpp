#include <QAction>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include "app/AddColumnDialog.h"
#include "app/AppFixture.h"
#include "app/BoardColumnModel.h"
#include "app/BoardColumnWidget.h"
#include "app/BoardView.h"
#include "app/UndoHistory.h"
#include "app/WipLimitDialog.h"
#include "app/WipLimitField.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::at;

namespace {

// A project on the standard board (Backlog, To Do, In Progress, Review, Done)
// shown in a board view.
struct BoardFixture : AppFixture {
  Uuid project = board().createProject("Web", std::nullopt, clock).id;
  BoardView view{*context, nullptr};

  BoardFixture() {
    view.showProject(project);
    view.resize(1600, 800);
    view.show();  // a visible view reloads as soon as the store changes
  }
  Uuid ticket(const std::string& title) { return board().createTicket(project, NewTicket{.title = title}, clock).id; }
  BoardColumnWidget* column(std::size_t index) { return view.columnWidgets().at(index); }
  QStringList titles(std::size_t index) {
    QStringList titles;
    BoardColumnModel* model = column(index)->model();
    for (int row = 0; row < model->rowCount(); ++row) titles << model->card(row).title;
    return titles;
  }
  // Drags the card at `row` of column `from` and drops it before `targetRow`
  // of column `to`, as the list views do: mime data out of one model into
  // the other, then the queued move.
  void drag(std::size_t from, int row, std::size_t to, int targetRow) {
    BoardColumnModel* source = column(from)->model();
    std::unique_ptr<QMimeData> mime(source->mimeData({source->index(row)}));
    BoardColumnModel* target = column(to)->model();
    QVERIFY(target->canDropMimeData(mime.get(), Qt::MoveAction, targetRow, 0, {}));
    target->dropMimeData(mime.get(), Qt::MoveAction, targetRow, 0, {});
    QCoreApplication::processEvents();
  }
};

}  // namespace

class BoardViewTest : public QObject {
  Q_OBJECT

 private slots:
  void dropIntoOtherColumnsStampsEventsAndDates();
  void dropWithinColumnReordersWithoutEvent();
  void columnHeaderWarnsOverWipLimit();
  void quickAddCreatesTicketInThatColumn();
  void cardsShowWhatTheSnapshotDerives();
  void dropOnFilteredColumnLandsBesideTheVisibleCard();
  void columnMenuMovesAndDeletesColumnsOrSaysWhyNot();
  void wipLimitIsTypedTheSameWayInBothForms();
};

namespace {

// Triggers the action `text` of the column menu of `column`.
void columnAction(BoardColumnWidget* column, const QString& text) {
  for (QAction* action : column->findChildren<QAction*>()) {
    if (action->text() == text) {
      action->trigger();
      return;
    }
  }
  QFAIL(qPrintable("no action " + text));
}

QStringList columnNames(AppFixture& f, const Uuid& project) {
  QStringList names;
  for (const BoardColumn& column : f.snapshot(project).columns) names << QString::fromStdString(column.name);
  return names;
}

}  // namespace

void BoardViewTest::dropIntoOtherColumnsStampsEventsAndDates() {
  BoardFixture f;
  const Uuid id = f.ticket("Checkout page");
  f.view.reloadNow();
  const Timestamp started = at(2026, 3, 5, 9);
  f.clock = started;
  f.drag(0, 0, 2, -1);  // Backlog -> In Progress
  QCOMPARE(f.titles(2), QStringList{"Checkout page"});
  QVERIFY(f.titles(0).isEmpty());

  const Timestamp finished = at(2026, 3, 9, 16);
  f.clock = finished;
  f.drag(2, 0, 4, 0);  // In Progress -> Done
  QCOMPARE(f.titles(4), QStringList{"Checkout page"});

  const ProjectSnapshot snapshot = f.snapshot(f.project);
  const Ticket& ticket = *snapshot.ticket(id);
  QCOMPARE(ticket.startedAt, std::optional<Timestamp>(started));
  QCOMPARE(ticket.completedAt, std::optional<Timestamp>(finished));
  std::vector<std::pair<std::string, std::string>> moves;
  for (const TicketEvent& event : snapshot.events) {
    if (event.ticketId == id) moves.emplace_back(event.fromColumnName.value_or("-"), event.toColumnName);
  }
  const std::vector<std::pair<std::string, std::string>> expected{
      {"-", "Backlog"}, {"Backlog", "In Progress"}, {"In Progress", "Done"}};
  QVERIFY(moves == expected);

  // Each drop is one undoable step.
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Move ticket"));
  f.context->undo(nullptr);
  QCOMPARE(f.titles(2), QStringList{"Checkout page"});
  QVERIFY(!f.snapshot(f.project).ticket(id)->completedAt);
}

void BoardViewTest::dropWithinColumnReordersWithoutEvent() {
  BoardFixture f;
  for (const char* title : {"A", "B", "C", "D"}) f.ticket(title);
  f.view.reloadNow();
  const std::size_t eventsBefore = f.snapshot(f.project).events.size();

  f.drag(0, 0, 0, -1);  // A to the end
  QCOMPARE(f.titles(0), (QStringList{"B", "C", "D", "A"}));
  f.drag(0, 0, 0, 2);  // B before D: moving down counts B as removed
  QCOMPARE(f.titles(0), (QStringList{"C", "B", "D", "A"}));
  f.drag(0, 3, 0, 0);  // A to the top
  QCOMPARE(f.titles(0), (QStringList{"A", "C", "B", "D"}));
  f.drag(0, 1, 0, 1);  // C onto itself: stays
  QCOMPARE(f.titles(0), (QStringList{"A", "C", "B", "D"}));

  const ProjectSnapshot snapshot = f.snapshot(f.project);
  QCOMPARE(snapshot.events.size(), eventsBefore);
  for (const Ticket& ticket : snapshot.tickets) QVERIFY(!ticket.startedAt);
}

void BoardViewTest::columnHeaderWarnsOverWipLimit() {
  BoardFixture f;
  const Uuid review = f.snapshot(f.project).columns[3].id;
  f.board().setWIPLimit(review, 1);
  f.ticket("One");
  f.ticket("Two");
  f.view.reloadNow();
  f.drag(0, 0, 3, -1);
  QCOMPARE(f.column(3)->countText(), QString("1 / 1"));
  QVERIFY(!f.column(3)->showsWipWarning());  // reaching the limit is not exceeding it
  f.drag(0, 0, 3, -1);
  QCOMPARE(f.column(3)->countText(), QString("2 / 1"));
  QVERIFY(f.column(3)->showsWipWarning());
}

void BoardViewTest::quickAddCreatesTicketInThatColumn() {
  BoardFixture f;
  QLineEdit* field = f.column(1)->quickAdd();
  field->setText("  Write the FAQ  ");
  QTest::keyClick(field, Qt::Key_Return);
  QCOMPARE(f.titles(1), QStringList{"Write the FAQ"});
  QVERIFY(field->text().isEmpty());
  QCOMPARE(f.column(1)->model()->card(0).reference, QString("WEB-1"));
}

void BoardViewTest::cardsShowWhatTheSnapshotDerives() {
  BoardFixture f;
  const Uuid blocker = f.ticket("Blocker");
  const Uuid id =
      f.board()
          .createTicket(
              f.project,
              NewTicket{.title = "Blocked one", .priority = TicketPriority::urgent, .dueDate = at(2026, 3, 1)}, f.clock)
          .id;
  f.board().addLink(id, blocker, LinkKind::blockedBy, f.clock);
  f.board().setThisWeek(id, true);
  const Uuid item = f.board().addChecklistItem(id, "Step one").id;
  f.board().addChecklistItem(id, "Step two");
  f.board().setChecklistItem(item, true);
  const Uuid epic = f.board().createEpic(f.project, "Payments", std::string("#3366cc"), std::nullopt).id;
  f.board().assign(id, epic);
  f.view.reloadNow();

  const TicketCard& card = f.column(0)->model()->card(1);
  QCOMPARE(card.reference, QString("WEB-2"));
  QCOMPARE(card.priorityLabel, QString("Urgent"));
  QVERIFY(card.blocked);
  QVERIFY(card.thisWeek);
  QVERIFY(card.overdue);
  QCOMPARE(card.checklistDone, 1);
  QCOMPARE(card.checklistTotal, 2);
  QCOMPARE(card.epicName, QString("Payments"));
  QCOMPARE(card.epicColor, QColor("#3366cc"));

  // Once the blocker is done, only the manual flag could block it.
  f.board().moveTicket(blocker, f.snapshot(f.project).columns[4].id, std::nullopt, f.clock);
  f.view.reloadNow();
  QVERIFY(!f.column(0)->model()->card(0).blocked);
}

void BoardViewTest::dropOnFilteredColumnLandsBesideTheVisibleCard() {
  BoardFixture f;
  for (const char* title : {"fix A", "other B", "fix C", "other D", "fix E"}) f.ticket(title);
  TicketFilter filter;
  filter.text = "fix";
  f.view.setFilter(filter);
  QCOMPARE(f.titles(0), (QStringList{"fix A", "fix C", "fix E"}));
  QCOMPARE(f.column(0)->countText(), QString("3 of 5"));

  f.drag(0, 2, 0, 1);   // fix E before fix C
  f.drag(0, 0, 0, -1);  // fix A after the last visible card
  f.view.setFilter(TicketFilter{});
  QCOMPARE(f.titles(0), (QStringList{"other B", "fix E", "fix C", "fix A", "other D"}));
}

void BoardViewTest::columnMenuMovesAndDeletesColumnsOrSaysWhyNot() {
  BoardFixture f;
  columnAction(f.column(0), "Move right");
  QCOMPARE(columnNames(f, f.project), (QStringList{"To Do", "Backlog", "In Progress", "Review", "Done"}));
  columnAction(f.column(3), "Delete column");
  QCOMPARE(columnNames(f, f.project), (QStringList{"To Do", "Backlog", "In Progress", "Done"}));
  QCOMPARE(f.view.columnWidgets().size(), std::size_t(4));

  // The only Done column stays, and the alert says why.
  columnAction(f.column(3), "Delete column");
  QCOMPARE(columnNames(f, f.project).size(), 4);
  auto* alert = f.view.findChild<QMessageBox*>("alert");
  QVERIFY(alert != nullptr);
  QCOMPARE(alert->text(), QString("The board needs at least one Done column."));
}

void BoardViewTest::wipLimitIsTypedTheSameWayInBothForms() {
  BoardFixture f;
  const QString refused = "A WIP limit must be 1 or more, or empty for no limit.";
  const struct {
    const char* typed;
    bool acceptable;
    std::optional<std::int64_t> limit;
  } cases[] = {{"", true, std::nullopt},   {"4", true, 4},
               {" 12 ", true, 12},         {"-1", false, std::nullopt},
               {"0", false, std::nullopt}, {"three", false, std::nullopt}};

  f.view.addColumn();
  auto* add = f.view.findChild<AddColumnDialog*>();
  QVERIFY(add != nullptr);
  add->nameField()->setText("QA");
  columnAction(f.column(2), "WIP limit…");
  auto* change = f.column(2)->findChild<WipLimitDialog*>();
  QVERIFY(change != nullptr);
  QCOMPARE(change->limitField()->field()->text(), QString("5"));  // the column's limit as it stands

  const struct {
    WipLimitField* field;
    QPushButton* ok;
  } forms[] = {{add->limitField(), add->findChild<QPushButton*>("addColumn")},
               {change->limitField(), change->findChild<QPushButton*>("ok")}};
  for (const auto& form : forms) {
    QCOMPARE(form.field->field()->placeholderText(), QString("No limit"));
    for (const auto& c : cases) {
      form.field->field()->clear();
      QTest::keyClicks(form.field->field(), c.typed);
      // What was typed stays as typed: nothing is turned into another number.
      QCOMPARE(form.field->field()->text(), QString(c.typed));
      QCOMPARE(form.field->isAcceptable(), c.acceptable);
      QCOMPARE(form.field->problem(), c.acceptable ? QString() : refused);
      QCOMPARE(form.ok->isEnabled(), c.acceptable);
      QCOMPARE(form.field->limit(), c.limit);
    }
  }

  // Both forms store what they show.
  add->limitField()->field()->setText("2");
  add->accept();
  change->limitField()->field()->clear();
  change->accept();
  const std::vector<BoardColumn> columns = f.snapshot(f.project).columns;
  QCOMPARE(columns.back().name, std::string("QA"));
  QCOMPARE(columns.back().wipLimit, std::optional<std::int64_t>(2));
  QCOMPARE(columns[2].wipLimit, std::optional<std::int64_t>());

  // A taken name is said beside the name, and Add column waits.
  f.view.addColumn();
  auto* again = f.view.findChildren<AddColumnDialog*>().back();
  again->nameField()->setText("review");
  QCOMPARE(again->nameProblem(), QString("\"review\" is already in use."));
  QVERIFY(!again->findChild<QPushButton*>("addColumn")->isEnabled());
}

QTEST_MAIN(BoardViewTest)
#include "BoardViewTest.moc"
