#include "cli/pdf/QtReportPdf.h"

#include <QApplication>
#include <memory>

#include "app/reports/ReportContent.h"
#include "app/reports/ReportDocument.h"
#include "app/settings/BrandingSettings.h"

namespace orvane::cli {
namespace {

void ensureApplication() {
  if (QCoreApplication::instance() != nullptr) return;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // The command speaks in its own sentences: Qt's notes about the platform
  // (no runtime folder, no display) are not the user's concern.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  static int argc = 1;
  static char name[] = "orvane-cli";
  static char* argv[] = {name, nullptr};
  // The branding is the desktop application's setting: read it where it
  // stores it.
  QApplication::setApplicationName(QStringLiteral("orvane"));
  QApplication::setOrganizationName(QStringLiteral("orvane"));
  // Kept for the rest of the run; never torn down among the statics.
  static auto* application = new QApplication(argc, argv);
  (void)application;
}

}  // namespace

std::string renderReportPdfWithQt(const ReportPdfJob& job) {
  ensureApplication();
  const auto audience = app::audienceNamed(job.audience).value_or(app::ReportAudience::client);
  const app::ReportReading reading =
      app::readReport(job.forecasts, std::make_shared<const ProjectSnapshot>(job.project), audience,
                      app::ReportPeriod{job.from, job.to}, job.now, job.calendar);
  const QByteArray pdf = app::reportPdf(app::computeReport(reading), app::storedBranding());
  return pdf.toStdString();
}

}  // namespace orvane::cli
