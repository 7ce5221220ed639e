#include <QAction>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include "app/AppFixture.h"
#include "app/board/AddColumnDialog.h"
#include "app/board/BoardCardActions.h"
#include "app/board/BoardColumnModel.h"
#include "app/board/BoardColumnWidget.h"
#include "app/board/BoardView.h"
#include "app/board/WipLimitDialog.h"
#include "app/board/WipLimitField.h"
#include "app/shell/UndoHistory.h"

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
  Uuid ticketIn(std::size_t column, const std::string& title) {
    return board()
        .createTicket(project, NewTicket{.title = title, .column = snapshot(project).columns[column].id}, clock)
        .id;
  }
  QString undoLabel() { return context->undoHistory().undoLabel(); }
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
  void columnMenuCannotMovePastTheEnds();
  void cardActionsActOnCardsAcrossColumnsAsOneStep();
  void keyboardOpensAndMovesTheSelectedCard();
  void plainClickSelectsOneCardModifiersAddAcrossColumns();
  void cardMenuOffersColumnsPeopleArchiveAndDelete();
  void deletingSelectedCardsAsksFirst();
  void draggingSeveralCardsKeepsTheirOrder();
  void wipLimitIsTypedTheSameWayInBothForms();
};

namespace {

QAction* columnMenuAction(BoardColumnWidget* column, const QString& text) {
  for (QAction* action : column->findChildren<QAction*>()) {
    if (action->text() == text) return action;
  }
  return nullptr;
}

// Triggers the action `text` of the column menu of `column`.
void columnAction(BoardColumnWidget* column, const QString& text) {
  QAction* action = columnMenuAction(column, text);
  QVERIFY2(action != nullptr, qPrintable("no action " + text));
  action->trigger();
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

void BoardViewTest::columnMenuCannotMovePastTheEnds() {
  BoardFixture f;
  struct Case {
    std::size_t column;
    bool left;
    bool right;
  };
  for (const Case& c : {Case{0, false, true}, Case{2, true, true}, Case{4, true, false}}) {
    QCOMPARE(columnMenuAction(f.column(c.column), "Move left")->isEnabled(), c.left);
    QCOMPARE(columnMenuAction(f.column(c.column), "Move right")->isEnabled(), c.right);
  }
  // After a move the ends are worked out anew.
  columnAction(f.column(3), "Move right");
  QVERIFY(!columnMenuAction(f.column(4), "Move right")->isEnabled());
  QVERIFY(columnMenuAction(f.column(3), "Move right")->isEnabled());
  QCOMPARE(columnNames(f, f.project), (QStringList{"Backlog", "To Do", "In Progress", "Done", "Review"}));
  QVERIFY(f.view.findChild<QMessageBox*>("alert") == nullptr);
}

namespace {

// The texts of a menu's entries, separators left out.
QStringList entries(const QMenu* menu) {
  QStringList texts;
  for (const QAction* action : menu->actions())
    if (!action->isSeparator()) texts << action->text();
  return texts;
}

QAction* entry(const QMenu* menu, const QString& text) {
  for (QAction* action : menu->actions())
    if (action->text() == text) return action;
  return nullptr;
}

}  // namespace

void BoardViewTest::cardActionsActOnCardsAcrossColumnsAsOneStep() {
  BoardFixture f;
  const Uuid a = f.ticket("A");
  f.ticket("B");
  const Uuid c = f.ticketIn(1, "C");
  const Uuid mara = f.board().createPerson("Mara", std::nullopt).id;
  f.view.reloadNow();
  f.view.selectTickets({c, a});
  QCOMPARE(f.view.selectedTickets(), (std::vector<Uuid>{a, c}));  // board order

  BoardCardActions* actions = f.view.cardActions();
  QVERIFY(!actions->moveLeftAction()->isEnabled());  // A is in the first column
  QVERIFY(actions->moveRightAction()->isEnabled());
  QVERIFY(!actions->openAction()->isEnabled());  // one ticket window at a time
  actions->moveRightAction()->trigger();
  QCOMPARE(f.titles(0), QStringList{"B"});
  QCOMPARE(f.titles(1), QStringList{"A"});
  QCOMPARE(f.titles(2), QStringList{"C"});
  QCOMPARE(f.undoLabel(), QString("Move tickets"));
  // The moved cards stay selected, so the next move takes them on.
  QCOMPARE(f.view.selectedTickets(), (std::vector<Uuid>{a, c}));
  QVERIFY(actions->moveLeftAction()->isEnabled());

  actions->assign(mara);
  QCOMPARE(f.undoLabel(), QString("Assign tickets"));
  actions->archiveAction()->trigger();
  QCOMPARE(f.undoLabel(), QString("Archive tickets"));
  QVERIFY(f.snapshot(f.project).ticket(a)->isArchived() && f.snapshot(f.project).ticket(c)->isArchived());
  QVERIFY(f.view.selectedTickets().empty());
  QVERIFY(!actions->archiveAction()->isEnabled());

  // Each action was one step: three undos take all of it back.
  f.context->undo(nullptr);
  QVERIFY(!f.snapshot(f.project).ticket(a)->isArchived() && !f.snapshot(f.project).ticket(c)->isArchived());
  QCOMPARE(f.snapshot(f.project).ticket(c)->assigneeId, std::optional<Uuid>(mara));
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(f.project).ticket(a)->assigneeId, std::optional<Uuid>());
  QCOMPARE(f.snapshot(f.project).ticket(c)->assigneeId, std::optional<Uuid>());
  f.context->undo(nullptr);
  QCOMPARE(f.titles(0), (QStringList{"A", "B"}));
  QCOMPARE(f.titles(1), QStringList{"C"});
}

void BoardViewTest::keyboardOpensAndMovesTheSelectedCard() {
  BoardFixture f;
  const Uuid a = f.ticket("A");
  f.view.reloadNow();
  QApplication::setActiveWindow(&f.view);
  QVERIFY(QTest::qWaitForWindowActive(&f.view));
  std::vector<Uuid> opened;
  connect(&f.view, &BoardView::openTicketRequested, &f.view, [&](const Uuid& id) { opened.push_back(id); });

  f.column(0)->list()->setFocus();
  f.view.selectTickets({a});
  QTest::keyClick(f.column(0)->list(), Qt::Key_Return);
  QCOMPARE(opened, std::vector<Uuid>{a});

  const Qt::KeyboardModifiers move = Qt::ControlModifier | Qt::ShiftModifier;
  QTest::keyClick(f.column(0)->list(), Qt::Key_Right, move);
  QCOMPARE(f.titles(1), QStringList{"A"});
  QCOMPARE(f.undoLabel(), QString("Move ticket"));
  // The focus follows the card, so the keys can walk it across the board.
  QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(f.column(1)->list()));
  for (int i = 0; i < 3; ++i) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right, move);
  QCOMPARE(f.titles(4), QStringList{"A"});
  QVERIFY(f.snapshot(f.project).ticket(a)->completedAt.has_value());
  QVERIFY(!f.view.cardActions()->moveRightAction()->isEnabled());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right, move);  // the last column: nothing
  QCOMPARE(f.titles(4), QStringList{"A"});
  QVERIFY(f.view.findChild<QMessageBox*>("alert") == nullptr);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left, move);
  QCOMPARE(f.titles(3), QStringList{"A"});

  // In a text field Return is the field's own: the quick add makes a ticket.
  QLineEdit* quickAdd = f.column(0)->quickAdd();
  quickAdd->setFocus();
  QTest::keyClicks(quickAdd, "Typed");
  QTest::keyClick(quickAdd, Qt::Key_Return);
  QCOMPARE(f.titles(0), QStringList{"Typed"});
  QCOMPARE(opened.size(), std::size_t(1));
}

