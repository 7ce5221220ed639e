#include "app/reports/ReportsWindow.h"

#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPdfDocument>
#include <QPdfView>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include "app/reports/MailHandOff.h"
#include "app/reports/ReportDocument.h"
#include "app/reports/ReportSections.h"
#include "app/settings/BrandingSettings.h"
#include "app/shell/AppContext.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/widgets/Alert.h"
#include "engine/LocalCivilDate.h"

namespace orvane::app {
namespace {

// The period a report starts with: the week through today.
constexpr std::int64_t defaultDays = 7;

QDate qdate(const CivilDate& day) {
  return QDate(static_cast<int>(day.year), static_cast<int>(day.month), static_cast<int>(day.day));
}
CivilDate civil(const QDate& date) { return CivilDate(date.year(), date.month(), date.day()); }

QDateEdit* dayEditor(QWidget* parent, const char* name) {
  auto* editor = new QDateEdit(parent);
  editor->setObjectName(QString::fromLatin1(name));
  editor->setCalendarPopup(true);
  editor->setDisplayFormat(QStringLiteral("d MMM yyyy"));
  return editor;
}

}  // namespace

ReportsWindow::ReportsWindow(AppContext& context, const Uuid& project, QWidget* parent)
    : QWidget(parent, Qt::Window), context_(context), project_(project) {
  setObjectName(QStringLiteral("reportsWindow"));
  setAttribute(Qt::WA_DeleteOnClose);
  // A page's width and most of the screen's height.
  const QScreen* screen = parent != nullptr ? parent->screen() : QGuiApplication::primaryScreen();
  const QSize room = screen != nullptr ? screen->availableGeometry().size() : QSize(900, 1000);
  resize(std::min(900, room.width() - 40), std::min(1000, room.height() - 80));

  audience_ = new QComboBox(this);
  audience_->setObjectName(QStringLiteral("reportAudience"));
  audience_->addItem(reportKindText(ReportAudience::client), static_cast<int>(ReportAudience::client));
  audience_->addItem(reportKindText(ReportAudience::internal), static_cast<int>(ReportAudience::internal));
  from_ = dayEditor(this, "reportFrom");
  to_ = dayEditor(this, "reportTo");
  const ReportPeriod period = periodEndingOn(civilDateFromLocal(context_.now(), context_.calendar()), defaultDays);
  from_->setDate(qdate(period.from));
  to_->setDate(qdate(period.to));
  save_ = new QPushButton(QStringLiteral("Save PDF…"), this);
  save_->setObjectName(QStringLiteral("saveReport"));
  email_ = new QPushButton(QStringLiteral("Email…"), this);
  email_->setObjectName(QStringLiteral("emailReport"));
  status_ = new QLabel(this);
  status_->setObjectName(QStringLiteral("reportStatus"));
  status_->setWordWrap(true);

  document_ = new QPdfDocument(this);
  view_ = new QPdfView(this);
  view_->setObjectName(QStringLiteral("reportPreview"));
  view_->setDocument(document_);
  view_->setPageMode(QPdfView::PageMode::MultiPage);
  view_->setZoomMode(QPdfView::ZoomMode::FitToWidth);

  auto* choice = new QHBoxLayout;
  choice->addWidget(new QLabel(QStringLiteral("Report:"), this));
  choice->addWidget(audience_);
  choice->addSpacing(16);
  choice->addWidget(new QLabel(QStringLiteral("Completed from"), this));
  choice->addWidget(from_);
  choice->addWidget(new QLabel(QStringLiteral("to"), this));
  choice->addWidget(to_);
  choice->addStretch(1);
  choice->addWidget(save_);
  choice->addWidget(email_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(choice);
  layout->addWidget(status_);
  layout->addWidget(view_, 1);

  connect(audience_, &QComboBox::currentIndexChanged, this, &ReportsWindow::redraw);
  connect(from_, &QDateEdit::dateChanged, this, &ReportsWindow::redraw);
  connect(to_, &QDateEdit::dateChanged, this, &ReportsWindow::redraw);
  connect(save_, &QPushButton::clicked, this, &ReportsWindow::choosePath);
  connect(email_, &QPushButton::clicked, this, &ReportsWindow::email);
  connect(&context_, &AppContext::storeChanged, this, &ReportsWindow::redraw);
  redraw();
}

ReportAudience ReportsWindow::audience() const { return static_cast<ReportAudience>(audience_->currentData().toInt()); }

void ReportsWindow::setAudience(ReportAudience audience) {
  audience_->setCurrentIndex(audience_->findData(static_cast<int>(audience)));
}

void ReportsWindow::setPeriod(ReportPeriod period) {
  {
    const QSignalBlocker quietFrom(from_);
    const QSignalBlocker quietTo(to_);
    from_->setDate(qdate(period.from));
    to_->setDate(qdate(period.to));
  }
  redraw();
}

ReportPeriod ReportsWindow::period() const { return {civil(from_->date()), civil(to_->date())}; }

void ReportsWindow::redraw() {
  std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project_);
  if (!snapshot) {
    close();  // the project is gone
    return;
  }
  const ReportPeriod chosen = period();
  if (chosen.from.daysSince(chosen.to) > 0) {
    runs_.skip();
    status_->setText(QStringLiteral("The period starts after it ends: choose a first day on or before the last."));
    save_->setEnabled(false);
    email_->setEnabled(false);
    return;
  }
  setWindowTitle(QStringLiteral("Reports of “%1”").arg(QString::fromStdString(snapshot->project.name)));
  // The store and the calendar are read here; the simulations run in the
  // pool, and the pages are painted back here (the charts are widgets).
  ReportReading reading;
  try {
    ForecastService forecasts(context_.store());
    reading = readReport(forecasts, std::make_shared<const ProjectSnapshot>(std::move(*snapshot)), audience(), chosen,
                         context_.now(), context_.calendar());
  } catch (const std::exception& error) {
    status_->setText(QString::fromStdString(error.what()));
    return;
  }
  status_->setText(QStringLiteral("Drawing the report…"));
  runs_.start(
      this, [reading = std::move(reading)] { return computeReport(reading); },
      [this](const ReportContent& content) { show(content); });
}

void ReportsWindow::show(const ReportContent& content) {
  shown_ = content;
  pdf_ = reportPdf(content, storedBranding());
  // The document reads from the buffer for as long as it shows it.
  document_->close();
  buffer_ = std::make_unique<QBuffer>();
  buffer_->setData(pdf_);
  buffer_->open(QIODevice::ReadOnly);
  document_->load(buffer_.get());
  status_->setText(QStringLiteral("%1 for %2 to %3.")
                       .arg(reportKindText(content.audience), QString::fromStdString(content.period.from.displayText()),
                            QString::fromStdString(content.period.to.displayText())));
  save_->setEnabled(true);
  email_->setEnabled(true);
  emit previewShown();
}

QString ReportsWindow::recipientAddress() const {
  const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project_);
  if (!snapshot) return {};
  const Project& p = snapshot->project;
  return QString::fromStdString(audience() == ReportAudience::client ? p.clientEmail : p.internalEmail);
}

