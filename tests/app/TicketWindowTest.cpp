#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <functional>

#include "app/AppFixture.h"
#include "app/shell/UndoHistory.h"
#include "app/ticket/TicketWindow.h"
#include "app/widgets/DayField.h"
#include "core/support/StoreDump.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;
using orvane::testing::dumpStore;

namespace {

// A project with two tickets, an epic, a person and a planned iteration.
struct TicketFixture : AppFixture {
  Project project = board().createProject("Apollo", "AP", clock);
  Ticket engine = board().createTicket(project.id, {.title = "Engine"}, clock);
  Ticket fuel = board().createTicket(project.id, {.title = "Fuel"}, clock);
  Epic epic = board().createEpic(project.id, "Launch", std::nullopt, std::nullopt);
  Person ada = board().createPerson("Ada", std::nullopt);
  Iteration sprint = board().createIteration(project.id, "Sprint 1", "", clock, clock);

  std::string dump() { return dumpStore(t.store.db()); }
  Ticket stored(const Uuid& id) { return *snapshot(project.id).ticket(id); }
};

template <typename T>
T* child(QWidget& parent, const char* name) {
  T* found = parent.findChild<T*>(QLatin1String(name));
  if (found == nullptr) qFatal("no child %s", name);
  return found;
}

void choose(QComboBox* combo, const QString& text) {
  const int index = combo->findText(text, Qt::MatchStartsWith);
  QVERIFY2(index >= 0, qPrintable(text));
  combo->setCurrentIndex(index);
  emit combo->activated(index);
}

QStringList alerts(QWidget& parent) {
  QStringList texts;
  for (auto* box : parent.findChildren<QMessageBox*>(QStringLiteral("alert"))) texts << box->text();
  return texts;
}

}  // namespace

class TicketWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void titleEditIsOneStepThatUndoAndRedoFollow();
  void eachFieldIsItsOwnUndoableStep();
  void refusedLinkCycleShowsTheSentenceAndChangesNothing();
  void commentsAndChecklistAreEditedInPlace();
  void historyKeepsColumnNamesAsTheyWere();
  void missingFileIsReportedNotOpened();
  void windowFollowsTheTicketAwayAndBack();
  void returnAddsOnceAndButtonsWaitUntilTheyCanAct();
};

void TicketWindowTest::titleEditIsOneStepThatUndoAndRedoFollow() {
  TicketFixture f;
  TicketWindow window(*f.context, f.engine.id, nullptr);
  auto* title = child<QLineEdit>(window, "title");
  QCOMPARE(window.windowTitle(), QString("AP-1 Engine"));

  title->setText("  Engine v2 ");
  emit title->editingFinished();
  QCOMPARE(f.stored(f.engine.id).title, std::string("Engine v2"));
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Edit title"));

  f.context->undo(&window);
  QCOMPARE(f.stored(f.engine.id).title, std::string("Engine"));
  QCOMPARE(title->text(), QString("Engine"));
  f.context->redo(&window);
  QCOMPARE(title->text(), QString("Engine v2"));

  // An empty title is refused with the board's sentence and put back.
  title->setText("   ");
  emit title->editingFinished();
  QCOMPARE(alerts(window), QStringList{"A name, title or comment cannot be empty."});
  QCOMPARE(title->text(), QString("Engine v2"));
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Edit title"));
}

