#pragma once

#include "core/reports/ReportBranding.h"

namespace orvane::app {

// The report branding in the user's settings (QSettings), under
// ReportBranding::settingsKey as the one encoded record. A missing or
// unreadable record reads as empty texts and no logo.
ReportBranding storedBranding();
void storeBranding(const ReportBranding& branding);

}  // namespace orvane::app
