#include "app/planning/EpicsView.h"

#include <QAction>
#include <QColor>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "app/forecast/ChanceText.h"
#include "app/planning/EpicDialog.h"
#include "app/planning/MilestoneDialog.h"
#include "app/shell/AppContext.h"
#include "app/widgets/Confirm.h"
#include "app/widgets/ItemIds.h"
#include "app/widgets/RunOutcome.h"
#include "core/forecast/ForecastService.h"
#include "core/reports/ReportData.h"
#include "engine/ForecastResult.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

enum EpicColumn { epicName, epicProgress, epicStart, epicDue, epicStatus, epicP50, epicP85, epicChance, epicWaitsFor };
enum MilestoneColumn { milestoneName, milestoneDate, milestoneEpic, milestoneDone };

QPushButton* button(const QString& text, const char* name, QWidget* parent) {
  auto* made = new QPushButton(text, parent);
  made->setObjectName(QLatin1String(name));
  return made;
}

QString dayText(const std::optional<CivilDate>& day) { return day ? qText(day->displayText()) : QString(); }

std::optional<Uuid> currentId(const QTreeWidget* tree) {
  const QTreeWidgetItem* item = tree->currentItem();
  return item ? idFrom(item->data(0, idRole)) : std::nullopt;
}

void clearForecastCells(QTreeWidgetItem* item) {
  for (const int column : {epicP50, epicP85, epicChance}) {
    item->setText(column, QString());
    item->setToolTip(column, QString());
    item->setData(column, Qt::ForegroundRole, QVariant());
  }
}

// The chance of meeting the due day, coloured as the narrative words it,
// with how far the 85% date lands from that day.
void showChance(QTreeWidgetItem* item, const EpicSchedule& schedule) {
  if (!schedule.chanceByDue) return;
  item->setText(epicChance, chanceText(*schedule.chanceByDue));
  item->setData(epicChance, Qt::ForegroundRole, chanceColour(*schedule.chanceByDue));
  if (!schedule.p85SlipDays) return;
  const std::int64_t slip = *schedule.p85SlipDays;
  const std::int64_t days = slip < 0 ? -slip : slip;
  item->setToolTip(epicChance, slip == 0 ? QStringLiteral("The 85% date is the due day.")
                                         : QStringLiteral("The 85% date is %1 day%2 %3.")
                                               .arg(days)
                                               .arg(days == 1 ? "" : "s")
                                               .arg(slip > 0 ? "late" : "early"));
}

// One epic's row from the roadmap: its dates when work is open, else that
// nothing is left.
void showSchedule(QTreeWidgetItem* item, const EpicSchedule& schedule, bool doneWork, bool inconclusive) {
  clearForecastCells(item);
  if (schedule.p50 && schedule.p85) {
    item->setText(epicP50, qText(schedule.p50->displayText()));
    item->setText(epicP85, qText(schedule.p85->displayText()));
    if (inconclusive) {
      const QString caution = QStringLiteral(
                                  "Some simulations did not finish within %1 weeks; a date at or near that limit is "
                                  "only a lower bound.")
                                  .arg(ForecastSettings::maxPeriods);
      item->setToolTip(epicP50, caution);
      item->setToolTip(epicP85, caution);
    }
  } else {
    item->setText(epicP50, doneWork ? QStringLiteral("Done") : QStringLiteral("Nothing open"));
  }
  showChance(item, schedule);
}

}  // namespace

