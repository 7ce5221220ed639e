#pragma once

#include <QImage>

#include "core/reports/ReportBranding.h"

namespace orvane::app {

// The page footer that `branding` gives, drawn by the very function the
// reports use onto a white strip `width` pixels wide (as page 1 of 3), so
// the settings can show what every page will carry.
QImage footerPreview(const ReportBranding& branding, int width);

}  // namespace orvane::app
