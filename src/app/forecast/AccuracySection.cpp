#include "app/forecast/AccuracySection.h"

#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <cmath>

#include "app/forecast/ForecastTables.h"

namespace orvane::app {
namespace {

QLabel* subheading(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * 1.15);
  font.setBold(true);
  label->setFont(font);
  return label;
}

QLabel* emptyState(const QString& name, const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setWordWrap(true);
  label->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  return label;
}

QTableWidget* calibrationTable(const QString& name, QWidget* parent) {
  QTableWidget* table = forecastTable(name,
                                      {QStringLiteral("Level"), QStringLiteral("Hits"), QStringLiteral("Judged"),
                                       QStringLiteral("Hit rate"), QStringLiteral("Against the level")},
                                      parent);
  // Five short columns read better side by side than spread across a wide window.
  table->setMaximumWidth(560);
  return table;
}

// How far the hit rate is from the level it should match, in points.
QString againstLevel(const CalibrationRow& row) {
  if (row.total == 0) return QStringLiteral("nothing judged yet");
  const double off = row.hitPct() - row.level;
  // Within a twentieth of a point reads as on the level at one decimal.
  if (std::fabs(off) < 0.05) return QStringLiteral("on the level");
  return QStringLiteral("%1 points %2").arg(QString::number(std::fabs(off), 'f', 1), off > 0 ? "above" : "below");
}

void showCalibration(QTableWidget* table, const std::vector<CalibrationRow>& rows) {
  fitRows(table, static_cast<int>(rows.size()));
  for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
    const CalibrationRow& row = rows[static_cast<std::size_t>(r)];
    table->setItem(r, 0, numberCell(QString::number(row.level) + QLatin1Char('%')));
    table->setItem(r, 1, numberCell(QString::number(row.hits)));
    table->setItem(r, 2, numberCell(QString::number(row.total)));
    // Nothing judged has no rate: a 0% there would read as a miss.
    table->setItem(r, 3, numberCell(row.total == 0 ? QStringLiteral("–") : percentText(row.hitPct())));
    table->setItem(r, 4, textCell(againstLevel(row)));
  }
}

}  // namespace

AccuracySection::AccuracySection(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("accuracySection"));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(8);

  column->addWidget(subheading(QStringLiteral("“When will it be done?” forecasts"), this));
  whenEmpty_ = emptyState(QStringLiteral("whenAccuracyEmpty"),
                          QStringLiteral("No “When” forecast is logged yet. Log one on the Forecast tab: it is judged "
                                         "once the tickets it covered, and those added until they were caught up, "
                                         "are done."),
                          this);
  column->addWidget(whenEmpty_);
  when_ = forecastTable(QStringLiteral("whenOutcomes"),
                        {QStringLiteral("Run on"), QStringLiteral("50%"), QStringLiteral("70%"), QStringLiteral("85%"),
                         QStringLiteral("95%"), QStringLiteral("Backlog then"), QStringLiteral("Added since"),
                         QStringLiteral("Finished on"), QStringLiteral("Verdict")},
                        this);
  column->addWidget(when_);
  whenCalibration_ = calibrationTable(QStringLiteral("whenCalibration"), this);
  column->addWidget(whenCalibration_);

  column->addSpacing(8);
  column->addWidget(subheading(QStringLiteral("“How many by a date?” forecasts"), this));
  byDateEmpty_ =
      emptyState(QStringLiteral("byDateAccuracyEmpty"),
                 QStringLiteral("No logged “How many by a date?” forecast has reached its day yet. One is judged "
                                "once its target day has passed, by the tickets finished from its run to that day."),
                 this);
  column->addWidget(byDateEmpty_);
  byDate_ = forecastTable(QStringLiteral("byDateOutcomes"),
                          {QStringLiteral("Run on"), QStringLiteral("Target"), QStringLiteral("Weeks"),
                           QStringLiteral("50%"), QStringLiteral("70%"), QStringLiteral("85%"), QStringLiteral("95%"),
                           QStringLiteral("Done"), QStringLiteral("Levels reached")},
                          this);
  column->addWidget(byDate_);
  byDateCalibration_ = calibrationTable(QStringLiteral("byDateCalibration"), this);
  column->addWidget(byDateCalibration_);
}

void AccuracySection::showReport(const AccuracyReport& report) {
  showWhen(report);
  showByDate(report);
}

void AccuracySection::showWhen(const AccuracyReport& report) {
  const auto& outcomes = report.whenOutcomes;
  whenEmpty_->setVisible(outcomes.empty());
  when_->setVisible(!outcomes.empty());
  whenCalibration_->setVisible(!outcomes.empty());
  fitRows(when_, static_cast<int>(outcomes.size()));
  for (int r = 0; r < static_cast<int>(outcomes.size()); ++r) {
    const WhenOutcome& o = outcomes[static_cast<std::size_t>(r)];
    when_->setItem(r, 0, textCell(dayText(o.asOf)));
    for (int i = 0; i < 4; ++i)
      when_->setItem(r, 1 + i, textCell(i < static_cast<int>(o.dates.size()) ? dayText(o.dates[i]) : QString()));
    QTableWidgetItem* backlog = numberCell(QString::number(o.backlogThen));
    if (o.leftSince > 0)
      backlog->setToolTip(QStringLiteral("%1 of them since archived or deleted, and judged nowhere.").arg(o.leftSince));
    when_->setItem(r, 5, backlog);
    when_->setItem(r, 6, numberCell(QString::number(o.addedSince)));
    when_->setItem(r, 7, textCell(dayText(o.finishedOn)));
    when_->setItem(r, 8, textCell(QString::fromStdString(o.verdict.label())));
  }
  showCalibration(whenCalibration_, report.whenCalibration);
}

void AccuracySection::showByDate(const AccuracyReport& report) {
  const auto& outcomes = report.byDateOutcomes;
  byDateEmpty_->setVisible(outcomes.empty());
  byDate_->setVisible(!outcomes.empty());
  byDateCalibration_->setVisible(!outcomes.empty());
  fitRows(byDate_, static_cast<int>(outcomes.size()));
  for (int r = 0; r < static_cast<int>(outcomes.size()); ++r) {
    const ByDateOutcome& o = outcomes[static_cast<std::size_t>(r)];
    byDate_->setItem(r, 0, textCell(dayText(o.asOf)));
    byDate_->setItem(r, 1, textCell(dayText(o.target)));
    byDate_->setItem(r, 2, numberCell(QString::number(o.wholeWeeks)));
    for (int i = 0; i < 4; ++i)
      byDate_->setItem(r, 3 + i,
                       numberCell(i < static_cast<int>(o.counts.size()) ? QString::number(o.counts[i]) : QString()));
    byDate_->setItem(r, 7, numberCell(QString::number(o.actual)));
    QStringList reached;
    for (const int level : o.levelsReached()) reached << QString::number(level) + QLatin1Char('%');
    byDate_->setItem(r, 8,
                     textCell(reached.isEmpty() ? QStringLiteral("no level") : reached.join(QStringLiteral(", "))));
  }
  showCalibration(byDateCalibration_, report.byDateCalibration);
}

}  // namespace orvane::app
