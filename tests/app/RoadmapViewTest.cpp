#include <QComboBox>
#include <QDialog>
#include <QGraphicsPolygonItem>
#include <QGraphicsSimpleTextItem>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>
#include <set>

#include "app/AppFixture.h"
#include "app/CommandLine.h"
#include "app/roadmap/RoadmapItems.h"
#include "app/roadmap/RoadmapScene.h"
#include "app/roadmap/RoadmapTimeline.h"
#include "app/roadmap/RoadmapView.h"
#include "app/shell/UndoHistory.h"
#include "core/board/RoadmapSample.h"
#include "core/forecast/ForecastService.h"
#include "engine/LocalCivilDate.h"

using namespace orvane;
using namespace orvane::app;
using orvane::testing::AppFixture;

namespace {

// Waits until the view shows its newest run (the simulations run in the
// thread pool).
void settle(RoadmapView& view) { orvane::testing::awaitNewest(view, &RoadmapView::roadmapShown); }

void open(RoadmapView& view, const Uuid& project) {
  view.resize(1280, 800);
  view.showProject(project);
  view.reloadNow();
  // The simulations never run on this thread: the result comes later.
  QVERIFY(view.isComputing());
  settle(view);
}

QJsonObject roadmapFromCommandLine(AppFixture& f, const QString& key) {
  return orvane::testing::cliJson(f, {"forecast", "roadmap", key}).object();
}

CivilDate day(const QJsonValue& iso) { return CivilDate::fromIso(iso.toString().toStdString()).value(); }
Uuid id(const QString& text) { return Uuid::parse(text.toStdString()).value(); }

// The texts drawn in the scene.
QStringList sceneTexts(RoadmapScene& scene) {
  QStringList texts;
  for (QGraphicsItem* item : scene.items())
    if (auto* text = qgraphicsitem_cast<QGraphicsSimpleTextItem*>(item)) texts << text->text();
  return texts;
}

QGraphicsItem* marked(RoadmapScene& scene, const QString& kind, const QString& of) {
  for (QGraphicsItem* item : scene.items())
    if (item->data(0).toString() == kind && item->data(1).toString() == of) return item;
  return nullptr;
}

// A left-button press, move and release on the time line's viewport, from
// one scene point to another, as the mouse sends them.
void drag(RoadmapTimeline& timeline, QPointF from, QPointF to) {
  QWidget* viewport = timeline.viewport();
  const QPointF start = timeline.mapFromScene(from);
  const QPointF end = timeline.mapFromScene(to);
  const auto send = [&](QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
    QMouseEvent event(type, at, viewport->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
  };
  send(QEvent::MouseButtonPress, start, Qt::LeftButton);
  send(QEvent::MouseMove, (start + end) / 2, Qt::LeftButton);
  send(QEvent::MouseMove, end, Qt::LeftButton);
  send(QEvent::MouseButtonRelease, end, Qt::NoButton);
}

}  // namespace

class RoadmapViewTest : public QObject {
  Q_OBJECT