EpicsView::EpicsView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("epicsView"));

  epics_ = new QTreeWidget(this);
  epics_->setObjectName(QStringLiteral("epics"));
  epics_->setRootIsDecorated(false);
  epics_->setHeaderLabels({QStringLiteral("Epic"), QStringLiteral("Progress"), QStringLiteral("Start"),
                           QStringLiteral("Due"), QStringLiteral("Status"), QStringLiteral("50% by"),
                           QStringLiteral("85% by"), QStringLiteral("Chance by due"), QStringLiteral("Waits for")});
  epics_->headerItem()->setToolTip(epicP50, QStringLiteral("Half of the simulated futures finish the epic by then."));
  epics_->headerItem()->setToolTip(epicP85, QStringLiteral("85% of the simulated futures finish the epic by then."));
  epics_->headerItem()->setToolTip(
      epicChance, QStringLiteral("The share of the simulated futures in which the epic is done by its due date."));
  // Names are read in full; a long list of what an epic waits for gives way
  // first on a small screen (its cell's tooltip holds it all).
  epics_->header()->setStretchLastSection(false);
  epics_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  epics_->header()->setSectionResizeMode(epicWaitsFor, QHeaderView::Stretch);
  connect(epics_, &QTreeWidget::currentItemChanged, this, &EpicsView::fillDependencies);
  connect(epics_, &QTreeWidget::currentItemChanged, this, &EpicsView::updateButtons);
  connect(epics_, &QTreeWidget::itemActivated, this, &EpicsView::editEpic);
  // Double-click edits; the way to the epic's forecast is a button and the
  // row's context menu.
  epics_->setContextMenuPolicy(Qt::ActionsContextMenu);
  auto* forecastAction = new QAction(QStringLiteral("Forecast this epic"), epics_);
  forecastAction->setObjectName(QStringLiteral("forecastEpicAction"));
  connect(forecastAction, &QAction::triggered, this, &EpicsView::forecastEpic);
  auto* editAction = new QAction(QStringLiteral("Edit…"), epics_);
  connect(editAction, &QAction::triggered, this, &EpicsView::editEpic);
  epics_->addActions({forecastAction, editAction});
  empty_ = new QLabel(
      QStringLiteral("No epics yet. An epic groups tickets; give it a due date to make it a milestone."), this);
  empty_->setObjectName(QStringLiteral("emptyEpics"));
  empty_->setWordWrap(true);

  auto* newButton = button(QStringLiteral("New epic…"), "newEpic", this);
  editEpic_ = button(QStringLiteral("Edit…"), "editEpic", this);
  deleteEpic_ = button(QStringLiteral("Delete epic"), "deleteEpic", this);
  forecastEpic_ = button(QStringLiteral("Forecast this epic"), "forecastEpic", this);
  connect(newButton, &QPushButton::clicked, this, &EpicsView::newEpic);
  connect(forecastEpic_, &QPushButton::clicked, this, &EpicsView::forecastEpic);
  connect(editEpic_, &QPushButton::clicked, this, &EpicsView::editEpic);
  connect(deleteEpic_, &QPushButton::clicked, this, &EpicsView::deleteEpic);

  auto* dependencyBox = new QGroupBox(QStringLiteral("Dependencies of the selected epic"), this);
  dependencies_ = new QTreeWidget(dependencyBox);
  dependencies_->setObjectName(QStringLiteral("dependencies"));
  dependencies_->setRootIsDecorated(false);
  dependencies_->setHeaderLabels({QStringLiteral("Waits for")});
  dependencies_->setMaximumHeight(110);
  connect(dependencies_, &QTreeWidget::currentItemChanged, this, &EpicsView::updateButtons);
  predecessor_ = new QComboBox(dependencyBox);
  predecessor_->setObjectName(QStringLiteral("predecessor"));
  addDependency_ = button(QStringLiteral("Add"), "addDependency", dependencyBox);
  removeDependency_ = button(QStringLiteral("Remove"), "removeDependency", dependencyBox);
  connect(addDependency_, &QPushButton::clicked, this, &EpicsView::addDependency);
  connect(removeDependency_, &QPushButton::clicked, this, &EpicsView::removeDependency);
  auto* dependencyLayout = new QVBoxLayout(dependencyBox);
  dependencyLayout->addWidget(dependencies_, 1);
  auto* adding = new QHBoxLayout;
  adding->addWidget(new QLabel(QStringLiteral("Waits for"), dependencyBox));
  adding->addWidget(predecessor_, 1);
  adding->addWidget(addDependency_);
  adding->addWidget(removeDependency_);
  dependencyLayout->addLayout(adding);

  auto* milestoneBox = new QGroupBox(QStringLiteral("Milestones"), this);
  milestones_ = new QTreeWidget(milestoneBox);
  milestones_->setObjectName(QStringLiteral("milestones"));
  milestones_->setRootIsDecorated(false);
  milestones_->setHeaderLabels(
      {QStringLiteral("Milestone"), QStringLiteral("Date"), QStringLiteral("Epic"), QStringLiteral("Done")});
  milestones_->header()->setStretchLastSection(false);
  milestones_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  milestones_->header()->setSectionResizeMode(milestoneName, QHeaderView::Stretch);
  connect(milestones_, &QTreeWidget::itemActivated, this, &EpicsView::editMilestone);
  connect(milestones_, &QTreeWidget::currentItemChanged, this, &EpicsView::updateButtons);
  connect(milestones_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
    if (column != milestoneDone) return;
    const std::optional<Uuid> id = idFrom(item->data(0, idRole));
    if (!id) return;
    const bool done = item->checkState(milestoneDone) == Qt::Checked;
    context_.perform(
        done ? QStringLiteral("Mark milestone done") : QStringLiteral("Mark milestone not done"),
        [&](BoardService& s) { s.setMilestone(*id, done, context_.now()); }, this);
  });
  auto* newMilestoneButton = button(QStringLiteral("New milestone…"), "newMilestone", milestoneBox);
  editMilestone_ = button(QStringLiteral("Edit…"), "editMilestone", milestoneBox);
  deleteMilestone_ = button(QStringLiteral("Delete milestone"), "deleteMilestone", milestoneBox);
  connect(newMilestoneButton, &QPushButton::clicked, this, &EpicsView::newMilestone);
  connect(editMilestone_, &QPushButton::clicked, this, &EpicsView::editMilestone);
  connect(deleteMilestone_, &QPushButton::clicked, this, &EpicsView::deleteMilestone);
  auto* milestoneLayout = new QVBoxLayout(milestoneBox);
  milestoneLayout->addWidget(milestones_, 1);
  auto* milestoneButtons = new QHBoxLayout;
  milestoneButtons->addWidget(newMilestoneButton);
  milestoneButtons->addWidget(editMilestone_);
  milestoneButtons->addStretch(1);
  milestoneButtons->addWidget(deleteMilestone_);
  milestoneLayout->addLayout(milestoneButtons);

  auto* top = new QWidget(this);
  auto* topLayout = new QVBoxLayout(top);
  topLayout->setContentsMargins(0, 0, 0, 0);
  auto* epicButtons = new QHBoxLayout;
  epicButtons->addWidget(newButton);
  epicButtons->addWidget(editEpic_);
  epicButtons->addWidget(forecastEpic_);
  epicButtons->addStretch(1);
  epicButtons->addWidget(deleteEpic_);
  topLayout->addLayout(epicButtons);
  topLayout->addWidget(empty_);
  topLayout->addWidget(epics_, 1);
  topLayout->addWidget(dependencyBox);

  auto* splitter = new QSplitter(Qt::Vertical, this);
  splitter->addWidget(top);
  splitter->addWidget(milestoneBox);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(splitter);
  updateButtons();
}

