#include "app/planning/IterationsView.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "app/forecast/ChanceText.h"
#include "app/planning/IterationCloseDialog.h"
#include "app/planning/IterationDialog.h"
#include "app/shell/AppContext.h"
#include "app/widgets/Confirm.h"
#include "app/widgets/ItemIds.h"
#include "app/widgets/RunOutcome.h"
#include "core/forecast/ForecastService.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

enum IterationColumn {
  nameColumn,
  stateColumn,
  datesColumn,
  ticketsColumn,
  doneColumn,
  openColumn,
  committedColumn,
  finishedColumn,
  carriedOverColumn,
  chanceColumn,
  daysLeftColumn,
  likelyColumn,
  outlookColumn
};

constexpr int likelyLevel = 85;

QString ticketsText(std::int64_t n, const char* noun) {
  return QStringLiteral("%1 %2%3").arg(n).arg(QLatin1String(noun)).arg(n == 1 ? "" : "s");
}

// The forecast in the command line's words, or the refusal's sentence.
QString forecastSentence(const Outcome<IterationForecast>& run) {
  if (!run.result) return run.error;
  const IterationForecast& f = *run.result;
  const QString label = qText(std::string(displayLabel(f.outlook())));
  const QString lastDay = qText(f.lastDay.displayText());
  if (f.open == 0) return label + QStringLiteral(": every ticket of the iteration is done.");
  if (f.daysLeft == 0)
    return QStringLiteral("%1: the last day, %2, has passed with %3.")
        .arg(label, lastDay, ticketsText(f.open, "open ticket"));
  return QStringLiteral("%1: %2 chance that the %3 %4 done by %5, the last day. %6 left, both ends counted.")
      .arg(label, chanceText(f.probabilityPct), ticketsText(f.open, "open ticket"),
           f.open == 1 ? QStringLiteral("is") : QStringLiteral("are"), lastDay, ticketsText(f.daysLeft, "day"));
}

void showIterationForecast(QTreeWidgetItem* item, const Outcome<IterationForecast>& run) {
  if (!run.result) {
    // A refusal reads as the service's sentence where the verdict would be.
    item->setText(outlookColumn, run.error);
    item->setToolTip(outlookColumn, run.error);
    return;
  }
  const IterationForecast& forecast = *run.result;
  const QString outlook = qText(std::string(displayLabel(forecast.outlook())));
  item->setText(chanceColumn, chanceText(forecast.probabilityPct));
  item->setText(outlookColumn, outlook);
  if (forecast.open > 0) {
    // The outlook's thresholds are the narrative's: the same colours.
    item->setData(chanceColumn, Qt::ForegroundRole, chanceColour(forecast.probabilityPct));
    item->setData(outlookColumn, Qt::ForegroundRole, chanceColour(forecast.probabilityPct));
  }
  item->setText(daysLeftColumn, QString::number(forecast.daysLeft));
  const auto likely = forecast.counts.find(likelyLevel);
  // The simulated weeks may finish more than is open; then all of it is
  // likely done.
  if (likely != forecast.counts.end())
    item->setText(likelyColumn, likely->second >= forecast.open
                                    ? QStringLiteral("All %1").arg(forecast.open)
                                    : QStringLiteral("%1 of %2").arg(likely->second).arg(forecast.open));
}

QPushButton* button(const QString& text, const char* objectName, QWidget* parent) {
  auto* made = new QPushButton(text, parent);
  made->setObjectName(QLatin1String(objectName));
  return made;
}

std::optional<Uuid> currentId(const QTreeWidget* tree) {
  const QTreeWidgetItem* item = tree->currentItem();
  return item ? idFrom(item->data(0, idRole)) : std::nullopt;
}

}  // namespace