void TicketWindowTest::eachFieldIsItsOwnUndoableStep() {
  struct Edit {
    const char* label;
    std::function<void(TicketWindow&, TicketFixture&)> apply;
    std::function<bool(const Ticket&)> applied;
  };
  const std::vector<Edit> edits{
      {"Change priority", [](TicketWindow& w, TicketFixture&) { choose(child<QComboBox>(w, "priority"), "Urgent"); },
       [](const Ticket& t) { return t.effectivePriority() == TicketPriority::urgent; }},
      {"Move ticket", [](TicketWindow& w, TicketFixture&) { choose(child<QComboBox>(w, "column"), "In Progress"); },
       [](const Ticket& t) { return t.startedAt.has_value(); }},
      {"Change epic", [](TicketWindow& w, TicketFixture&) { choose(child<QComboBox>(w, "epic"), "Launch"); },
       [](const Ticket& t) { return t.epicId.has_value(); }},
      {"Assign ticket", [](TicketWindow& w, TicketFixture&) { choose(child<QComboBox>(w, "assignee"), "Ada"); },
       [](const Ticket& t) { return t.assigneeId.has_value(); }},
      {"Change iteration",
       [](TicketWindow& w, TicketFixture&) { choose(child<QComboBox>(w, "iteration"), "Sprint 1"); },
       [](const Ticket& t) { return t.iterationId.has_value(); }},
      {"Edit tags",
       [](TicketWindow& w, TicketFixture&) {
         auto* tags = child<QLineEdit>(w, "tags");
         tags->setText("hardware, , urgent");
         emit tags->editingFinished();
       },
       [](const Ticket& t) {
         return t.tags == std::vector<std::string>{"hardware", "urgent"};
       }},
      {"Change due date",
       [](TicketWindow& w, TicketFixture&) {
         auto* due = child<DayField>(w, "due");
         due->editor()->setDate(QDate(2026, 4, 30));
         due->presence()->click();
       },
       [](const Ticket& t) { return t.dueDate == orvane::testing::at(2026, 4, 30, 12); }},
      {"Mark as blocked", [](TicketWindow& w, TicketFixture&) { child<QCheckBox>(w, "blocked")->click(); },
       [](const Ticket& t) { return t.blocked; }},
      {"Flag for this week", [](TicketWindow& w, TicketFixture&) { child<QCheckBox>(w, "thisWeek")->click(); },
       [](const Ticket& t) { return t.thisWeek; }},
  };
  for (const Edit& edit : edits) {
    TicketFixture f;
    TicketWindow window(*f.context, f.engine.id, nullptr);
    const std::string before = f.dump();
    edit.apply(window, f);
    QVERIFY2(edit.applied(f.stored(f.engine.id)), edit.label);
    QCOMPARE(f.context->undoHistory().undoLabel(), QString(edit.label));
    const std::string after = f.dump();
    f.context->undo(&window);
    QVERIFY2(f.dump() == before, edit.label);
    QVERIFY(!f.context->undoHistory().canUndo());
    f.context->redo(&window);
    QVERIFY2(f.dump() == after, edit.label);
    QVERIFY2(alerts(window).isEmpty(), edit.label);
  }
}

void TicketWindowTest::refusedLinkCycleShowsTheSentenceAndChangesNothing() {
  TicketFixture f;
  f.board().addLink(f.engine.id, f.fuel.id, LinkKind::blockedBy, f.clock);
  TicketWindow window(*f.context, f.fuel.id, nullptr);
  QCOMPARE(child<QTreeWidget>(window, "links")->topLevelItem(0)->text(0), QString("Blocks"));
  const std::string before = f.dump();

  choose(child<QComboBox>(window, "linkKind"), "Blocked by");
  choose(child<QComboBox>(window, "linkTarget"), "AP-1");
  child<QPushButton>(window, "addLink")->click();
  QCOMPARE(alerts(window), QStringList{"That would make the tickets wait on each other."});
  QVERIFY(f.dump() == before);
  QVERIFY(!f.context->undoHistory().canUndo());

  // The other kind is no loop.
  choose(child<QComboBox>(window, "linkKind"), "Related to");
  child<QPushButton>(window, "addLink")->click();
  QCOMPARE(child<QTreeWidget>(window, "links")->topLevelItemCount(), 2);
}

void TicketWindowTest::commentsAndChecklistAreEditedInPlace() {
  TicketFixture f;
  TicketWindow window(*f.context, f.engine.id, nullptr);
  child<QPlainTextEdit>(window, "newComment")->setPlainText("Check the valves");
  child<QPushButton>(window, "addComment")->click();
  auto* comments = child<QTreeWidget>(window, "comments");
  QCOMPARE(comments->topLevelItemCount(), 1);
  QCOMPARE(comments->topLevelItem(0)->text(0), QString("4 Mar 2026"));
  comments->topLevelItem(0)->setText(1, "Check the valves twice");
  QCOMPARE(f.snapshot(f.project.id).comments.at(0).body, std::string("Check the valves twice"));
  comments->setCurrentItem(comments->topLevelItem(0));
  child<QPushButton>(window, "deleteComment")->click();
  QVERIFY(f.snapshot(f.project.id).comments.empty());

  auto* newItem = child<QLineEdit>(window, "newChecklistItem");
  for (const char* title : {"Order parts", "Fit", "Test"}) {
    newItem->setText(title);
    child<QPushButton>(window, "addChecklistItem")->click();
  }
  auto* checklist = child<QListWidget>(window, "checklist");
  checklist->item(1)->setCheckState(Qt::Checked);
  checklist->item(2)->setText("Test run");
  checklist->setCurrentRow(2);
  child<QPushButton>(window, "checklistUp")->click();
  QStringList shown;
  for (int i = 0; i < checklist->count(); ++i) shown << checklist->item(i)->text();
  QCOMPARE(shown, (QStringList{"Order parts", "Test run", "Fit"}));
  QCOMPARE(checklist->item(2)->checkState(), Qt::Checked);
  QCOMPARE(checklist->currentRow(), 1);
  child<QPushButton>(window, "deleteChecklistItem")->click();
  QCOMPARE(checklist->count(), 2);
  QCOMPARE(f.context->undoHistory().undoLabel(), QString("Delete checklist item"));
  QVERIFY(alerts(window).isEmpty());
}