bool ReportsWindow::saveTo(const QString& path) {
  if (const auto problem = writeReportFile(pdf_, path)) {
    showAlert(this, *problem);
    return false;
  }
  return true;
}

void ReportsWindow::choosePath() {
  if (!shown_ || pdf_.isEmpty()) return;
  const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project_);
  if (!snapshot) return;
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  const QString path =
      QFileDialog::getSaveFileName(this, QStringLiteral("Save PDF"),
                                   QDir(folder).filePath(reportFileName(*shown_, snapshot->project.safeFileName())),
                                   QStringLiteral("PDF files (*.pdf)"));
  if (!path.isEmpty()) saveTo(path);
}

void ReportsWindow::email() {
  if (!shown_ || pdf_.isEmpty()) return;
  if (recipientAddress().isEmpty()) {
    // Whom to send it to comes first; once the sheet is saved with the
    // address, the mail follows.
    auto* sheet = new ProjectSetupDialog(context_, project_, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &QDialog::accepted, this, [this] {
      if (!recipientAddress().isEmpty()) handOff();
    });
    sheet->open();
    return;
  }
  handOff();
}

void ReportsWindow::handOff() {
  const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project_);
  if (!snapshot || !shown_) return;
  QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("orvane-report-XXXXXX")));
  folder.setAutoRemove(false);  // the mail program reads the file later
  const QString path = folder.filePath(reportFileName(*shown_, snapshot->project.safeFileName()));
  if (!folder.isValid() || !saveTo(path)) return;
  const QString to = recipientAddress();
  MailDraft draft;
  draft.to = to;
  draft.subject = QStringLiteral("%1: %2, %3 to %4")
                      .arg(QString::fromStdString(shown_->projectName), reportKindText(shown_->audience),
                           QString::fromStdString(shown_->period.from.displayText()),
                           QString::fromStdString(shown_->period.to.displayText()));
  draft.body = QStringLiteral("Please find the report attached.");
  draft.attachments = {path};
  if (!handOffMail(draft)) showMailFallback(this, folder.path(), to);
}

ReportsWindow* openReportsWindow(AppContext& context, const Uuid& project, QWidget* parent) {
  auto* window = new ReportsWindow(context, project, parent);
  window->QWidget::show();
  return window;
}

}  // namespace orvane::app