IterationsView::IterationsView(AppContext& context, QWidget* parent) : ProjectViewBase(context, parent) {
  setObjectName(QStringLiteral("iterationsView"));
  iterations_ = new QTreeWidget(this);
  iterations_->setObjectName(QStringLiteral("iterations"));
  iterations_->setRootIsDecorated(false);
  iterations_->setHeaderLabels({QStringLiteral("Iteration"), QStringLiteral("State"), QStringLiteral("Dates"),
                                QStringLiteral("Tickets"), QStringLiteral("Done"), QStringLiteral("Open"),
                                QStringLiteral("Committed"), QStringLiteral("Finished"), QStringLiteral("Carried over"),
                                QStringLiteral("Chance"), QStringLiteral("Days left"), QStringLiteral("Likely done"),
                                QStringLiteral("Outlook")});
  iterations_->headerItem()->setToolTip(
      chanceColumn, QStringLiteral("The chance that every open ticket is done by the iteration's last day."));
  iterations_->headerItem()->setToolTip(daysLeftColumn, QStringLiteral("Days left, both ends counted."));
  iterations_->headerItem()->setToolTip(
      likelyColumn, QStringLiteral("Open tickets done by the last day, at %1% confidence.").arg(likelyLevel));
  // The outlook comes last and takes the room that is left, so a refusal's
  // sentence does not squeeze the names; the selected iteration's forecast
  // is also written out in full under the table.
  iterations_->header()->setStretchLastSection(true);
  iterations_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  iterations_->header()->setSectionResizeMode(outlookColumn, QHeaderView::Stretch);

  connect(iterations_, &QTreeWidget::currentItemChanged, this, [this] {
    fillTickets();
    updateButtons();
    showSelectedForecast();
  });
  connect(iterations_, &QTreeWidget::itemActivated, this, &IterationsView::editIteration);

  auto* create = button(QStringLiteral("New iteration…"), "newIteration", this);
  edit_ = button(QStringLiteral("Edit…"), "editIteration", this);
  start_ = button(QStringLiteral("Start"), "startIteration", this);
  close_ = button(QStringLiteral("Close…"), "closeIteration", this);
  delete_ = button(QStringLiteral("Delete"), "deleteIteration", this);
  connect(create, &QPushButton::clicked, this, &IterationsView::newIteration);
  connect(edit_, &QPushButton::clicked, this, &IterationsView::editIteration);
  connect(start_, &QPushButton::clicked, this, &IterationsView::startIteration);
  connect(close_, &QPushButton::clicked, this, &IterationsView::closeIteration);
  connect(delete_, &QPushButton::clicked, this, &IterationsView::deleteIteration);

  notice_ = new QLabel(this);
  notice_->setObjectName(QStringLiteral("notice"));
  notice_->setWordWrap(true);
  goal_ = new QLabel(this);
  goal_->setObjectName(QStringLiteral("goal"));
  goal_->setWordWrap(true);
  forecast_ = new QLabel(this);
  forecast_->setObjectName(QStringLiteral("iterationForecast"));
  forecast_->setWordWrap(true);

  tickets_ = new QTreeWidget(this);
  tickets_->setObjectName(QStringLiteral("iterationTickets"));
  tickets_->setRootIsDecorated(false);
  tickets_->setHeaderLabels(
      {QStringLiteral("Ticket"), QStringLiteral("Title"), QStringLiteral("Column"), QStringLiteral("State")});
  tickets_->header()->setSectionResizeMode(1, QHeaderView::Stretch);
  connect(tickets_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
    if (const auto id = idFrom(item->data(0, idRole))) emit openTicketRequested(*id);
  });
  connect(tickets_, &QTreeWidget::currentItemChanged, this, &IterationsView::updateButtons);
  takeOut_ = button(QStringLiteral("Take out of the iteration"), "takeTicketOut", this);
  connect(takeOut_, &QPushButton::clicked, this, &IterationsView::takeTicketOut);
  candidates_ = new QComboBox(this);
  candidates_->setObjectName(QStringLiteral("candidates"));
  add_ = button(QStringLiteral("Add to the iteration"), "addTicket", this);
  connect(add_, &QPushButton::clicked, this, &IterationsView::addTicket);

  auto* top = new QWidget(this);
  auto* topLayout = new QVBoxLayout(top);
  topLayout->setContentsMargins(0, 0, 0, 0);
  auto* buttons = new QHBoxLayout;
  for (QPushButton* b : {create, edit_, start_, close_}) buttons->addWidget(b);
  buttons->addStretch(1);
  buttons->addWidget(delete_);
  topLayout->addLayout(buttons);
  topLayout->addWidget(notice_);
  topLayout->addWidget(iterations_, 1);

  auto* bottom = new QWidget(this);
  auto* bottomLayout = new QVBoxLayout(bottom);
  bottomLayout->setContentsMargins(0, 0, 0, 0);
  bottomLayout->addWidget(goal_);
  bottomLayout->addWidget(forecast_);
  bottomLayout->addWidget(tickets_, 1);
  auto* ticketButtons = new QHBoxLayout;
  ticketButtons->addWidget(candidates_, 1);
  ticketButtons->addWidget(add_);
  ticketButtons->addStretch(1);
  ticketButtons->addWidget(takeOut_);
  bottomLayout->addLayout(ticketButtons);

  auto* splitter = new QSplitter(Qt::Vertical, this);
  splitter->addWidget(top);
  splitter->addWidget(bottom);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(splitter);
  updateButtons();
}

