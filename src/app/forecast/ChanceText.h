#pragma once

#include <QColor>
#include <QString>

namespace orvane::app {

// A chance in percent as every screen writes it, with one decimal: "87.5%".
QString chanceText(double pct);

// The colour of the word the forecast narrative uses for a chance: high
// (green) from 85%, moderate (amber) from 50%, low (red) below.
QColor chanceColour(double pct);

}  // namespace orvane::app
