#include "app/settings/LogoFile.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>

namespace orvane::app {

std::variant<std::string, LogoProblem> readLogoFile(const QString& path) {
  const QFileInfo info(path);
  const QString name = info.fileName();
  if (!info.isFile()) return LogoProblem{QStringLiteral("\"%1\" is not a file that can be read.").arg(name)};
  // Checked before reading, so a huge file is never loaded only to be refused.
  if (info.size() > maxLogoBytes)
    return LogoProblem{QStringLiteral("\"%1\" is larger than 1 MB. Choose a smaller PNG logo.").arg(name)};
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    return LogoProblem{QStringLiteral("\"%1\" could not be read: %2").arg(name, file.errorString())};
  const QByteArray bytes = file.read(maxLogoBytes + 1);
  if (bytes.size() > maxLogoBytes)
    return LogoProblem{QStringLiteral("\"%1\" is larger than 1 MB. Choose a smaller PNG logo.").arg(name)};
  // The signature first: a JPEG renamed to .png is still no PNG, and the
  // pages are drawn from PNG bytes only.
  static const QByteArray signature("\x89PNG\r\n\x1a\n", 8);
  QImage image;
  if (!bytes.startsWith(signature) || !image.loadFromData(bytes, "PNG") || image.isNull())
    return LogoProblem{QStringLiteral("\"%1\" is not a readable PNG image. Choose a PNG file.").arg(name)};
  return bytes.toStdString();
}

}  // namespace orvane::app
