#pragma once

#include <QByteArray>

#include "core/reports/DevelopmentPack.h"
#include "core/reports/ReportBranding.h"

namespace orvane::app {

// One person's development pack as a PDF: A4, the person's name and the week
// at the top, then every ticket with its reference, title, due date,
// details, checklist, links, comments and linked files. Files that are not
// there are listed under "Missing files", never left out. Every page carries
// the report footer with "Page N of M": the pages are laid out once before
// anything is drawn, so M is known on the first page.
//
// Needs a QGuiApplication (fonts); any platform will do, offscreen included.
QByteArray packPdf(const DevelopmentPacks& set, const DevelopmentPack& pack, const ReportBranding& branding);

}  // namespace orvane::app
