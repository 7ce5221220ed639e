#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "app/reports/ReportContent.h"
#include "core/reports/ReportBranding.h"

class QPagedPaintDevice;

namespace orvane::app {

// A client or internal report drawn from its computed content: laid out
// first, then painted page by page with the footer on every page. Call on
// the thread of the widgets' application object (the charts are widgets).

// Paints on `device` as it is set up (page size and margins); returns the
// page count.
int paintReport(const ReportContent& content, const ReportBranding& branding, QPagedPaintDevice& device);

// The whole report as an A4 PDF file's bytes.
QByteArray reportPdf(const ReportContent& content, const ReportBranding& branding);

// Writes `pdf` to `path` whole, or leaves nothing there: the sentence that
// says why it could not be written, or nothing on success.
std::optional<QString> writeReportFile(const QByteArray& pdf, const QString& path);

// "Website - Client report 2026-03-05.pdf": a file name for the report.
QString reportFileName(const ReportContent& content, const std::string& safeProjectName);

}  // namespace orvane::app
