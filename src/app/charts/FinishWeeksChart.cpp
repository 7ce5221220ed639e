#include "app/charts/FinishWeeksChart.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QCursor>
#include <QLegend>
#include <QStackedBarSeries>
#include <QToolTip>
#include <QValueAxis>
#include <algorithm>
#include <array>

namespace orvane::app {
namespace {

struct BandLook {
  HistogramBand band;
  const char* name;
  QColor colour;
};

// From the likely to the unlikely: dark to light.
const std::array<BandLook, 5> bandLooks{{
    {HistogramBand::p50, "Within 50%", QColor(0x1f, 0x4e, 0x8c)},
    {HistogramBand::p70, "50% to 70%", QColor(0x2f, 0x74, 0xc0)},
    {HistogramBand::p85, "70% to 85%", QColor(0x5c, 0x9d, 0xe0)},
    {HistogramBand::p95, "85% to 95%", QColor(0x9c, 0xc4, 0xef)},
    {HistogramBand::tail, "Beyond 95%", QColor(0xc8, 0xcf, 0xd8)},
}};

}  // namespace

FinishWeeksChart::FinishWeeksChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("finishWeeksChart"));
  setRenderHint(QPainter::Antialiasing);
  setMinimumHeight(260);
  chart()->setTitle(QStringLiteral("Finish weeks of the simulations"));
  chart()->legend()->setAlignment(Qt::AlignBottom);
  chart()->setMargins(QMargins(4, 4, 4, 4));
}

QString FinishWeeksChart::hoverText(int index) const {
  if (index < 0 || index >= static_cast<int>(bins_.size())) return {};
  const HistogramBin& bin = bins_[static_cast<std::size_t>(index)];
  return QStringLiteral("Week %1, by %2: %3 of the simulations are finished.")
      .arg(bin.period)
      .arg(QString::fromStdString(bin.date.displayText()))
      .arg(QString::number(bin.cumulativePct, 'f', 2) + QLatin1Char('%'));
}

void FinishWeeksChart::showHistogram(const std::vector<HistogramBin>& bins, const std::map<int, double>& levelWeeks,
                                     const std::optional<CivilDate>& committed) {
  bins_ = bins;
  QChart* c = chart();
  c->removeAllSeries();
  for (QAbstractAxis* axis : c->axes()) {
    c->removeAxis(axis);
    delete axis;
  }
  if (bins.empty()) return;

  auto* series = new QStackedBarSeries;
  series->setBarWidth(0.9);
  std::array<QBarSet*, bandLooks.size()> sets{};
  for (std::size_t i = 0; i < bandLooks.size(); ++i) {
    sets[i] = new QBarSet(QString::fromLatin1(bandLooks[i].name));
    sets[i]->setColor(bandLooks[i].colour);
    sets[i]->setBorderColor(bandLooks[i].colour);
  }
  QStringList weeks;
  std::int64_t largest = 0;
  bool committedMarked = false;
  for (const HistogramBin& bin : bins) {
    QString label = QString::number(bin.period);
    QStringList levelsHere;
    for (const auto& [level, weeksNeeded] : levelWeeks)
      if (static_cast<double>(bin.period) >= weeksNeeded && static_cast<double>(bin.period) - 1 < weeksNeeded)
        levelsHere << QString::number(level) + QLatin1Char('%');
    if (committed && !committedMarked && !(bin.date < *committed)) {
      levelsHere << QStringLiteral("committed");
      committedMarked = true;
    }
    if (!levelsHere.isEmpty() && bins.size() <= 40) label += QStringLiteral("<br>") + levelsHere.join(QLatin1Char(' '));
    weeks << label;
    largest = std::max(largest, bin.count);
    for (std::size_t i = 0; i < bandLooks.size(); ++i)
      *sets[i] << (bandLooks[i].band == bin.band ? static_cast<qreal>(bin.count) : 0.0);
  }
  for (std::size_t i = 0; i < bandLooks.size(); ++i) {
    // A band no bin falls in would only add a legend entry for nothing.
    if (sets[i]->sum() > 0) {
      connect(sets[i], &QBarSet::hovered, this, [this](bool entered, int index) {
        if (entered) {
          QToolTip::showText(QCursor::pos(), hoverText(index), this);
        } else {
          QToolTip::hideText();
        }
      });
      series->append(sets[i]);
    } else {
      delete sets[i];
    }
  }
  c->addSeries(series);

  auto* x = new QBarCategoryAxis;
  x->append(weeks);
  x->setTitleText(QStringLiteral("Weeks from today, with the confidence levels reached in each"));
  // Many weeks crowd their numbers together; every label stays but smaller.
  if (weeks.size() > 40) {
    QFont font = x->labelsFont();
    font.setPointSizeF(font.pointSizeF() * 0.7);
    x->setLabelsFont(font);
    x->setLabelsAngle(-90);
  }
  auto* y = new QValueAxis;
  y->setTitleText(QStringLiteral("Simulations"));
  y->setRange(0, static_cast<qreal>(largest) * 1.1);
  y->setLabelFormat(QStringLiteral("%d"));
  y->applyNiceNumbers();
  c->addAxis(x, Qt::AlignBottom);
  c->addAxis(y, Qt::AlignLeft);
  series->attachAxis(x);
  series->attachAxis(y);
}

}  // namespace orvane::app
