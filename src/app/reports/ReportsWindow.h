#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QWidget>
#include <memory>
#include <optional>

#include "app/reports/ReportContent.h"
#include "app/widgets/LatestRun.h"

class QComboBox;
class QDateEdit;
class QLabel;
class QPdfDocument;
class QPdfView;
class QPushButton;

namespace orvane::app {

class AppContext;

// The reports of one project: the client or the internal report for a
// period (the last 7 days through today to begin with), previewed as the
// very PDF that "Save PDF…" writes and "Email…" hands to the mail program.
// The preview is redrawn off the user-interface thread whenever the choice
// or the store changes.
class ReportsWindow : public QWidget {
  Q_OBJECT

 public:
  ReportsWindow(AppContext& context, const Uuid& project, QWidget* parent);

  ReportAudience audience() const;
  void setAudience(ReportAudience audience);
  void setPeriod(ReportPeriod period);
  ReportPeriod period() const;
  // The PDF shown, empty until the first one is drawn.
  const QByteArray& pdf() const { return pdf_; }
  bool isDrawing() const { return runs_.busy(); }

  // The audience's own address: the client's for a client report, the
  // internal recipient's for an internal one. Empty when it is not set.
  QString recipientAddress() const;
  // Writes the PDF to `path`; a failure is shown in an alert.
  bool saveTo(const QString& path);
  // Without the audience's address, opens the Report recipients sheet and
  // waits; with it, writes the PDF into a new temporary folder and hands
  // it to the mail program (or says where it is and whom to send it to).
  void email();

 signals:
  void previewShown();

 private:
  void redraw();
  void show(const ReportContent& content);
  void choosePath();
  void handOff();

  AppContext& context_;
  Uuid project_;
  QComboBox* audience_;
  QDateEdit* from_;
  QDateEdit* to_;
  QLabel* status_;
  QPdfDocument* document_;
  QPdfView* view_;
  QPushButton* save_;
  QPushButton* email_;
  QByteArray pdf_;
  std::unique_ptr<QBuffer> buffer_;
  std::optional<ReportContent> shown_;
  LatestRun runs_;
};

// Opens the reports of `project` over `parent`.
ReportsWindow* openReportsWindow(AppContext& context, const Uuid& project, QWidget* parent);

}  // namespace orvane::app
