#include "app/forecast/ForecastLogPage.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTableWidget>
#include <QVBoxLayout>

#include "app/charts/ForecastHistoryChart.h"
#include "app/forecast/AccuracySection.h"
#include "app/forecast/ForecastTables.h"
#include "app/shell/AppContext.h"
#include "app/widgets/Confirm.h"
#include "core/accuracy/ForecastAccuracy.h"
#include "core/forecast/ForecastService.h"

namespace orvane::app {
namespace {

enum LogColumn { runOn, kind, backlog, whatIf, p50, p70, p85, p95, target, commitment, chance, note, columnCount };

QLabel* heading(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * 1.3);
  font.setBold(true);
  label->setFont(font);
  return label;
}

QLabel* hint(const QString& name, const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setWordWrap(true);
  label->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  return label;
}

QString whatIfText(double percent) {
  return (percent > 0 ? QStringLiteral("+") : QString()) + QString::number(percent) + QLatin1Char('%');
}

}  // namespace

ForecastLogPage::ForecastLogPage(AppContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName(QStringLiteral("forecastLogPage"));
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(24, 16, 24, 16);
  column->setSpacing(10);

  column->addWidget(heading(QStringLiteral("Forecast log"), page));
  logEmpty_ = hint(QStringLiteral("forecastLogEmpty"),
                   QStringLiteral("No forecast is logged yet. On the Forecast tab, “Log this forecast…” keeps the "
                                  "forecast on screen here, with a note, to compare and judge it later."),
                   page);
  column->addWidget(logEmpty_);
  log_ = forecastTable(
      QStringLiteral("forecastLog"),
      {QStringLiteral("Run on"), QStringLiteral("Kind"), QStringLiteral("Backlog"), QStringLiteral("What-if"),
       QStringLiteral("50%"), QStringLiteral("70%"), QStringLiteral("85%"), QStringLiteral("95%"),
       QStringLiteral("Target"), QStringLiteral("Commitment"), QStringLiteral("Chance"), QStringLiteral("Note")},
      page);
  log_->horizontalHeaderItem(chance)->setToolTip(
      QStringLiteral("When: the chance of finishing by the committed date. "
                     "By date: the chance that the whole backlog is done by the target."));
  log_->horizontalHeaderItem(p50)->setToolTip(
      QStringLiteral("When: the finish date at each level. By date: the tickets done by the target."));
  // Only the note's cells are editable (their flags say so).
  log_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                        QAbstractItemView::SelectedClicked);
  column->addWidget(log_);
  connect(log_, &QTableWidget::itemChanged, this, &ForecastLogPage::noteEdited);
  connect(log_, &QTableWidget::itemSelectionChanged, this, &ForecastLogPage::updateButtons);

  auto* buttons = new QHBoxLayout;
  editNote_ = new QPushButton(QStringLiteral("Edit note"), page);
  editNote_->setObjectName(QStringLiteral("editForecastNote"));
  delete_ = new QPushButton(QStringLiteral("Delete…"), page);
  delete_->setObjectName(QStringLiteral("deleteForecast"));
  buttons->addWidget(editNote_);
  buttons->addWidget(delete_);
  buttons->addStretch(1);
  column->addLayout(buttons);
  connect(editNote_, &QPushButton::clicked, this, [this] {
    const QList<QTableWidgetItem*> selected = log_->selectedItems();
    if (!selected.isEmpty()) log_->editItem(log_->item(selected.front()->row(), note));
  });
  connect(delete_, &QPushButton::clicked, this, &ForecastLogPage::deleteSelected);

  column->addSpacing(12);
  column->addWidget(heading(QStringLiteral("Forecast history"), page));
  historyEmpty_ = hint(QStringLiteral("forecastHistoryEmpty"),
                       QStringLiteral("Log a “When will it be done?” forecast on the Forecast tab to start its "
                                      "history: each logged run adds its 50%, 85% and 95% dates here, so you see "
                                      "whether the date is slipping."),
                       page);
  column->addWidget(historyEmpty_);
  history_ = new ForecastHistoryChart(page);
  column->addWidget(history_);

  column->addSpacing(12);
  column->addWidget(heading(QStringLiteral("Accuracy"), page));
  column->addWidget(hint(QStringLiteral("accuracyHint"),
                         QStringLiteral("Each logged forecast set against what happened. A level is well calibrated "
                                        "when its hit rate is close to it: about 85% of forecasts should finish by "
                                        "their 85% date."),
                         page));
  accuracy_ = new AccuracySection(page);
  column->addWidget(accuracy_);
  column->addStretch(1);

  auto* scroll = new QScrollArea(this);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(page);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroll);
  updateButtons();
}

