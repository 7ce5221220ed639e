#pragma once

#include <QRectF>

#include "core/reports/ReportBranding.h"

class QPainter;

namespace orvane::app {

// The footer every report and development-pack page carries: the
// prepared-by line and the contact on the left, the logo, "Created with
// Orvane" and "Page N of M" on the right, above a thin rule.

// The height of the footer strip, for the painter's device.
qreal pageFooterHeight(const QPainter& painter);

// Draws the footer into `area` (the strip at the bottom of the page, in the
// painter's coordinates). `page` counts from 1.
void drawPageFooter(QPainter& painter, const QRectF& area, const ReportBranding& branding, int page, int pages);

}  // namespace orvane::app
