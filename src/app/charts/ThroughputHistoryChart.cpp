#include "app/charts/ThroughputHistoryChart.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QDate>
#include <QLegend>
#include <QLocale>
#include <QStackedBarSeries>
#include <QValueAxis>
#include <algorithm>
#include <array>

namespace orvane::app {
namespace {

constexpr std::array<ProvenanceTier, 4> tiers{ProvenanceTier::actual, ProvenanceTier::userEstimated,
                                              ProvenanceTier::systemDefault, ProvenanceTier::carriedForward};

}  // namespace

ThroughputHistoryChart::ThroughputHistoryChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("throughputHistoryChart"));
  setRenderHint(QPainter::Antialiasing);
  setMinimumHeight(240);
  chart()->setTitle(QStringLiteral("Weekly throughput the forecast draws from"));
  chart()->legend()->setAlignment(Qt::AlignBottom);
  chart()->setMargins(QMargins(4, 4, 4, 4));
}

QColor ThroughputHistoryChart::colourOf(ProvenanceTier tier) {
  switch (tier) {
    case ProvenanceTier::actual:
      return {0x1f, 0x4e, 0x8c};
    case ProvenanceTier::userEstimated:
      return {0xd0, 0x8a, 0x1e};
    case ProvenanceTier::systemDefault:
      return {0xa8, 0xb0, 0xbc};
    case ProvenanceTier::carriedForward:
      return {0x7b, 0x5e, 0xa7};
  }
  return Qt::gray;
}

void ThroughputHistoryChart::showHistory(const std::vector<PeriodCount>& history) {
  // A what-if changes the forecast, not the weeks it draws from: moving the
  // slider redraws nothing here.
  if (shown_ && *shown_ == history) return;
  shown_ = history;
  QChart* c = chart();
  c->removeAllSeries();
  for (QAbstractAxis* axis : c->axes()) {
    c->removeAxis(axis);
    delete axis;
  }
  if (history.empty()) return;

  // One set per provenance, stacked: each period holds its count in the set
  // of its provenance and zero in the others, so each bar has one colour.
  auto* series = new QStackedBarSeries;
  std::int64_t highest = 0;
  for (const ProvenanceTier tier : tiers) {
    auto* set =
        new QBarSet(QString::fromUtf8(displayLabel(tier).data(), static_cast<qsizetype>(displayLabel(tier).size())));
    set->setColor(colourOf(tier));
    set->setBorderColor(colourOf(tier));
    for (const PeriodCount& period : history) *set << (period.provenance == tier ? period.count : 0);
    series->append(set);
  }
  QStringList weeks;
  for (const PeriodCount& period : history) {
    highest = std::max(highest, period.count);
    // Day and month only: twelve labels with years do not fit a laptop screen.
    const CivilDate& end = period.window.end;
    weeks << QLocale::c().toString(
        QDate(static_cast<int>(end.year), static_cast<int>(end.month), static_cast<int>(end.day)),
        QStringLiteral("d MMM"));
  }
  series->setBarWidth(0.8);
  c->addSeries(series);

  auto* weeksAxis = new QBarCategoryAxis;
  weeksAxis->append(weeks);
  weeksAxis->setTitleText(QStringLiteral("Week ending"));
  auto* countAxis = new QValueAxis;
  countAxis->setRange(0, static_cast<qreal>(std::max<std::int64_t>(highest, 1)));
  countAxis->setLabelFormat(QStringLiteral("%d"));
  countAxis->applyNiceNumbers();
  countAxis->setTitleText(QStringLiteral("Tickets done"));
  c->addAxis(weeksAxis, Qt::AlignBottom);
  c->addAxis(countAxis, Qt::AlignLeft);
  series->attachAxis(weeksAxis);
  series->attachAxis(countAxis);
}

}  // namespace orvane::app