std::optional<Uuid> IterationsView::selectedIteration() const { return currentId(iterations_); }

void IterationsView::selectIteration(const Uuid& iteration) {
  for (int i = 0; i < iterations_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* item = iterations_->topLevelItem(i);
    if (idFrom(item->data(0, idRole)) == iteration) iterations_->setCurrentItem(item);
  }
}

void IterationsView::reload() {
  shown_ = snapshot();
  const std::optional<Uuid> selected = selectedIteration();
  {
    const QSignalBlocker blocker(iterations_);
    iterations_->clear();
    setEnabled(shown_ != nullptr);
    if (shown_) {
      const ProjectSnapshot& s = *shown_;
      for (const Iteration& iteration : s.iterations) {
        auto* item = new QTreeWidgetItem(iterations_);
        item->setData(0, idRole, idData(iteration.id));
        item->setText(nameColumn, qText(iteration.name));
        item->setToolTip(nameColumn, qText(iteration.goal));
        item->setText(stateColumn, qText(std::string(displayLabel(iteration.state()))));
        item->setText(datesColumn,
                      QStringLiteral("%1 – %2").arg(
                          qText(civilDateFromLocal(iteration.startDate, context_.calendar()).displayText()),
                          qText(civilDateFromLocal(iteration.endDate, context_.calendar()).displayText())));
        item->setText(ticketsColumn, QString::number(s.activeTickets(iteration).size()));
        item->setText(doneColumn, QString::number(s.doneTickets(iteration).size()));
        item->setText(openColumn, QString::number(s.openTickets(iteration).size()));
        // The counters are facts of the start and of the close: blank until
        // they happened.
        const IterationState current = iteration.state();
        item->setText(committedColumn,
                      current == IterationState::planned ? QString() : QString::number(iteration.committedCount));
        item->setText(finishedColumn,
                      current == IterationState::closed ? QString::number(iteration.finishedCount) : QString());
        item->setText(carriedOverColumn,
                      current == IterationState::closed ? QString::number(iteration.carriedOverCount) : QString());
        if (selected == iteration.id) iterations_->setCurrentItem(item);
      }
      if (!iterations_->currentItem() && iterations_->topLevelItemCount() > 0) {
        // The active iteration first, as that is the one being worked on.
        const Iteration* active = s.activeIteration();
        iterations_->setCurrentItem(iterations_->topLevelItem(0));
        if (active) selectIteration(active->id);
      }
    }
  }
  // Whatever was said before was about the store as it was, or about
  // another project: start and close put their report back after this.
  notice_->setText(shown_ && shown_->iterations.empty()
                       ? QStringLiteral("No iterations yet. Plan one with New iteration.")
                       : QString());
  fillTickets();
  updateButtons();
  forecastIterations();
}