std::optional<Uuid> EpicsView::selectedEpic() const { return currentId(epics_); }
std::optional<Uuid> EpicsView::selectedMilestone() const { return currentId(milestones_); }

void EpicsView::selectEpic(const Uuid& epic) {
  if (QTreeWidgetItem* item = epicItem(epic)) epics_->setCurrentItem(item);
}

QTreeWidgetItem* EpicsView::epicItem(const Uuid& epic) const {
  for (int i = 0; i < epics_->topLevelItemCount(); ++i) {
    if (idFrom(epics_->topLevelItem(i)->data(0, idRole)) == epic) return epics_->topLevelItem(i);
  }
  return nullptr;
}

void EpicsView::reload() {
  shown_ = snapshot();
  const std::optional<Uuid> selected = selectedEpic();
  const std::optional<Uuid> selectedMilestoneId = selectedMilestone();
  {
    const QSignalBlocker blocker(epics_);
    epics_->clear();
  }
  {
    const QSignalBlocker blocker(milestones_);
    milestones_->clear();
  }
  setEnabled(shown_ != nullptr);
  if (!shown_) {
    empty_->hide();
    fillDependencies();
    updateButtons();
    forecastRoadmap();
    return;
  }
  const ProjectSnapshot& s = *shown_;
  {
    const QSignalBlocker blocker(epics_);
    for (const EpicStatusRow& row : epicStatuses(s, context_.now(), context_.calendar())) {
      auto* item = new QTreeWidgetItem(epics_);
      item->setData(0, idRole, idData(row.id));
      item->setText(epicName, qText(row.name));
      if (row.colorHex)
        item->setIcon(epicName, [&] {
          QPixmap swatch(12, 12);
          swatch.fill(QColor(qText(*row.colorHex)));
          return QIcon(swatch);
        }());
      const auto percent = static_cast<int>(row.fraction() * 100.0 + 0.5);
      item->setText(epicProgress,
                    row.total == 0 ? QStringLiteral("No tickets")
                                   : QStringLiteral("%1 of %2 done (%3%)").arg(row.done).arg(row.total).arg(percent));
      item->setToolTip(epicProgress, QStringLiteral("%1 not started, %2 in progress, %3 blocked")
                                         .arg(row.notStarted)
                                         .arg(row.inProgress)
                                         .arg(row.blocked));
      item->setText(epicStart, dayText(row.start));
      item->setText(epicDue, dayText(row.due));
      item->setText(epicStatus, qText(std::string(label(row.status))));
      QStringList waitsFor;
      for (const EpicDependency& dependency : s.epicDependencies) {
        if (dependency.successorId != row.id) continue;
        if (const Epic* predecessor = s.epic(dependency.predecessorId)) waitsFor << qText(predecessor->name);
      }
      waitsFor.sort(Qt::CaseInsensitive);
      item->setText(epicWaitsFor, waitsFor.join(QStringLiteral(", ")));
      item->setToolTip(epicWaitsFor, item->text(epicWaitsFor));
      if (selected == row.id) epics_->setCurrentItem(item);
    }
  }
  if (!epics_->currentItem() && epics_->topLevelItemCount() > 0) {
    const QSignalBlocker blocker(epics_);
    epics_->setCurrentItem(epics_->topLevelItem(0));
  }
  empty_->setVisible(s.epics.empty());
  epics_->setVisible(!s.epics.empty());
  fillDependencies();
  forecastRoadmap();

  const QSignalBlocker blocker(milestones_);
  for (const Milestone& milestone : s.milestones) {
    auto* item = new QTreeWidgetItem(milestones_);
    item->setData(0, idRole, idData(milestone.id));
    item->setText(milestoneName, qText(milestone.name));
    item->setText(milestoneDate, qText(civilDateFromLocal(milestone.date, context_.calendar()).displayText()));
    const Epic* epic = milestone.epicId ? s.epic(*milestone.epicId) : nullptr;
    item->setText(milestoneEpic, epic ? qText(epic->name) : QString());
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(milestoneDone, milestone.isDone() ? Qt::Checked : Qt::Unchecked);
    if (selectedMilestoneId == milestone.id) milestones_->setCurrentItem(item);
  }
  updateButtons();
}

