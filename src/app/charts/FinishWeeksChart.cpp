#include "app/charts/FinishWeeksChart.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QCursor>
#include <QLegend>
#include <QLegendMarker>
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
  // Bars are upright rectangles: sharp without antialiasing, and quicker
  // to draw as the what-if moves.
  setRenderHint(QPainter::Antialiasing, false);
  setMinimumHeight(260);
  QChart* c = chart();
  c->setTitle(QStringLiteral("Finish weeks of the simulations"));
  c->legend()->setAlignment(Qt::AlignBottom);
  c->setMargins(QMargins(4, 4, 4, 4));

  series_ = new QStackedBarSeries;
  series_->setBarWidth(0.9);
  for (std::size_t i = 0; i < bandLooks.size(); ++i) {
    bands_[i] = new QBarSet(QString::fromLatin1(bandLooks[i].name));
    bands_[i]->setColor(bandLooks[i].colour);
    bands_[i]->setBorderColor(bandLooks[i].colour);
    connect(bands_[i], &QBarSet::hovered, this, [this](bool entered, int index) {
      if (entered) {
        QToolTip::showText(QCursor::pos(), hoverText(index), this);
      } else {
        QToolTip::hideText();
      }
    });
    series_->append(bands_[i]);
  }
  c->addSeries(series_);
  weeksAxis_ = new QBarCategoryAxis;
  weeksAxis_->setTitleText(QStringLiteral("Weeks from today, with the confidence levels reached in each"));
  countAxis_ = new QValueAxis;
  countAxis_->setTitleText(QStringLiteral("Simulations"));
  countAxis_->setLabelFormat(QStringLiteral("%d"));
  c->addAxis(weeksAxis_, Qt::AlignBottom);
  c->addAxis(countAxis_, Qt::AlignLeft);
  series_->attachAxis(weeksAxis_);
  series_->attachAxis(countAxis_);
  series_->setVisible(false);
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
  std::array<QList<qreal>, bandLooks.size()> values;
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
      values[i] << (bandLooks[i].band == bin.band ? static_cast<qreal>(bin.count) : 0.0);
  }

  const QList<QLegendMarker*> markers = chart()->legend()->markers(series_);
  for (std::size_t i = 0; i < bandLooks.size(); ++i) {
    QBarSet* set = bands_[i];
    if (set->count() == values[i].size()) {
      // Same weeks: only the changed heights are replaced.
      for (int k = 0; k < values[i].size(); ++k)
        if (set->at(k) != values[i][k]) set->replace(k, values[i][k]);
    } else {
      set->remove(0, set->count());
      set->append(values[i]);
    }
    // A band no bin falls in would only add a legend entry for nothing.
    if (i < static_cast<std::size_t>(markers.size())) markers[static_cast<qsizetype>(i)]->setVisible(set->sum() > 0);
  }
  series_->setVisible(!bins.empty());
  if (weeksAxis_->categories() != weeks) weeksAxis_->setCategories(weeks);
  // Many weeks crowd their numbers together; every label stays but smaller.
  const bool crowded = weeks.size() > 40;
  if (crowded != (weeksAxis_->labelsAngle() != 0)) {
    QFont font = weeksAxis_->labelsFont();
    font.setPointSizeF(crowded ? font.pointSizeF() * 0.7 : font.pointSizeF() / 0.7);
    weeksAxis_->setLabelsFont(font);
    weeksAxis_->setLabelsAngle(crowded ? -90 : 0);
  }
  countAxis_->setRange(0, static_cast<qreal>(std::max<std::int64_t>(largest, 1)) * 1.1);
  countAxis_->applyNiceNumbers();
}

}  // namespace orvane::app