void IterationsView::forecastIterations() {
  // Inputs are read here, where the store lives; a closed iteration has no
  // forecast.
  forecasts_.clear();
  std::vector<std::pair<Uuid, IterationForecastInput>> inputs;
  if (shown_) {
    ForecastService forecasts(context_.store());
    const CivilDate today = ForecastService::todayUTC(context_.now());
    for (const Iteration& iteration : shown_->iterations) {
      if (iteration.state() == IterationState::closed) continue;
      const Outcome<IterationForecastInput> input =
          outcomeOf([&] { return forecasts.input(iteration, 0, today, context_.calendar()); });
      if (input.result) {
        inputs.emplace_back(iteration.id, *input.result);
      } else {
        forecasts_[iteration.id] = {std::nullopt, input.error};
      }
    }
  }
  for (int i = 0; i < iterations_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* item = iterations_->topLevelItem(i);
    const std::optional<Uuid> id = idFrom(item->data(0, idRole));
    if (!id) continue;
    if (const auto it = forecasts_.find(*id); it != forecasts_.end()) showIterationForecast(item, it->second);
    const bool waiting =
        std::any_of(inputs.begin(), inputs.end(), [&](const auto& input) { return input.first == *id; });
    if (waiting) item->setText(outlookColumn, QStringLiteral("Forecasting…"));
  }
  showSelectedForecast();
  if (inputs.empty()) {
    forecastRuns_.skip();
    emit forecastShown();
    return;
  }
  forecastRuns_.start(
      this,
      [inputs = std::move(inputs)] {
        std::map<Uuid, Outcome<IterationForecast>> runs;
        for (const auto& [id, input] : inputs) runs[id] = outcomeOf([&] { return input.run(); });
        return runs;
      },
      [this](const std::map<Uuid, Outcome<IterationForecast>>& runs) {
        for (int i = 0; i < iterations_->topLevelItemCount(); ++i) {
          QTreeWidgetItem* item = iterations_->topLevelItem(i);
          const std::optional<Uuid> id = idFrom(item->data(0, idRole));
          const auto run = id ? runs.find(*id) : runs.end();
          if (run != runs.end()) showIterationForecast(item, run->second);
        }
        forecasts_.insert(runs.begin(), runs.end());
        showSelectedForecast();
        emit forecastShown();
      });
}

void IterationsView::showSelectedForecast() {
  const std::optional<Uuid> id = selectedIteration();
  const Iteration* iteration = shown_ && id ? shown_->iteration(*id) : nullptr;
  const auto found = id ? forecasts_.find(*id) : forecasts_.end();
  if (found != forecasts_.end()) {
    forecast_->setText(forecastSentence(found->second));
  } else if (iteration && iteration->state() != IterationState::closed) {
    forecast_->setText(QStringLiteral("Forecasting…"));
  } else {
    forecast_->clear();
  }
  forecast_->setVisible(!forecast_->text().isEmpty());
}

void IterationsView::fillTickets() {
  tickets_->clear();
  goal_->clear();
  const std::optional<Uuid> chosen = idFrom(candidates_->currentData());
  candidates_->clear();
  const std::optional<Uuid> id = selectedIteration();
  if (!shown_ || !id) return;
  const ProjectSnapshot& s = *shown_;
  const Iteration* iteration = s.iteration(*id);
  if (!iteration) return;
  // Open work in no other iteration is what planning picks from; the
  // service has the final word (it refuses a closed iteration).
  for (const Ticket& ticket : s.tickets) {
    if (ticket.iterationId || !s.isOpen(ticket)) continue;
    candidates_->addItem(QStringLiteral("%1 %2").arg(qText(s.referenceCode(ticket)), qText(ticket.title)),
                         idData(ticket.id));
  }
  if (chosen) candidates_->setCurrentIndex(std::max(candidates_->findData(idData(*chosen)), 0));
  goal_->setText(iteration->goal.empty() ? QStringLiteral("No goal written.")
                                         : QStringLiteral("Goal: %1").arg(qText(iteration->goal)));
  for (const Ticket& ticket : s.tickets) {
    if (ticket.iterationId != iteration->id) continue;
    auto* item = new QTreeWidgetItem(tickets_);
    item->setData(0, idRole, idData(ticket.id));
    item->setText(0, qText(s.referenceCode(ticket)));
    item->setText(1, qText(ticket.title));
    const BoardColumn* column = ticket.columnId ? s.column(*ticket.columnId) : nullptr;
    item->setText(2, column ? qText(column->name) : QString());
    item->setText(3, ticket.isArchived() ? QStringLiteral("Archived")
                     : s.isOpen(ticket)  ? QStringLiteral("Open")
                                         : QStringLiteral("Done"));
  }
}