void EpicsView::forecastRoadmap() {
  if (!shown_ || shown_->epics.empty()) {
    roadmapRuns_.skip();
    emit forecastShown();
    return;
  }
  // The input is read here, where the store lives; the simulations touch
  // nothing shared.
  const Outcome<RoadmapForecastInput> input = outcomeOf([this] {
    return ForecastService(context_.store())
        .roadmapInput(shown_->project.id, ForecastService::todayUTC(context_.now()), context_.calendar());
  });
  if (!input.result) {
    roadmapRuns_.skip();
    for (int i = 0; i < epics_->topLevelItemCount(); ++i) {
      clearForecastCells(epics_->topLevelItem(i));
      epics_->topLevelItem(i)->setText(epicP50, input.error);
    }
    emit forecastShown();
    return;
  }
  for (const RoadmapEpicNode& node : input.result->epics) {
    if (QTreeWidgetItem* item = epicItem(node.id)) {
      clearForecastCells(item);
      if (node.open > 0) item->setText(epicP50, QStringLiteral("Forecasting…"));
    }
  }
  roadmapRuns_.start(
      this, [roadmap = *input.result] { return outcomeOf([&] { return roadmap.run(); }); },
      [this](const Outcome<RoadmapForecast>& run) {
        for (int i = 0; i < epics_->topLevelItemCount(); ++i) {
          QTreeWidgetItem* item = epics_->topLevelItem(i);
          const std::optional<Uuid> id = idFrom(item->data(0, idRole));
          if (!run.result) {
            clearForecastCells(item);
            item->setText(epicP50, run.error);
            continue;
          }
          const auto schedule = id ? run.result->epics.find(*id) : run.result->epics.end();
          if (schedule == run.result->epics.end()) continue;
          // The run belongs to this reload (older ones are dropped), so
          // shown_ is the snapshot it was read from.
          const bool doneWork = std::any_of(shown_->tickets.begin(), shown_->tickets.end(), [&](const Ticket& t) {
            return t.epicId == id && !t.isArchived() && !shown_->isOpen(t);
          });
          showSchedule(item, schedule->second, doneWork, run.result->inconclusive);
        }
        emit forecastShown();
      });
}

void EpicsView::forecastEpic() {
  if (const std::optional<Uuid> epic = selectedEpic()) emit forecastRequested(*epic);
}

void EpicsView::updateButtons() {
  const bool epic = selectedEpic().has_value();
  editEpic_->setEnabled(epic);
  forecastEpic_->setEnabled(epic);
  deleteEpic_->setEnabled(epic);
  // Only another epic can be waited for.
  addDependency_->setEnabled(epic && predecessor_->count() > 0);
  predecessor_->setEnabled(addDependency_->isEnabled());
  removeDependency_->setEnabled(currentId(dependencies_).has_value());
  const bool milestone = selectedMilestone().has_value();
  editMilestone_->setEnabled(milestone);
  deleteMilestone_->setEnabled(milestone);
}