void BoardViewTest::plainClickSelectsOneCardModifiersAddAcrossColumns() {
  BoardFixture f;
  const Uuid a = f.ticket("A");
  const Uuid b = f.ticket("B");
  const Uuid c = f.ticketIn(1, "C");
  f.view.reloadNow();
  auto click = [&](std::size_t column, int row, Qt::KeyboardModifiers modifiers) {
    QListView* list = f.column(column)->list();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers,
                      list->visualRect(f.column(column)->model()->index(row)).center());
  };
  struct Step {
    std::size_t column;
    int row;
    Qt::KeyboardModifiers modifiers;
    std::vector<Uuid> selected;
  };
  for (const Step& step : {Step{0, 0, {}, {a}}, Step{1, 0, Qt::ControlModifier, {a, c}},
                           Step{0, 1, Qt::ControlModifier, {a, b, c}}, Step{1, 0, {}, {c}}, Step{0, 0, {}, {a}},
                           Step{0, 1, Qt::ShiftModifier, {a, b}}, Step{0, 0, Qt::ControlModifier, {b}}}) {
    click(step.column, step.row, step.modifiers);
    QCOMPARE(f.view.selectedTickets(), step.selected);
  }
}

void BoardViewTest::cardMenuOffersColumnsPeopleArchiveAndDelete() {
  BoardFixture f;
  const Uuid a = f.ticket("A");
  f.board().createPerson("Ole", std::nullopt);
  const Uuid mara = f.board().createPerson("Mara", std::nullopt).id;
  f.view.reloadNow();
  f.view.selectTickets({a});
  QMenu* menu = f.view.showCardMenu(QPoint(20, 20));
  QCOMPARE(entries(menu), (QStringList{"Open ticket…", "Move to previous column", "Move to next column",
                                       "Move to column", "Assign", "Archive", "Delete…"}));
  QVERIFY(entry(menu, "Open ticket…")->isEnabled());
  QVERIFY(!entry(menu, "Move to previous column")->isEnabled());
  QCOMPARE(entry(menu, "Move to next column")->shortcut(), QKeySequence("Ctrl+Shift+Right"));
  QCOMPARE(entry(menu, "Move to previous column")->shortcut(), QKeySequence("Ctrl+Shift+Left"));
  QCOMPARE(entry(menu, "Open ticket…")->shortcut(), QKeySequence(Qt::Key_Return));

  const QMenu* moveTo = entry(menu, "Move to column")->menu();
  QCOMPARE(entries(moveTo), (QStringList{"Backlog", "To Do", "In Progress", "Review", "Done"}));
  QVERIFY(!entry(moveTo, "Backlog")->isEnabled());  // where the card is
  const QMenu* assign = entry(menu, "Assign")->menu();
  QCOMPARE(entries(assign), (QStringList{"Mara", "Ole", "Unassigned"}));
  QVERIFY(entry(assign, "Unassigned")->isChecked());

  entry(assign, "Mara")->trigger();
  QCOMPARE(f.snapshot(f.project).ticket(a)->assigneeId, std::optional<Uuid>(mara));
  entry(moveTo, "Review")->trigger();
  QCOMPARE(f.titles(3), QStringList{"A"});
  menu->close();

  // The window's Ticket menu is the same menu.
  menu = f.view.showCardMenu(QPoint(20, 20));
  QVERIFY(entry(entry(menu, "Assign")->menu(), "Mara")->isChecked());
  QVERIFY(!entry(entry(menu, "Move to column")->menu(), "Review")->isEnabled());
  menu->close();
}

