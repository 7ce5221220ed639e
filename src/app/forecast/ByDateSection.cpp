#include "app/forecast/ByDateSection.h"

#include <QDateEdit>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <exception>
#include <optional>

namespace orvane::app {
namespace {

constexpr int levels[] = {50, 70, 85, 95};

// What a run in the thread pool hands back: the forecast, or the sentence of
// the refusal or error that stopped it.
struct ByDateRun {
  std::optional<ByDateForecast> forecast;
  QString error;
};

QDate toQDate(const CivilDate& day) {
  return {static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day)};
}

}  // namespace

ByDateSection::ByDateSection(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("byDateSection"));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 8, 0, 0);
  column->setSpacing(6);

  auto* heading = new QLabel(QStringLiteral("How many by a date?"), this);
  QFont headingFont = heading->font();
  headingFont.setPointSizeF(headingFont.pointSizeF() * 1.3);
  headingFont.setBold(true);
  heading->setFont(headingFont);
  column->addWidget(heading);

  auto* dayRow = new QHBoxLayout;
  dayRow->addWidget(new QLabel(QStringLiteral("Tickets done by:"), this));
  day_ = new QDateEdit(this);
  day_->setObjectName(QStringLiteral("byDateDay"));
  day_->setCalendarPopup(true);
  day_->setDisplayFormat(QStringLiteral("d MMM yyyy"));
  // Any day can be picked: the forecast service says why one is refused.
  day_->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
  dayRow->addWidget(day_);
  problem_ = new QLabel(this);
  problem_->setObjectName(QStringLiteral("byDateProblem"));
  problem_->setStyleSheet(QStringLiteral("color: #b3261e;"));
  dayRow->addSpacing(12);
  dayRow->addWidget(problem_);
  dayRow->addStretch(1);
  column->addLayout(dayRow);
  connect(day_, &QDateEdit::dateChanged, this, [this] { emit targetChanged(); });

  // A higher confidence promises fewer tickets: the rows say so in order.
  weeks_ = new QLabel(this);
  weeks_->setObjectName(QStringLiteral("byDateWeeks"));
  column->addWidget(weeks_);
  results_ = new QWidget(this);
  auto* grid = new QGridLayout(results_);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(28);
  grid->setVerticalSpacing(4);
  QFont bold = font();
  bold.setBold(true);
  auto* confidence = new QLabel(QStringLiteral("Confidence"), results_);
  auto* tickets = new QLabel(QStringLiteral("Tickets done"), results_);
  confidence->setFont(bold);
  tickets->setFont(bold);
  confidence->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  tickets->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  grid->addWidget(confidence, 0, 0);
  grid->addWidget(tickets, 0, 1);
  for (int row = 0; row < 4; ++row) {
    const QString level = QString::number(levels[row]);
    auto* name = new QLabel(level + QLatin1Char('%'), results_);
    name->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* count = new QLabel(results_);
    count->setObjectName(QStringLiteral("byDate%1Count").arg(level));
    count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(name, row + 1, 0);
    grid->addWidget(count, row + 1, 1);
  }
  grid->setColumnStretch(2, 1);
  column->addWidget(results_);
  backlogDone_ = new QLabel(this);
  backlogDone_->setObjectName(QStringLiteral("byDateBacklogDone"));
  backlogDone_->setWordWrap(true);
  column->addWidget(backlogDone_);
  auto* logRow = new QHBoxLayout;
  log_ = new QPushButton(QStringLiteral("Log this forecast…"), this);
  log_->setObjectName(QStringLiteral("logByDate"));
  log_->setEnabled(false);
  logRow->addWidget(log_);
  logRow->addStretch(1);
  column->addLayout(logRow);
  connect(log_, &QPushButton::clicked, this, [this] {
    if (shown_ && !runs_.busy()) emit logRequested();
  });
}

CivilDate ByDateSection::target() const {
  const QDate date = day_->date();
  return CivilDate(date.year(), date.month(), date.day());
}

void ByDateSection::suggestTarget(CivilDate today) {
  if (suggested_) return;
  suggested_ = true;
  // Setting the first day is no choice of the user's: no run for it.
  const QSignalBlocker quiet(day_);
  day_->setDate(toQDate(today).addDays(28));
}

void ByDateSection::run(ForecastInput input) {
  input.target = target();
  runs_.start(
      this,
      [input] {
        ByDateRun result;
        try {
          result.forecast = input.runByDate();
        } catch (const std::exception& error) {
          result.error = QString::fromStdString(error.what());
        }
        return result;
      },
      [this](const ByDateRun& result) {
        if (result.forecast) {
          showResult(*result.forecast);
        } else {
          showProblem(result.error);
        }
        emit shown();
      });
  // Until the new counts arrive, the ones on screen are not this input's.
  log_->setEnabled(false);
}

void ByDateSection::cancelRun() {
  runs_.skip();
  log_->setEnabled(false);
}

void ByDateSection::showRun(CivilDate day, const ByDateForecast& forecast) {
  if (day == target()) showResult(forecast);
}

void ByDateSection::showRefusal(CivilDate day, const QString& sentence) {
  if (day == target()) showProblem(sentence);
}

void ByDateSection::showProblem(const QString& sentence) {
  shown_.reset();
  log_->setEnabled(false);
  problem_->setText(sentence);
  results_->setVisible(false);
  weeks_->clear();
  backlogDone_->clear();
}

void ByDateSection::showResult(const ByDateForecast& forecast) {
  shown_ = forecast;
  log_->setEnabled(true);
  problem_->clear();
  results_->setVisible(true);
  for (const int level : levels) {
    findChild<QLabel*>(QStringLiteral("byDate%1Count").arg(level))->setText(QString::number(forecast.counts.at(level)));
  }
  const auto counted = [](std::int64_t n, const char* noun) {
    return QStringLiteral("%1 %2%3").arg(n).arg(QLatin1String(noun)).arg(n == 1 ? "" : "s");
  };
  weeks_->setText(QStringLiteral("By %1, %2 from %3:")
                      .arg(QString::fromStdString(forecast.target.displayText()),
                           counted(forecast.wholePeriods, "whole week"),
                           QString::fromStdString(forecast.asOf.displayText())));
  backlogDone_->setText(QStringLiteral("Chance that all %1 are done by then: %2%.")
                            .arg(counted(forecast.backlog, "ticket"))
                            .arg(QString::number(forecast.backlogDonePct, 'f', 1)));
}

}  // namespace orvane::app
