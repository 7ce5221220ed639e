#include "app/settings/FooterPreview.h"

#include <QPainter>
#include <cmath>

#include "app/reports/PageFooter.h"

namespace orvane::app {

QImage footerPreview(const ReportBranding& branding, int width) {
  // The height depends on the device's resolution, so measure on a scratch
  // image of the same kind first.
  QImage probe(1, 1, QImage::Format_ARGB32_Premultiplied);
  qreal height = 0;
  {
    QPainter measuring(&probe);
    height = pageFooterHeight(measuring);
  }
  const int margin = 12;
  QImage image(width, static_cast<int>(std::ceil(height)) + 2 * margin, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  drawPageFooter(painter, QRectF(margin, margin, width - 2 * margin, height), branding, 1, 3);
  return image;
}

}  // namespace orvane::app