void BoardViewTest::deletingSelectedCardsAsksFirst() {
  BoardFixture f;
  const Uuid a = f.ticket("A");
  const Uuid b = f.ticketIn(2, "B");
  f.ticket("C");
  f.view.reloadNow();
  f.view.selectTickets({a, b});
  f.view.cardActions()->deleteAction()->trigger();
  auto* confirm = f.view.findChild<QMessageBox*>("confirmDeleteTicket");
  QVERIFY(confirm != nullptr);
  QCOMPARE(confirm->text(), QString("Delete these 2 tickets?"));
  QCOMPARE(f.snapshot(f.project).tickets.size(), std::size_t(3));  // nothing yet
  confirm->findChild<QPushButton*>("confirm")->click();
  QCOMPARE(f.snapshot(f.project).tickets.size(), std::size_t(1));
  QCOMPARE(f.undoLabel(), QString("Delete tickets"));
  f.context->undo(nullptr);
  QCOMPARE(f.snapshot(f.project).tickets.size(), std::size_t(3));
  QCOMPARE(f.titles(0), (QStringList{"A", "C"}));
}

void BoardViewTest::draggingSeveralCardsKeepsTheirOrder() {
  BoardFixture f;
  for (const char* title : {"A", "B", "C", "D"}) f.ticket(title);
  f.ticketIn(1, "X");
  f.view.reloadNow();
  auto dragRows = [&](std::size_t from, QList<int> rows, std::size_t to, int targetRow) {
    BoardColumnModel* source = f.column(from)->model();
    QModelIndexList indexes;
    for (int row : rows) indexes << source->index(row);  // in the order they were selected
    std::unique_ptr<QMimeData> mime(source->mimeData(indexes));
    f.column(to)->model()->dropMimeData(mime.get(), Qt::MoveAction, targetRow, 0, {});
    QCoreApplication::processEvents();
  };
  dragRows(0, {2, 0}, 0, 3);  // C and A, dropped before D
  QCOMPARE(f.titles(0), (QStringList{"B", "A", "C", "D"}));
  QCOMPARE(f.undoLabel(), QString("Move tickets"));
  dragRows(0, {3, 0}, 1, 0);  // D and B, to the top of To Do
  QCOMPARE(f.titles(0), (QStringList{"A", "C"}));
  QCOMPARE(f.titles(1), (QStringList{"B", "D", "X"}));
  f.context->undo(nullptr);
  QCOMPARE(f.titles(0), (QStringList{"B", "A", "C", "D"}));
  QCOMPARE(f.titles(1), QStringList{"X"});
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
