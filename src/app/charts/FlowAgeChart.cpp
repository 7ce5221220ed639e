#include "app/charts/FlowAgeChart.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QLineSeries>
#include <QStackedBarSeries>
#include <QToolTip>
#include <QValueAxis>
#include <algorithm>
#include <array>

#include "app/charts/FlowChartParts.h"
#include "core/metrics/FlowScreen.h"

namespace orvane::app {
namespace {

struct BandLook {
  FlowAgeChart::Band band;
  const char* name;
  QColor colour;
};

const std::array<BandLook, 3> bandLooks{{
    {FlowAgeChart::Band::within, "Within P85", QColor(0x1f, 0x4e, 0x8c)},
    {FlowAgeChart::Band::past, "Past P85", QColor(0xd0, 0x8a, 0x1e)},
    {FlowAgeChart::Band::pastTwice, "Past twice P85", QColor(0xb3, 0x26, 0x1e)},
}};

}  // namespace

FlowAgeChart::Band FlowAgeChart::bandOf(double ageDays, std::optional<double> p85) {
  if (!p85 || ageDays <= *p85) return Band::within;
  return ageDays <= 2 * *p85 ? Band::past : Band::pastTwice;
}

FlowAgeChart::FlowAgeChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("flowAgeChart"));
  prepareFlowChart(this, 260);
}

QString FlowAgeChart::hoverText(int index) const {
  if (index < 0 || index >= static_cast<int>(ages_.size())) return {};
  const AgePoint& age = ages_[static_cast<std::size_t>(index)];
  return QStringLiteral("%1 %2\nIn progress for %3, since %4")
      .arg(qtext(age.reference), qtext(age.title), qtext(FlowScreen::dayFigure(age.ageDays)),
           qtext(CivilDate::fromUtc(age.startedAt).displayText()));
}

void FlowAgeChart::showAges(const std::vector<AgePoint>& ages, std::optional<double> p85) {
  ages_ = ages;
  QChart* c = freshChart(this);
  if (ages.empty()) return;

  // One set per band, stacked: each item holds its age in the set of its
  // band and zero in the others, so each bar has one colour.
  auto* bars = new QStackedBarSeries;
  bars->setBarWidth(0.7);
  QStringList references;
  double highest = p85.value_or(1);
  for (const AgePoint& age : ages) {
    references << qtext(age.reference);
    highest = std::max(highest, age.ageDays);
  }
  for (const BandLook& look : bandLooks) {
    auto* set = new QBarSet(QString::fromLatin1(look.name));
    set->setColor(look.colour);
    set->setBorderColor(look.colour);
    for (const AgePoint& age : ages) *set << (bandOf(age.ageDays, p85) == look.band ? age.ageDays : 0.0);
    if (set->sum() <= 0 && look.band != FlowAgeChart::Band::within) {
      delete set;  // a band no item is in would only add a legend entry
      continue;
    }
    connect(set, &QBarSet::hovered, this, [this](bool entered, int index) {
      if (entered) {
        QToolTip::showText(QCursor::pos(), hoverText(index), this);
      } else {
        QToolTip::hideText();
      }
    });
    connect(set, &QBarSet::clicked, this, [this](int index) {
      if (index >= 0 && index < static_cast<int>(ages_.size()))
        emit ticketClicked(ages_[static_cast<std::size_t>(index)].id);
    });
    bars->append(set);
  }
  c->addSeries(bars);

  auto* items = new QBarCategoryAxis;
  items->append(references);
  items->setTitleText(QStringLiteral("Item in progress, oldest first"));
  if (ages.size() > 16) {
    QFont font = items->labelsFont();
    font.setPointSizeF(font.pointSizeF() * 0.75);
    items->setLabelsFont(font);
    items->setLabelsAngle(-90);
  }
  auto* days = new QValueAxis;
  days->setTitleText(QStringLiteral("Days since work started"));
  days->setRange(0, highest * 1.1);
  days->applyNiceNumbers();
  c->addAxis(items, Qt::AlignBottom);
  c->addAxis(days, Qt::AlignLeft);
  bars->attachAxis(items);
  bars->attachAxis(days);

  if (p85) {
    auto* lineAxis = new QValueAxis;
    const auto n = static_cast<qreal>(ages.size());
    lineAxis->setRange(-0.5, n - 0.5);
    lineAxis->setVisible(false);
    c->addAxis(lineAxis, Qt::AlignBottom);
    auto* line = new QLineSeries;
    line->setName(QStringLiteral("P85: %1").arg(qtext(FlowScreen::dayFigure(*p85))));
    line->setPen(QPen(QColor(0x44, 0x44, 0x44), 1.5, Qt::DashLine));
    line->append(-0.5, *p85);
    line->append(n - 0.5, *p85);
    c->addSeries(line);
    line->attachAxis(lineAxis);
    line->attachAxis(days);
  }
}

}  // namespace orvane::app
