#include "app/charts/ForecastHistoryChart.h"

#include <QChart>
#include <QCursor>
#include <QDateTime>
#include <QLegend>
#include <QLineSeries>
#include <QLocale>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <functional>

namespace orvane::app {
namespace {

constexpr qreal dayMs = 86400.0 * 1000.0;

struct LevelLook {
  const char* name;
  QColor colour;
  CivilDate ForecastHistoryPoint::*date;
};

// The same blues as the finish-week bands: darker is likelier.
const std::array<LevelLook, 3> levelLooks{{
    {"50% date", QColor(0x1f, 0x4e, 0x8c), &ForecastHistoryPoint::p50},
    {"85% date", QColor(0x5c, 0x9d, 0xe0), &ForecastHistoryPoint::p85},
    {"95% date", QColor(0x9c, 0xc4, 0xef), &ForecastHistoryPoint::p95},
}};

const QColor commitmentColour(0xb3, 0x26, 0x1e);

QString dayLabel(qreal value) {
  return QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(value)).date(),
                               QStringLiteral("d MMM yyyy"));
}

QLineSeries* lineSeries(const QString& name, const QColor& colour, Qt::PenStyle style) {
  auto* series = new QLineSeries;
  series->setName(name);
  QPen pen(colour, 2.5, style);
  series->setPen(pen);
  // A single run is a point, not a line: the markers keep it visible.
  series->setPointsVisible(true);
  series->setMarkerSize(7);
  return series;
}

}  // namespace

ForecastHistoryChart::ForecastHistoryChart(QWidget* parent) : QChartView(parent) {
  setObjectName(QStringLiteral("forecastHistoryChart"));
  setRenderHint(QPainter::Antialiasing);
  setMinimumHeight(300);
  chart()->setTitle(QStringLiteral("Finish dates of the logged forecasts"));
  chart()->legend()->setAlignment(Qt::AlignBottom);
  chart()->setMargins(QMargins(4, 4, 4, 4));
  runAxis_ = new QDateTimeAxis;
  runAxis_->setTitleText(QStringLiteral("Forecast run on"));
  runAxis_->setFormat(QStringLiteral("d MMM yyyy"));
  finishAxis_ = new QDateTimeAxis;
  finishAxis_->setTitleText(QStringLiteral("Finish date"));
  finishAxis_->setFormat(QStringLiteral("d MMM yyyy"));
  finishAxis_->setTickCount(6);
  chart()->addAxis(runAxis_, Qt::AlignBottom);
  chart()->addAxis(finishAxis_, Qt::AlignLeft);
}

qreal ForecastHistoryChart::dayValue(const CivilDate& day) {
  const QDate date(static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day));
  return static_cast<qreal>(QDateTime(date, QTime(12, 0)).toMSecsSinceEpoch());
}

void ForecastHistoryChart::showHistory(const std::vector<ForecastHistoryPoint>& history) {
  QChart* c = chart();
  c->removeAllSeries();
  runAxis_->setVisible(!history.empty());
  finishAxis_->setVisible(!history.empty());
  if (history.empty()) return;

  qreal firstRun = history.front().runAt.secondsSince1970 * 1000.0;
  qreal lastRun = firstRun;
  qreal earliest = dayValue(history.front().p50);
  qreal latest = earliest;
  const auto widen = [&](qreal day) {
    earliest = std::min(earliest, day);
    latest = std::max(latest, day);
  };
  std::vector<QLineSeries*> all;
  for (const LevelLook& look : levelLooks) {
    QLineSeries* series = lineSeries(QString::fromLatin1(look.name), look.colour, Qt::SolidLine);
    for (const ForecastHistoryPoint& point : history) {
      const qreal run = point.runAt.secondsSince1970 * 1000.0;
      firstRun = std::min(firstRun, run);
      lastRun = std::max(lastRun, run);
      series->append(run, dayValue(point.*look.date));
      widen(dayValue(point.*look.date));
    }
    all.push_back(series);
  }
  // Runs without a committed date leave a gap in no line: the commitment's
  // line joins only the runs that had one.
  QLineSeries* committed = lineSeries(QStringLiteral("Committed date"), commitmentColour, Qt::DashLine);
  for (const ForecastHistoryPoint& point : history) {
    if (!point.commitment) continue;
    committed->append(point.runAt.secondsSince1970 * 1000.0, dayValue(*point.commitment));
    widen(dayValue(*point.commitment));
  }
  if (committed->count() > 0) {
    all.push_back(committed);
  } else {
    delete committed;
  }

  runAxis_->setTickCount(std::clamp(static_cast<int>(history.size()) + 1, 3, 6));
  // A day either side, so a single run, or the first and last, stand clear
  // of the frame.
  runAxis_->setRange(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(firstRun - dayMs)),
                     QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(lastRun + dayMs)));
  finishAxis_->setRange(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(earliest - 3 * dayMs)),
                        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(latest + 3 * dayMs)));
  for (QLineSeries* series : all) {
    c->addSeries(series);
    series->attachAxis(runAxis_);
    series->attachAxis(finishAxis_);
    const QString name = series->name();
    connect(series, &QLineSeries::hovered, this, [name](const QPointF& point, bool state) {
      if (!state) {
        QToolTip::hideText();
        return;
      }
      QToolTip::showText(
          QCursor::pos(),
          QStringLiteral("Run on %1: %2 %3").arg(dayLabel(point.x()), name.toLower(), dayLabel(point.y())));
    });
  }
}

}  // namespace orvane::app
