#include "app/forecast/ChanceText.h"

namespace orvane::app {

QString chanceText(double pct) { return QString::number(pct, 'f', 1) + QLatin1Char('%'); }

QColor chanceColour(double pct) {
  if (pct >= 85) return QColor(0x1b, 0x7f, 0x3b);
  return pct >= 50 ? QColor(0xa0, 0x68, 0x00) : QColor(0xb3, 0x26, 0x1e);
}

}  // namespace orvane::app
