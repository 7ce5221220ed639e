#include "app/forecast/BacktestDialog.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <cmath>
#include <exception>

#include "app/shell/AppContext.h"

namespace orvane::app {
namespace {

constexpr int levels[] = {50, 70, 85, 95};

QDate toQDate(const CivilDate& day) {
  return {static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)};
}

QString counted(std::int64_t n, const char* noun) {
  return QStringLiteral("%1 %2%3").arg(n).arg(QLatin1String(noun)).arg(n == 1 ? "" : "s");
}

QString weeksText(double weeks) {
  return weeks == std::floor(weeks) ? QString::number(static_cast<qint64>(weeks)) : QString::number(weeks, 'f', 1);
}

QLabel* cell(const QString& text, const QString& name, Qt::Alignment alignment, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setAlignment(alignment | Qt::AlignVCenter);
  return label;
}

}  // namespace

BacktestDialog::BacktestDialog(AppContext& context, const Uuid& project, QWidget* parent)
    : QDialog(parent), context_(context), project_(project) {
  setObjectName(QStringLiteral("backtestDialog"));
  setWindowTitle(QStringLiteral("How would this forecast have done?"));
  auto* column = new QVBoxLayout(this);

  auto* intro = new QLabel(
      QStringLiteral("Pick a past day. Orvane forecasts as it would have on that day, from the tickets created by "
                     "then and the work finished before it, and shows when that work was really done."),
      this);
  intro->setWordWrap(true);
  column->addWidget(intro);

  auto* dayRow = new QHBoxLayout;
  dayRow->addWidget(new QLabel(QStringLiteral("Forecast as of:"), this));
  day_ = new QDateEdit(this);
  day_->setObjectName(QStringLiteral("backtestDay"));
  day_->setCalendarPopup(true);
  day_->setDisplayFormat(QStringLiteral("d MMM yyyy"));
  // Any day can be picked: the backtest says why one is refused.
  day_->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
  dayRow->addWidget(day_);
  problem_ = new QLabel(this);
  problem_->setObjectName(QStringLiteral("backtestProblem"));
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  problem_->setWordWrap(true);
  dayRow->addWidget(problem_, 1);
  column->addLayout(dayRow);

  results_ = new QWidget(this);
  auto* results = new QVBoxLayout(results_);
  results->setContentsMargins(0, 8, 0, 0);
  backlog_ = new QLabel(results_);
  backlog_->setObjectName(QStringLiteral("backtestBacklog"));
  backlog_->setWordWrap(true);
  results->addWidget(backlog_);
  auto* grid = new QWidget(results_);
  levels_ = new QGridLayout(grid);
  levels_->setContentsMargins(0, 4, 0, 4);
  levels_->setHorizontalSpacing(24);
  QFont bold = font();
  bold.setBold(true);
  const QStringList headers{QStringLiteral("Confidence"), QStringLiteral("Weeks"), QStringLiteral("Finish date"),
                            QStringLiteral("Actual")};
  for (int c = 0; c < headers.size(); ++c) {
    auto* header = cell(headers[c], QString(), c < 2 ? Qt::AlignRight : Qt::AlignLeft, grid);
    header->setFont(bold);
    levels_->addWidget(header, 0, c);
  }
  for (int row = 0; row < 4; ++row) {
    const QString level = QString::number(levels[row]);
    levels_->addWidget(cell(level + QLatin1Char('%'), QString(), Qt::AlignRight, grid), row + 1, 0);
    levels_->addWidget(cell({}, QStringLiteral("backtest%1Weeks").arg(level), Qt::AlignRight, grid), row + 1, 1);
    levels_->addWidget(cell({}, QStringLiteral("backtest%1Date").arg(level), Qt::AlignLeft, grid), row + 1, 2);
    levels_->addWidget(cell({}, QStringLiteral("backtest%1Met").arg(level), Qt::AlignLeft, grid), row + 1, 3);
  }
  levels_->setColumnStretch(4, 1);
  results->addWidget(grid);
  actual_ = new QLabel(results_);
  actual_->setObjectName(QStringLiteral("backtestActual"));
  actual_->setWordWrap(true);
  results->addWidget(actual_);
  column->addWidget(results_);
  column->addStretch(1);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  column->addWidget(buttons);

  connect(day_, &QDateEdit::dateChanged, this, [this] { run(); });
  setMinimumWidth(560);
  // Twelve weeks back is a forecast old enough to have been judged, often.
  backtest(ForecastService::todayUTC(context_.now()).addingDays(-84));
}

void BacktestDialog::backtest(CivilDate day) {
  {
    const QSignalBlocker quiet(day_);
    day_->setDate(toQDate(day));
  }
  run();
}

void BacktestDialog::run() {
  const QDate date = day_->date();
  const CivilDate day(date.year(), date.month(), date.day());
  try {
    // One simulation of the past: short enough for this thread.
    const Backtest backtest =
        runBacktest(context_.store(), project_, day, ForecastService::todayUTC(context_.now()));
    problem_->clear();
    showBacktest(backtest);
  } catch (const std::exception& error) {
    shown_.reset();
    problem_->setText(QString::fromStdString(error.what()));
    results_->setVisible(false);
  }
}

void BacktestDialog::showBacktest(const Backtest& backtest) {
  shown_ = backtest;
  results_->setVisible(true);
  const WhenForecast& forecast = backtest.forecast;
  backlog_->setText(QStringLiteral("Backlog then: %1 (created by that day and not done before it).")
                        .arg(counted(forecast.backlog, "ticket")));
  const bool dated = forecast.dates.size() == 4;
  for (const int level : levels) {
    const QString name = QString::number(level);
    auto* weeks = findChild<QLabel*>(QStringLiteral("backtest%1Weeks").arg(name));
    auto* date = findChild<QLabel*>(QStringLiteral("backtest%1Date").arg(name));
    auto* met = findChild<QLabel*>(QStringLiteral("backtest%1Met").arg(name));
    weeks->setText(dated ? weeksText(forecast.periods.at(level)) : QString());
    date->setText(dated ? QString::fromStdString(forecast.dates.at(level).displayText()) : QString());
    const auto outcome = backtest.levelsMet.find(level);
    if (outcome == backtest.levelsMet.end()) {
      met->clear();
    } else {
      met->setText(outcome->second ? QStringLiteral("finished in time") : QStringLiteral("missed"));
      met->setStyleSheet(outcome->second ? QStringLiteral("color: #1b7f3b;") : QStringLiteral("color: #b3261e;"));
    }
  }
  if (!dated) {
    actual_->setText(QStringLiteral("There was not enough finished work on that day to give a date."));
  } else if (!backtest.finishedOn) {
    actual_->setText(QStringLiteral("Actual: the work is still open, %1 of %2 tickets still open.")
                         .arg(backtest.stillOpen)
                         .arg(forecast.backlog));
  } else {
    actual_->setText(QStringLiteral("Actual: finished on %1, %2 later.")
                         .arg(QString::fromStdString(backtest.finishedOn->displayText()),
                              counted(backtest.finishedOn->daysSince(forecast.asOf), "day")));
  }
}

}  // namespace orvane::app