void EpicsView::fillDependencies() {
  dependencies_->clear();
  predecessor_->clear();
  const std::optional<Uuid> epic = selectedEpic();
  if (!shown_ || !epic) {
    updateButtons();
    return;
  }
  const ProjectSnapshot& s = *shown_;
  for (const EpicDependency& dependency : s.epicDependencies) {
    if (dependency.successorId != *epic) continue;
    const Epic* predecessor = s.epic(dependency.predecessorId);
    if (!predecessor) continue;
    auto* item = new QTreeWidgetItem(dependencies_);
    item->setText(0, qText(predecessor->name));
    item->setData(0, idRole, idData(dependency.id));
  }
  // Every other epic is offered; the service refuses a loop or a duplicate
  // with its own sentence.
  for (const Epic& other : s.epics)
    if (other.id != *epic) predecessor_->addItem(qText(other.name), idData(other.id));
  updateButtons();
}

void EpicsView::newEpic() {
  if (!project()) return;
  const Uuid projectId = *project();
  auto* dialog = new EpicDialog(
      context_.calendar(), shown_ ? shown_->epics : std::vector<Epic>{}, std::nullopt,
      [this, projectId](const EpicDialog::Values& v, QWidget* alertParent) {
        // One step: the epic is created and given the rest of its fields.
        return context_.perform(
            QStringLiteral("New epic"),
            [&](BoardService& s) {
              const Epic epic = s.createEpic(projectId, v.name, v.colorHex, v.dueDate);
              if (v.startDate || !v.details.empty())
                s.updateEpic(epic.id, v.name, v.details, v.startDate, v.dueDate, v.colorHex);
            },
            alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void EpicsView::editEpic() {
  const std::optional<Uuid> id = selectedEpic();
  if (!shown_ || !id) return;
  const Epic* epic = shown_->epic(*id);
  if (!epic) return;
  auto* dialog = new EpicDialog(
      context_.calendar(), shown_->epics, *epic,
      [this, id = *id](const EpicDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("Edit epic"),
            [&](BoardService& s) { s.updateEpic(id, v.name, v.details, v.startDate, v.dueDate, v.colorHex); },
            alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void EpicsView::deleteEpic() {
  const std::optional<Uuid> id = selectedEpic();
  if (!id) return;
  confirm(this, QStringLiteral("confirmDeleteEpic"), QStringLiteral("Delete this epic?"),
          QStringLiteral("Its tickets stay on the board without an epic."), QStringLiteral("Delete"), [this, id = *id] {
            context_.perform(
                QStringLiteral("Delete epic"), [&](BoardService& s) { s.deleteEpic(id); }, this);
          });
}

void EpicsView::addDependency() {
  const std::optional<Uuid> successor = selectedEpic();
  const std::optional<Uuid> predecessor = idFrom(predecessor_->currentData());
  if (!successor || !predecessor) return;
  context_.perform(
      QStringLiteral("Add dependency"),
      [&](BoardService& s) { s.addEpicDependency(*successor, *predecessor, context_.now()); }, this);
}

void EpicsView::removeDependency() {
  const std::optional<Uuid> dependency = currentId(dependencies_);
  if (!dependency) return;
  context_.perform(
      QStringLiteral("Remove dependency"), [&](BoardService& s) { s.removeEpicDependency(*dependency); }, this);
}

void EpicsView::newMilestone() {
  if (!shown_ || !project()) return;
  const Uuid projectId = *project();
  auto* dialog = new MilestoneDialog(
      context_.calendar(), shown_->epics, std::nullopt, context_.now(),
      [this, projectId](const MilestoneDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("New milestone"),
            [&](BoardService& s) { s.createMilestone(projectId, v.name, v.date, v.epic, v.details); }, alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void EpicsView::editMilestone() {
  const std::optional<Uuid> id = selectedMilestone();
  if (!shown_ || !id) return;
  const auto found = std::find_if(shown_->milestones.begin(), shown_->milestones.end(),
                                  [&](const Milestone& m) { return m.id == *id; });
  if (found == shown_->milestones.end()) return;
  auto* dialog = new MilestoneDialog(
      context_.calendar(), shown_->epics, *found, found->date,
      [this, id = *id](const MilestoneDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("Edit milestone"),
            [&](BoardService& s) { s.updateMilestone(id, v.name, v.date, v.epic, v.details); }, alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void EpicsView::deleteMilestone() {
  const std::optional<Uuid> id = selectedMilestone();
  if (!id) return;
  context_.perform(
      QStringLiteral("Delete milestone"), [&](BoardService& s) { s.deleteMilestone(*id); }, this);
}

}  // namespace orvane::app
