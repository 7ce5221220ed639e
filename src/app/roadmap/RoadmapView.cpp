#include "app/roadmap/RoadmapView.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <exception>
#include <map>

#include "app/planning/EpicDialog.h"
#include "app/roadmap/RoadmapItems.h"
#include "app/roadmap/RoadmapScene.h"
#include "app/roadmap/RoadmapTimeline.h"
#include "app/shell/AppContext.h"
#include "app/widgets/ItemIds.h"
#include "core/forecast/ForecastService.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

// What a run in the thread pool hands back: the forecast, or the sentence of
// the error that stopped it.
struct RoadmapRun {
  std::optional<RoadmapForecast> forecast;
  QString error;
};

// Everything read on this thread that the drawing needs with the result.
struct RoadmapReading {
  RoadmapForecastInput input;
  std::vector<EpicScheduleConflict> conflicts;
  std::vector<EpicStatusRow> statuses;
  std::map<Uuid, std::string> milestoneNames;
};

QString thousands(std::int64_t n) {
  QString digits = QString::number(n);
  for (int i = digits.size() - 3; i > 0; i -= 3) digits.insert(i, QLatin1Char(','));
  return digits;
}

}  // namespace

RoadmapView::RoadmapView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("roadmapView"));
  pages_ = new QStackedWidget(this);

  empty_ = new QLabel(this);
  empty_->setObjectName(QStringLiteral("roadmapEmpty"));
  empty_->setWordWrap(true);
  empty_->setAlignment(Qt::AlignCenter);
  empty_->setMargin(40);
  pages_->addWidget(empty_);

  auto* page = new QWidget(this);
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(16, 10, 16, 10);
  column->setSpacing(6);
  auto* top = new QHBoxLayout;
  heading_ = new QLabel(page);
  heading_->setObjectName(QStringLiteral("roadmapHeading"));
  QFont headingFont = heading_->font();
  headingFont.setBold(true);
  heading_->setFont(headingFont);
  top->addWidget(heading_, 1);
  top->addWidget(new QLabel(QStringLiteral("Zoom:"), page));
  zoom_ = new QComboBox(page);
  zoom_->setObjectName(QStringLiteral("roadmapZoom"));
  zoom_->addItem(QStringLiteral("Weeks"), static_cast<int>(RoadmapZoom::weeks));
  zoom_->addItem(QStringLiteral("Months"), static_cast<int>(RoadmapZoom::months));
  zoom_->addItem(QStringLiteral("Quarters"), static_cast<int>(RoadmapZoom::quarters));
  zoom_->setCurrentIndex(1);
  top->addWidget(zoom_);
  column->addLayout(top);
  auto* legend = new QLabel(
      QStringLiteral("Each bar runs from the epic's start (its planned start, or today) to its 50% date, lighter on "
                     "to its 85% date; ◆ is its due date. Arrows lead from an epic to the ones waiting for it; the "
                     "longest chain is outlined. Drag the left end of a bar to change the planned start; "
                     "double-click an epic to edit it."),
      page);
  legend->setObjectName(QStringLiteral("roadmapLegend"));
  legend->setWordWrap(true);
  legend->setStyleSheet(QStringLiteral("color: #555;"));
  column->addWidget(legend);
  inconclusive_ = new QLabel(page);
  inconclusive_->setObjectName(QStringLiteral("roadmapInconclusive"));
  inconclusive_->setWordWrap(true);
  inconclusive_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  column->addWidget(inconclusive_);

  scene_ = new RoadmapScene(this);
  timeline_ = new RoadmapTimeline(scene_, page);
  column->addWidget(timeline_, 1);

  auto* issuesTitle = new QLabel(QStringLiteral("Epics at risk and overlapping plans"), page);
  issuesTitle->setFont(headingFont);
  column->addWidget(issuesTitle);
  issues_ = new QListWidget(page);
  issues_->setObjectName(QStringLiteral("roadmapIssues"));
  issues_->setMaximumHeight(130);
  issues_->setWordWrap(true);
  column->addWidget(issues_);
  pages_->addWidget(page);

  connect(zoom_, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] {
    // The day in the middle of the dates stays in the middle.
    const int room = timeline_->viewport()->width() - static_cast<int>(RoadmapScene::nameColumnWidth);
    const double middle = timeline_->mapToScene(QPoint(0, 0)).x() + RoadmapScene::nameColumnWidth + room / 2.0;
    const CivilDate day = scene_->dayAt(middle);
    draw();
    timeline_->horizontalScrollBar()->setValue(
        static_cast<int>(scene_->xOf(day) - RoadmapScene::nameColumnWidth - room / 2.0));
  });
  // A line selects its epic, also when it is chosen again after a click on
  // the time line.
  const auto choose = [this](QListWidgetItem* item) {
    if (item == nullptr) return;
    if (const std::optional<Uuid> epic = idFrom(item->data(idRole))) selectEpic(*epic);
  };
  connect(issues_, &QListWidget::currentItemChanged, this, choose);
  connect(issues_, &QListWidget::itemClicked, this, choose);
  connect(scene_, &RoadmapScene::epicActivated, this, &RoadmapView::editEpic);
  connect(scene_, &RoadmapScene::startDragged, this, &RoadmapView::moveStart);
  connect(scene_, &QGraphicsScene::selectionChanged, timeline_->viewport(), qOverload<>(&QWidget::update));

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(pages_);
}

RoadmapView::~RoadmapView() = default;

void RoadmapView::showEmpty(const QString& text) {
  runs_.skip();
  picture_.reset();
  drawnFor_.reset();
  empty_->setText(text);
  pages_->setCurrentIndex(0);
  emit roadmapShown();
}