void TicketWindowTest::historyKeepsColumnNamesAsTheyWere() {
  TicketFixture f;
  const ProjectSnapshot s = f.snapshot(f.project.id);
  f.board().moveTicket(f.engine.id, s.columns[2].id, std::nullopt, f.clock);
  f.board().renameColumn(s.columns[2].id, "Doing");
  TicketWindow window(*f.context, f.engine.id, nullptr);
  auto* history = child<QListWidget>(window, "history");
  QCOMPARE(history->count(), 2);
  QCOMPARE(history->item(0)->text(), QString("4 Mar 2026  Created in “Backlog”"));
  QCOMPARE(history->item(1)->text(), QString("4 Mar 2026  Moved from “Backlog” to “In Progress”"));
}

void TicketWindowTest::missingFileIsReportedNotOpened() {
  TicketFixture f;
  TicketWindow window(*f.context, f.engine.id, nullptr);
  const QString path = QString::fromStdString((f.t.dir.path() / "gone.pdf").string());
  window.addFile(path);
  const auto links = f.snapshot(f.project.id).fileLinks;
  QCOMPARE(links.size(), std::size_t(1));
  QVERIFY(child<QTreeWidget>(window, "files")->topLevelItem(0)->text(1).endsWith("(missing)"));
  window.openFile(links[0].id);
  QCOMPARE(alerts(window),
           QStringList{QString("“gone.pdf” is no longer at %1. It may have been moved or deleted.").arg(path)});
}

void TicketWindowTest::windowFollowsTheTicketAwayAndBack() {
  TicketFixture f;
  f.board().addComment(f.engine.id, "Kept", f.clock);
  TicketWindow window(*f.context, f.engine.id, nullptr);
  QVERIFY(f.context->perform(
      "Delete ticket", [&](BoardService& s) { s.deleteTicket(f.engine.id); }, &window));
  QCOMPARE(child<QLabel>(window, "notice")->text(), QString("This ticket no longer exists."));
  QVERIFY(!child<QLineEdit>(window, "title")->isEnabled());

  f.context->undo(&window);
  QVERIFY(child<QLineEdit>(window, "title")->isEnabled());
  QCOMPARE(child<QLineEdit>(window, "title")->text(), QString("Engine"));
  QCOMPARE(child<QTreeWidget>(window, "comments")->topLevelItem(0)->text(1), QString("Kept"));
}

void TicketWindowTest::returnAddsOnceAndButtonsWaitUntilTheyCanAct() {
  TicketFixture f;
  TicketWindow window(*f.context, f.engine.id, nullptr);
  window.show();
  // Nothing typed and nothing chosen: nothing to add, move, open or remove.
  for (const char* name : {"addComment", "deleteComment", "addChecklistItem", "checklistUp", "checklistDown",
                           "deleteChecklistItem", "removeLink", "openFile", "removeFile"})
    QVERIFY2(!child<QPushButton>(window, name)->isEnabled(), name);
  QVERIFY(child<QPushButton>(window, "addLink")->isEnabled());  // Fuel is there to link to
  QVERIFY(child<QPushButton>(window, "addFile")->isEnabled());

  // Return belongs to the field it is typed in: no button of the window
  // takes it as well (adding again, picking a file, closing the window).
  for (const QPushButton* button : window.findChildren<QPushButton*>())
    QVERIFY2(!button->isDefault() && !button->autoDefault(), qPrintable(button->text()));
  window.findChild<QTabWidget*>()->setCurrentIndex(1);
  auto* newItem = child<QLineEdit>(window, "newChecklistItem");
  QTest::keyClicks(newItem, "Order parts");
  QVERIFY(child<QPushButton>(window, "addChecklistItem")->isEnabled());
  QTest::keyClick(newItem, Qt::Key_Return);
  QTest::keyClick(newItem, Qt::Key_Return);  // the field is empty now: nothing happens
  QCOMPARE(f.snapshot(f.project.id).checklistItems.size(), std::size_t(1));
  QVERIFY(newItem->text().isEmpty());
  QVERIFY(window.isVisible());
  QVERIFY(alerts(window).isEmpty());

  auto* checklist = child<QListWidget>(window, "checklist");
  checklist->setCurrentRow(0);
  QVERIFY(child<QPushButton>(window, "deleteChecklistItem")->isEnabled());
  QVERIFY(!child<QPushButton>(window, "checklistUp")->isEnabled());  // already at the top
  QVERIFY(!child<QPushButton>(window, "checklistDown")->isEnabled());
}

QTEST_MAIN(TicketWindowTest)
#include "TicketWindowTest.moc"