void ForecastLogPage::showProject(const ProjectSnapshot* project, Timestamp now) {
  // Without a project the page shows its empty states.
  const ProjectSnapshot none;
  const ProjectSnapshot& shown = project != nullptr ? *project : none;
  showLog(shown);
  const std::vector<ForecastHistoryPoint> history = forecastHistory(shown);
  historyEmpty_->setVisible(history.empty());
  history_->setVisible(!history.empty());
  history_->showHistory(history);
  accuracy_->showReport(accuracyReport(shown, now));
}

void ForecastLogPage::showLog(const ProjectSnapshot& project) {
  const std::optional<Uuid> keep = selectedRecord();
  filling_ = true;
  const auto& records = project.forecasts;
  logEmpty_->setVisible(records.empty());
  log_->setVisible(!records.empty());
  fitRows(log_, static_cast<int>(records.size()));
  int reselect = -1;
  for (int r = 0; r < static_cast<int>(records.size()); ++r) {
    const ForecastRecord& record = records[static_cast<std::size_t>(r)];
    const bool byDate = record.kind() == ForecastKind::byDate;
    QTableWidgetItem* first = textCell(dayText(record.asOfDay));
    first->setData(Qt::UserRole, QString::fromStdString(record.id.text()));
    log_->setItem(r, runOn, first);
    log_->setItem(r, kind, textCell(byDate ? QStringLiteral("By date") : QStringLiteral("When")));
    log_->setItem(r, backlog, numberCell(QString::number(record.backlog)));
    log_->setItem(r, whatIf, numberCell(whatIfText(record.whatIfPercent)));
    for (std::size_t i = 0; i < 4; ++i) {
      const int cell = p50 + static_cast<int>(i);
      if (byDate) {
        log_->setItem(r, cell,
                      numberCell(i < record.resultCounts.size() ? QString::number(record.resultCounts[i]) : QString()));
      } else {
        log_->setItem(r, cell, textCell(i < record.resultDays.size() ? dayText(record.resultDays[i]) : QString()));
      }
    }
    log_->setItem(r, target, textCell(record.targetDay ? dayText(*record.targetDay) : QString()));
    log_->setItem(r, commitment, textCell(record.commitmentDay ? dayText(*record.commitmentDay) : QString()));
    log_->setItem(r, chance, numberCell(record.confidencePct ? percentText(*record.confidencePct) : QString()));
    auto* noteCell = new QTableWidgetItem(QString::fromStdString(record.note));
    noteCell->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable);
    noteCell->setToolTip(QStringLiteral("Double-click to edit the note."));
    log_->setItem(r, note, noteCell);
    if (record.inconclusive) {
      for (int c = p50; c <= p95; ++c)
        log_->item(r, c)->setToolTip(
            QStringLiteral("Inconclusive: some simulations did not finish in time; the "
                           "later levels are only lower bounds."));
    }
    if (keep && record.id == *keep) reselect = r;
  }
  if (reselect >= 0) log_->selectRow(reselect);
  filling_ = false;
  updateButtons();
}

std::optional<Uuid> ForecastLogPage::selectedRecord() const {
  const QList<QTableWidgetItem*> selected = log_->selectedItems();
  if (selected.isEmpty()) return std::nullopt;
  const QTableWidgetItem* first = log_->item(selected.front()->row(), runOn);
  if (first == nullptr) return std::nullopt;
  return Uuid::parse(first->data(Qt::UserRole).toString().toStdString());
}

void ForecastLogPage::updateButtons() {
  const bool chosen = selectedRecord().has_value();
  editNote_->setEnabled(chosen);
  delete_->setEnabled(chosen);
}

void ForecastLogPage::noteEdited(QTableWidgetItem* item) {
  if (filling_ || item->column() != note) return;
  const QTableWidgetItem* first = log_->item(item->row(), runOn);
  if (first == nullptr) return;
  const std::optional<Uuid> record = Uuid::parse(first->data(Qt::UserRole).toString().toStdString());
  if (!record) return;
  const std::string text = item->text().toStdString();
  // After the editor has closed: the store change refills this table, which
  // must not happen under the item being committed.
  QMetaObject::invokeMethod(
      this,
      [this, id = *record, text] {
        const bool saved = context_.perform(
            QStringLiteral("Edit forecast note"),
            [&](BoardService&) { ForecastService(context_.store()).updateNote(id, text); }, this);
        // A refused edit (the run is gone) shows the stored notes again.
        if (!saved) context_.notifyStoreChanged();
      },
      Qt::QueuedConnection);
}

void ForecastLogPage::deleteSelected() {
  const std::optional<Uuid> record = selectedRecord();
  if (!record) return;
  confirm(this, QStringLiteral("confirmDeleteForecast"), QStringLiteral("Delete this logged forecast?"),
          QStringLiteral("It leaves the forecast log, the history chart and the accuracy report. Undo brings it "
                         "back."),
          QStringLiteral("Delete"), [this, id = *record] {
            context_.perform(
                QStringLiteral("Delete logged forecast"),
                [&](BoardService&) { ForecastService(context_.store()).deleteRecord(id); }, this);
          });
}

}  // namespace orvane::app