void RoadmapView::reload() {
  shown_ = snapshot();
  if (!shown_) {
    showEmpty(QStringLiteral("Choose a project to see its epics on a time line."));
    return;
  }
  if (shown_->epics.empty()) {
    showEmpty(
        QStringLiteral("No epics yet. Create epics in the Epics view, give them planned starts, due dates and "
                       "dependencies, and this view schedules them on a time line."));
    return;
  }
  // The inputs are read here, where the store lives; the simulations touch
  // nothing shared.
  auto reading = std::make_shared<RoadmapReading>();
  try {
    ForecastService forecasts(context_.store());
    const CivilDate today = ForecastService::todayUTC(context_.now());
    reading->input = forecasts.roadmapInput(*project(), today, context_.calendar());
    reading->conflicts = forecasts.scheduleConflicts(*project(), context_.calendar());
  } catch (const std::exception& error) {
    showEmpty(QString::fromStdString(error.what()));
    return;
  }
  reading->statuses = epicStatuses(*shown_, context_.now(), context_.calendar());
  for (const Milestone& milestone : shown_->milestones) reading->milestoneNames[milestone.id] = milestone.name;
  if (!picture_ || drawnFor_ != shown_->project.id) {
    // Nothing of another project stays on screen meanwhile.
    empty_->setText(QStringLiteral("Scheduling the epics…"));
    pages_->setCurrentIndex(0);
  }

  const RoadmapForecastInput input = reading->input;
  const std::shared_ptr<const ProjectSnapshot> snap = shown_;
  runs_.start(
      this,
      [input] {
        RoadmapRun run;
        try {
          run.forecast = input.run();
        } catch (const std::exception& error) {
          run.error = QString::fromStdString(error.what());
        }
        return run;
      },
      [this, reading, snap](const RoadmapRun& run) {
        if (!run.forecast) {
          showEmpty(run.error);
          return;
        }
        picture_ = roadmapPicture(RoadmapSources{reading->input, *run.forecast, reading->statuses, snap->epics,
                                                 reading->milestoneNames, reading->conflicts});
        heading_->setText(QStringLiteral("Roadmap of “%1” as of %2, %3 simulations per epic.")
                              .arg(QString::fromStdString(snap->project.name),
                                   QString::fromStdString(run.forecast->asOf.displayText()),
                                   thousands(run.forecast->iterations)));
        pages_->setCurrentIndex(1);
        draw();
        if (drawnFor_ != snap->project.id) {
          // A project seen for the first time opens with today in sight.
          drawnFor_ = snap->project.id;
          const double today = scene_->xOf(picture_->today) - RoadmapScene::nameColumnWidth;
          const int room = timeline_->viewport()->width() - static_cast<int>(RoadmapScene::nameColumnWidth);
          timeline_->horizontalScrollBar()->setValue(static_cast<int>(today) - room / 4);
          timeline_->verticalScrollBar()->setValue(0);
        }
        emit roadmapShown();
      });
}

void RoadmapView::draw() {
  if (!picture_) return;
  scene_->showPicture(*picture_, static_cast<RoadmapZoom>(zoom_->currentData().toInt()));
  inconclusive_->setVisible(picture_->inconclusive);
  inconclusive_->setText(QStringLiteral("Inconclusive: some simulations did not finish within %1 weeks; dates at or "
                                        "near that limit are only lower bounds.")
                             .arg(ForecastSettings::maxPeriods));
  const QSignalBlocker quiet(issues_);
  issues_->clear();
  for (const RoadmapIssue& issue : picture_->issues) {
    auto* item = new QListWidgetItem(issue.text, issues_);
    item->setData(idRole, idData(issue.epic));
    item->setForeground(issue.conflict ? QColor(0xa0, 0x68, 0x00) : QColor(0xb3, 0x26, 0x1e));
  }
  if (picture_->issues.empty())
    new QListWidgetItem(QStringLiteral("No epic is at risk, and no dependency's planned dates overlap."), issues_);
}

void RoadmapView::selectEpic(const Uuid& epic) {
  scene_->selectEpic(epic);
  if (EpicBarItem* bar = scene_->bar(epic)) timeline_->reveal(bar->sceneBoundingRect());
  timeline_->viewport()->update();
}

void RoadmapView::editEpic(const Uuid& id) {
  if (!shown_) return;
  const Epic* epic = shown_->epic(id);
  if (!epic) return;
  auto* dialog = new EpicDialog(
      context_.calendar(), shown_->epics, *epic,
      [this, id](const EpicDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("Edit epic"),
            [&](BoardService& s) { s.updateEpic(id, v.name, v.details, v.startDate, v.dueDate, v.colorHex); },
            alertParent);
      },
      this);
  dialog->setObjectName(QStringLiteral("roadmapEpicDialog"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void RoadmapView::moveStart(const Uuid& id, const CivilDate& day) {
  if (!project()) return;
  const Uuid projectId = *project();
  // Everything else of the epic stays as the store holds it now, even if
  // the screen has not caught up with a change yet; a start after the due
  // date is the service's to refuse, in its own words.
  context_.perform(
      QStringLiteral("Change planned start"),
      [&](BoardService& s) {
        const std::optional<ProjectSnapshot> now = s.snapshot(projectId);
        const Epic* epic = now ? now->epic(id) : nullptr;
        if (epic == nullptr) throw MissingRecordError("That epic no longer exists.");
        s.updateEpic(id, epic->name, epic->details, localNoon(day, context_.calendar()), epic->dueDate, epic->colorHex);
      },
      this);
}

}  // namespace orvane::app
