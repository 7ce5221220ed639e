#include "app/settings/BrandingSettings.h"

#include <QSettings>
#include <QString>

namespace orvane::app {
namespace {

QString key() {
  return QString::fromUtf8(ReportBranding::settingsKey.data(),
                           static_cast<qsizetype>(ReportBranding::settingsKey.size()));
}

}  // namespace

ReportBranding storedBranding() {
  const QVariant record = QSettings().value(key());
  if (!record.isValid()) return ReportBranding::decoded(std::nullopt);
  return ReportBranding::decoded(record.toString().toStdString());
}

void storeBranding(const ReportBranding& branding) {
  QSettings().setValue(key(), QString::fromStdString(branding.encoded()));
}

}  // namespace orvane::app