void IterationsView::updateButtons() {
  const Iteration* iteration = nullptr;
  if (shown_) {
    if (const auto id = selectedIteration()) iteration = shown_->iteration(*id);
  }
  const std::optional<IterationState> current = iteration ? std::optional(iteration->state()) : std::nullopt;
  // Only what the lifecycle allows is offered; the service still checks.
  edit_->setEnabled(current && current != IterationState::closed);
  start_->setEnabled(current == IterationState::planned);
  close_->setEnabled(current == IterationState::active);
  delete_->setEnabled(current.has_value());
  add_->setEnabled(current && current != IterationState::closed && candidates_->count() > 0);
  candidates_->setEnabled(add_->isEnabled());
  takeOut_->setEnabled(tickets_->currentItem() != nullptr);
}

void IterationsView::newIteration() {
  if (!project()) return;
  const Uuid projectId = *project();
  auto* dialog = new IterationDialog(
      context_.calendar(), shown_ ? shown_->iterations : std::vector<Iteration>{}, std::nullopt, context_.now(),
      [this, projectId](const IterationDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("New iteration"),
            [&](BoardService& s) { s.createIteration(projectId, v.name, v.goal, v.startDate, v.endDate); },
            alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void IterationsView::editIteration() {
  const std::optional<Uuid> id = selectedIteration();
  const Iteration* iteration = shown_ && id ? shown_->iteration(*id) : nullptr;
  if (!iteration || iteration->state() == IterationState::closed) return;
  auto* dialog = new IterationDialog(
      context_.calendar(), shown_->iterations, *iteration, iteration->startDate,
      [this, id = *id](const IterationDialog::Values& v, QWidget* alertParent) {
        return context_.perform(
            QStringLiteral("Edit iteration"),
            [&](BoardService& s) { s.updateIteration(id, v.name, v.goal, v.startDate, v.endDate); }, alertParent);
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void IterationsView::startIteration() {
  const std::optional<Uuid> id = selectedIteration();
  if (!id) return;
  if (context_.perform(
          QStringLiteral("Start iteration"), [&](BoardService& s) { s.startIteration(*id, context_.now()); }, this)) {
    if (const Iteration* started = shown_ ? shown_->iteration(*id) : nullptr)
      notice_->setText(
          QStringLiteral("Started “%1” with %2 committed.").arg(qText(started->name)).arg(started->committedCount));
  }
}

void IterationsView::closeIteration() {
  const std::optional<Uuid> id = selectedIteration();
  const Iteration* iteration = shown_ && id ? shown_->iteration(*id) : nullptr;
  if (!iteration) return;
  auto* dialog = new IterationCloseDialog(
      *shown_, *iteration,
      [this, id = *id, iterationName = qText(iteration->name)](const IterationCarryOver& carryOver,
                                                               QWidget* alertParent) {
        IterationCloseResult result;
        if (!context_.perform(
                QStringLiteral("Close iteration"),
                [&](BoardService& s) { result = s.closeIteration(id, carryOver, context_.now()); }, alertParent))
          return false;
        notice_->setText(QStringLiteral("Closed “%1”: %2 finished, %3 carried over.")
                             .arg(iterationName)
                             .arg(result.finished)
                             .arg(result.carriedOver));
        return true;
      },
      this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

void IterationsView::deleteIteration() {
  const std::optional<Uuid> id = selectedIteration();
  if (!id) return;
  confirm(this, QStringLiteral("confirmDeleteIteration"), QStringLiteral("Delete this iteration?"),
          QStringLiteral("Its tickets stay on the board, in no iteration."), QStringLiteral("Delete"),
          [this, id = *id] {
            context_.perform(
                QStringLiteral("Delete iteration"), [&](BoardService& s) { s.deleteIteration(id); }, this);
          });
}

void IterationsView::addTicket() {
  const std::optional<Uuid> iteration = selectedIteration();
  const std::optional<Uuid> ticket = idFrom(candidates_->currentData());
  if (!iteration || !ticket) return;
  context_.perform(
      QStringLiteral("Add ticket to iteration"), [&](BoardService& s) { s.setIteration(*ticket, *iteration); }, this);
}

void IterationsView::takeTicketOut() {
  const std::optional<Uuid> ticket = currentId(tickets_);
  if (!ticket) return;
  context_.perform(
      QStringLiteral("Take ticket out of iteration"), [&](BoardService& s) { s.setIteration(*ticket, std::nullopt); },
      this);
}

}  // namespace orvane::app
