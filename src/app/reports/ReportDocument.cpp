#include "app/reports/ReportDocument.h"

#include <QBuffer>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "app/reports/ReportLayout.h"
#include "app/reports/ReportSections.h"

namespace orvane::app {

int paintReport(const ReportContent& content, const ReportBranding& branding, QPagedPaintDevice& device) {
  ReportLayout layout(device);
  layOutReport(layout, content);
  QPainter painter(&device);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);
  const int pages = layout.paint(painter, device, branding);
  painter.end();
  return pages;
}

QByteArray reportPdf(const ReportContent& content, const ReportBranding& branding) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(300);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(16, 16, 16, 12),
                                     QPageLayout::Millimeter));
    writer.setTitle(
        QStringLiteral("%1: %2").arg(QString::fromStdString(content.projectName), reportKindText(content.audience)));
    writer.setCreator(QString::fromStdString(ReportBranding::creditLine()));
    paintReport(content, branding, writer);
  }
  buffer.close();
  return bytes;
}

std::optional<QString> writeReportFile(const QByteArray& pdf, const QString& path) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size() || !file.commit()) {
    return QStringLiteral("The report could not be written to “%1”: %2.")
        .arg(QFileInfo(path).absoluteFilePath(), file.errorString());
  }
  return std::nullopt;
}

QString reportFileName(const ReportContent& content, const std::string& safeProjectName) {
  return QStringLiteral("%1 - %2 %3.pdf")
      .arg(QString::fromStdString(safeProjectName), reportKindText(content.audience),
           QString::fromStdString(content.today.description()));
}

}  // namespace orvane::app
