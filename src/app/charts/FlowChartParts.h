#pragma once

#include <QColor>
#include <QString>
#include <string>

#include "engine/CivilDate.h"
#include "engine/Timestamp.h"

class QChart;
class QChartView;
class QCategoryAxis;

namespace orvane::app {

// What the Flow screen's charts share: emptying a chart before a redraw,
// instants and days on a date axis, and the figures as the tiles write them.

// Gives `view` a new, empty chart and deletes the old one once control
// returns to the event loop, so a redraw starts from nothing (removing the
// old series and axes one by one leaves stale axis labels drawn).
QChart* freshChart(QChartView* view);

// Days since 1970 (fractional for an instant) as the x of a time axis; a day
// is placed at its UTC midnight. Counting in UTC days keeps the axis free of
// the machine's time zone.
qreal axisDays(Timestamp instant);
qreal axisDays(CivilDate day);

// An x axis over the days from...to whose labels ("5 Mar") sit on a few
// days, the last on `to`, at most about six of them.
QCategoryAxis* dayAxis(CivilDate from, CivilDate to, const QString& title);

QString qtext(const std::string& text);

// A chart view that draws smoothly, with an empty chart from freshChart().
void prepareFlowChart(QChartView* view, int minimumHeight);

}  // namespace orvane::app