 private slots:
  void everyDateEqualsTheCommandLineOnTheDemo();
  void drawsABarPerEpicAndAnArrowPerDependency();
  void draggingTheStartChangesThePlannedStartInOneUndoStep();
  void doubleClickOpensTheFormAndTheListSelects();
  void saysWhatToDoWithoutEpics();
};

void RoadmapViewTest::everyDateEqualsTheCommandLineOnTheDemo() {
  AppFixture f;
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  RoadmapView view(*f.context, nullptr);
  open(view, demo);
  const QJsonObject cli = roadmapFromCommandLine(f, "SHOP");
  RoadmapScene& scene = *view.scene();

  QVERIFY2(view.findChild<QLabel*>("roadmapHeading")
               ->text()
               .endsWith(QStringLiteral("as of %1, 10,000 simulations per epic.")
                             .arg(QString::fromStdString(day(cli["asOf"]).displayText()))),
           qPrintable(view.findChild<QLabel*>("roadmapHeading")->text()));
  const QJsonObject epics = cli["epics"].toObject();
  QCOMPARE(static_cast<int>(scene.bars().size()), epics.size());
  const QStringList texts = sceneTexts(scene);
  for (const QString& key : epics.keys()) {
    const QJsonObject epic = epics[key].toObject();
    const EpicBarItem* bar = scene.bar(id(key));
    QVERIFY2(bar != nullptr, qPrintable(epic["name"].toString()));
    const QString tip = bar->toolTip();
    if (epic["p50"].isNull()) {
      QVERIFY(bar->isDone());
    } else {
      // Where the bar ends and what its tooltip says are the command line's days.
      QCOMPARE(bar->p50X(), scene.xOf(day(epic["p50"])));
      QCOMPARE(bar->p85X(), scene.xOf(day(epic["p85"])));
      QVERIFY2(tip.contains(QStringLiteral("50% by %1, 85% by %2")
                                .arg(QString::fromStdString(day(epic["p50"]).displayText()),
                                     QString::fromStdString(day(epic["p85"]).displayText()))),
               qPrintable(tip));
    }
    QCOMPARE(bar->onLongestChain(), epic["isOnLongestChain"].toBool());
    if (epic["dueDay"].isString()) {
      QGraphicsItem* diamond = marked(scene, "due", key);
      QVERIFY(diamond != nullptr);
      QCOMPARE(static_cast<QGraphicsPolygonItem*>(diamond)->polygon().boundingRect().center().x(),
               scene.xOf(day(epic["dueDay"])));
      const QString chance = QString::number(epic["chanceByDue"].toDouble(), 'f', 1) + '%';
      auto* note = static_cast<QGraphicsSimpleTextItem*>(marked(scene, "note", key));
      QVERIFY2(note->text().contains(chance + " chance by"), qPrintable(note->text()));
    }
    const QString riskLine = QStringLiteral("“%1” is at risk.").arg(epic["name"].toString());
    QCOMPARE(!view.findChild<QListWidget*>("roadmapIssues")->findItems(riskLine, Qt::MatchStartsWith).isEmpty(),
             epic["isAtRisk"].toBool());
  }
  // The project's finish dates as labelled lines, and each milestone's chance.
  const QJsonObject levels = cli["projectDates"].toObject();
  QCOMPARE(levels.size(), 4);
  for (const QString& level : levels.keys()) {
    const QString label = level + "%: " + QString::fromStdString(day(levels[level]).displayShort());
    QVERIFY2(texts.contains(label), qPrintable(label));
  }
  const QJsonObject chances = cli["milestoneChances"].toObject();
  const QJsonObject names = cli["milestoneNames"].toObject();
  QVERIFY(!names.isEmpty());
  for (const QString& milestone : names.keys()) {
    QVERIFY(marked(scene, "milestone", milestone) != nullptr);
    bool found = false;
    for (const QString& text : texts) {
      found |=
          text.startsWith(names[milestone].toString() + " · ") &&
          (text.endsWith(" · done") || text.endsWith(QString::number(chances[milestone].toDouble(), 'f', 1) + '%'));
    }
    QVERIFY2(found, qPrintable(names[milestone].toString()));
  }
  // Every overlap the command line warns of, in its words.
  auto* issues = view.findChild<QListWidget*>("roadmapIssues");
  for (const QJsonValue value : cli["conflicts"].toArray()) {
    const QJsonObject conflict = value.toObject();
    const int days = conflict["overlapDays"].toInt();
    const QString line = QStringLiteral("Warning: \"%1\" is planned to start %2 day%3 before \"%4\" is due.")
                             .arg(conflict["successor"].toObject()["name"].toString())
                             .arg(days)
                             .arg(days == 1 ? "" : "s")
                             .arg(conflict["predecessor"].toObject()["name"].toString());
    QVERIFY2(!issues->findItems(line, Qt::MatchExactly).isEmpty(), qPrintable(line));
  }
}

void RoadmapViewTest::drawsABarPerEpicAndAnArrowPerDependency() {
  AppFixture f;
  const Uuid project = createRoadmapSample(f.board(), f.t.store, f.clock).id;
  const ProjectSnapshot snapshot = f.snapshot(project);
  QCOMPARE(snapshot.epics.size(), std::size_t{40});
  RoadmapView view(*f.context, nullptr);
  open(view, project);
  RoadmapScene& scene = *view.scene();
  const RoadmapForecast forecast =
      ForecastService(f.t.store).roadmapInput(project, ForecastService::todayUTC(f.clock), f.context->calendar()).run();

  std::set<std::pair<Uuid, Uuid>> dependencies;
  for (const EpicDependency& d : snapshot.epicDependencies) dependencies.emplace(d.predecessorId, d.successorId);
  std::set<std::pair<Uuid, Uuid>> drawn;
  int chainArrows = 0;
  for (const DependencyArrowItem* arrow : scene.arrows()) {
    drawn.emplace(arrow->predecessor(), arrow->successor());
    chainArrows += arrow->onLongestChain();
  }
  QCOMPARE(drawn, dependencies);
  QCOMPARE(chainArrows, static_cast<int>(forecast.longestChain.size()) - 1);

  struct Zoom {
    int index;
    double pixelsPerDay;
  };
  for (const Zoom zoom : {Zoom{0, 18}, Zoom{1, 5}, Zoom{2, 1.6}}) {
    view.findChild<QComboBox*>("roadmapZoom")->setCurrentIndex(zoom.index);
    QCOMPARE(scene.bars().size(), std::size_t{40});
    QCOMPARE(scene.arrows().size(), dependencies.size());
    for (const Epic& epic : snapshot.epics) {
      const EpicBarItem* bar = scene.bar(epic.id);
      const EpicSchedule& schedule = forecast.epics.at(epic.id);
      QCOMPARE(bar->isDone(), schedule.open == 0);
      QCOMPARE(bar->onLongestChain(), schedule.isOnLongestChain);
      if (schedule.open == 0) continue;
      // From the planned start (or today) to the 50% date, at the zoom's scale.
      const CivilDate start =
          epic.startDate ? civilDateFromLocal(*epic.startDate, f.context->calendar()) : forecast.asOf;
      QCOMPARE(bar->p50X() - bar->startX(), static_cast<double>(schedule.p50->daysSince(start)) * zoom.pixelsPerDay);
    }
  }
  // Rows run in the order the work starts: the planned start, or today.
  const auto startOf = [&](const Uuid& id) {
    const Epic* epic = snapshot.epic(id);
    return epic->startDate ? civilDateFromLocal(*epic->startDate, f.context->calendar()) : forecast.asOf;
  };
  const auto& rows = scene.rows();
  for (std::size_t i = 1; i < rows.size(); ++i) {
    QVERIFY(startOf(rows[i - 1].id) <= startOf(rows[i].id));
    QVERIFY(rows[i - 1].centreY < rows[i].centreY);
  }
}

void RoadmapViewTest::draggingTheStartChangesThePlannedStartInOneUndoStep() {
  AppFixture f;
  const Uuid project = createRoadmapSample(f.board(), f.t.store, f.clock).id;
  RoadmapView view(*f.context, nullptr);
  view.show();
  open(view, project);
  view.findChild<QComboBox*>("roadmapZoom")->setCurrentIndex(0);  // weeks: 18 pixels a day
  RoadmapScene& scene = *view.scene();
  const ProjectSnapshot before = f.snapshot(project);
  // An open epic with a planned start and a due date well after it.
  const Epic* epic = nullptr;
  for (const Epic& e : before.epics)
    if (e.name == "Accounts build") epic = &e;
  QVERIFY(epic != nullptr && epic->startDate && epic->dueDate);
  const CivilDate planned = civilDateFromLocal(*epic->startDate, f.context->calendar());
  const CivilDate due = civilDateFromLocal(*epic->dueDate, f.context->calendar());
  // Renamed by another writer after the view read the project: the drag
  // must not write the old name back.
  const std::string renamed = "Accounts build, renamed elsewhere";
  f.board().updateEpic(epic->id, renamed, epic->details, epic->startDate, epic->dueDate, epic->colorHex);

  struct Case {
    std::int64_t days;
    bool accepted;
  };
  // Three days later is taken; past the due date the service refuses it.
  for (const Case c : {Case{3, true}, Case{due.daysSince(planned) + 2, false}}) {
    EpicBarItem* bar = scene.bar(epic->id);
    view.selectEpic(epic->id);
    const QPointF grip(bar->startX() + 2, bar->centreY());
    drag(*view.timeline(), grip, grip + QPointF(static_cast<double>(c.days) * 18, 0));
    const Epic after = *f.snapshot(project).epic(epic->id);
    const CivilDate start = civilDateFromLocal(*after.startDate, f.context->calendar());
    if (c.accepted) {
      QCOMPARE(start, planned.addingDays(c.days));
      QCOMPARE(after.name, renamed);
      QCOMPARE(f.context->undoHistory().undoLabel(), QStringLiteral("Change planned start"));
      settle(view);
      QCOMPARE(scene.bar(epic->id)->startX(), scene.xOf(start));
    } else {
      QCOMPARE(start, planned.addingDays(3));
      auto* alert = view.findChild<QMessageBox*>("alert");
      QVERIFY(alert != nullptr);
      QCOMPARE(alert->text(), QStringLiteral("The due date cannot be before the start date."));
      alert->close();
      QCOMPARE(scene.bar(epic->id)->startX(), scene.xOf(start));
    }
  }
  // One undo brings the planned start back, and the roadmap with it.
  f.context->undo(&view);
  QCOMPARE(civilDateFromLocal(*f.snapshot(project).epic(epic->id)->startDate, f.context->calendar()), planned);
  QVERIFY(!f.context->undoHistory().canUndo());
  settle(view);
  QCOMPARE(scene.bar(epic->id)->startX(), scene.xOf(planned));
}

void RoadmapViewTest::doubleClickOpensTheFormAndTheListSelects() {
  AppFixture f;
  const Uuid project = createRoadmapSample(f.board(), f.t.store, f.clock).id;
  RoadmapView view(*f.context, nullptr);
  view.show();
  open(view, project);
  RoadmapScene& scene = *view.scene();

  // Each line of the list selects its epic and brings its bar into sight.
  auto* issues = view.findChild<QListWidget*>("roadmapIssues");
  QVERIFY(issues->count() >= 4);
  for (int row = 0; row < issues->count(); ++row) {
    issues->setCurrentRow(row);
    const std::optional<Uuid> epic = Uuid::parse(issues->item(row)->data(Qt::UserRole).toString().toStdString());
    QCOMPARE(scene.selectedEpic(), epic);
    const QRectF visible = view.timeline()->mapToScene(view.timeline()->viewport()->rect()).boundingRect();
    QVERIFY(visible.intersects(scene.bar(*epic)->sceneBoundingRect()));
  }

  // Chosen again after another epic was picked on the time line.
  const std::optional<Uuid> last = scene.selectedEpic();
  scene.selectEpic(f.snapshot(project).epics.front().id);
  QTest::mouseClick(issues->viewport(), Qt::LeftButton, Qt::NoModifier,
                    issues->visualItemRect(issues->currentItem()).center());
  QCOMPARE(scene.selectedEpic(), last);

  const Epic epic = f.snapshot(project).epics.at(5);
  EpicBarItem* bar = scene.bar(epic.id);
  view.selectEpic(epic.id);
  const QPoint middle = view.timeline()->mapFromScene(QPointF((bar->startX() + bar->p50X()) / 2, bar->centreY()));
  QTest::mouseDClick(view.timeline()->viewport(), Qt::LeftButton, Qt::NoModifier, middle);
  auto* dialog = view.findChild<QDialog*>("roadmapEpicDialog");
  QVERIFY(dialog != nullptr);
  QCOMPARE(dialog->findChild<QLineEdit*>("name")->text(), QString::fromStdString(epic.name));
  dialog->close();
}

void RoadmapViewTest::saysWhatToDoWithoutEpics() {
  AppFixture f;
  const Uuid empty = f.board().createProject("Plain", std::string_view("PLN"), f.clock).id;
  RoadmapView view(*f.context, nullptr);
  view.showProject(empty);
  view.reloadNow();
  QVERIFY(!view.isComputing());
  QVERIFY(view.findChild<QLabel*>("roadmapEmpty")->text().startsWith("No epics yet."));
  // An epic appears: the time line follows the store.
  f.context->perform(
      "New epic", [&](BoardService& s) { s.createEpic(empty, "First", std::nullopt, std::nullopt); }, nullptr);
  view.reloadNow();
  settle(view);
  QCOMPARE(view.scene()->bars().size(), std::size_t{1});
  QVERIFY(view.scene()->bars().front()->isDone());
  // Another project: nothing of this one stays on screen while it is scheduled.
  const Uuid demo = f.board().loadDemoProject(f.clock).id;
  view.showProject(demo);
  view.reloadNow();
  QVERIFY(view.isComputing());
  QCOMPARE(view.findChild<QStackedWidget*>()->currentWidget(), view.findChild<QLabel*>("roadmapEmpty"));
  QCOMPARE(view.findChild<QLabel*>("roadmapEmpty")->text(), QStringLiteral("Scheduling the epics…"));
  settle(view);
  QCOMPARE(view.scene()->bars().size(), f.snapshot(demo).epics.size());
}

QTEST_MAIN(RoadmapViewTest)
#include "RoadmapViewTest.moc"
