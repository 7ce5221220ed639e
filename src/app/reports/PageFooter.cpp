#include "app/reports/PageFooter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QString>

namespace orvane::app {
namespace {

// Footer text is 8 points, whatever the device's resolution.
QFont footerFont(const QPainter& painter) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSizeF(8);
  return QFont(font, painter.device());
}

}  // namespace

qreal pageFooterHeight(const QPainter& painter) {
  const QFontMetricsF metrics(footerFont(painter), painter.device());
  // Two lines of text and a little air above the rule.
  return metrics.lineSpacing() * 2.6;
}

void drawPageFooter(QPainter& painter, const QRectF& area, const ReportBranding& branding, int page, int pages) {
  painter.save();
  const QFont font = footerFont(painter);
  painter.setFont(font);
  const QFontMetricsF metrics(font, painter.device());
  const qreal line = metrics.lineSpacing();
  const qreal top = area.top() + line * 0.5;

  painter.setPen(QPen(QColor(0xc8, 0xcf, 0xd8), 0));
  painter.drawLine(QPointF(area.left(), area.top() + line * 0.2), QPointF(area.right(), area.top() + line * 0.2));
  painter.setPen(QColor(0x44, 0x4b, 0x55));

  // Left: who prepared the report, and how to reach them.
  const QRectF left(area.left(), top, area.width() * 0.6, line * 2);
  QStringList lines;
  if (const auto prepared = branding.preparedByLine()) lines << QString::fromStdString(*prepared);
  if (!branding.contact.empty()) lines << QString::fromStdString(branding.contact).simplified();
  painter.drawText(left, Qt::AlignLeft | Qt::AlignTop, lines.join(QLatin1Char('\n')));

  // Right: the page count over the credit line, the logo before them.
  const QString count = QStringLiteral("Page %1 of %2").arg(page).arg(pages);
  const QString credit = QString::fromStdString(ReportBranding::creditLine());
  const qreal textWidth = std::max(metrics.horizontalAdvance(count), metrics.horizontalAdvance(credit));
  const QRectF right(area.right() - textWidth, top, textWidth, line * 2);
  painter.drawText(right, Qt::AlignRight | Qt::AlignTop, count + QLatin1Char('\n') + credit);
  if (branding.logoPNG) {
    QImage logo;
    if (logo.loadFromData(reinterpret_cast<const uchar*>(branding.logoPNG->data()),
                          static_cast<int>(branding.logoPNG->size()), "PNG") &&
        !logo.isNull()) {
      const qreal height = line * 2;
      const qreal width = height * logo.width() / std::max(1, logo.height());
      painter.drawImage(QRectF(right.left() - line - width, top, width, height), logo);
    }
  }
  painter.restore();
}

}  // namespace orvane::app
