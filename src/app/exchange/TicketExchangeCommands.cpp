#include "app/exchange/TicketExchangeCommands.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QStandardPaths>
#include <exception>
#include <memory>
#include <stdexcept>

#include "app/exchange/ImportDialog.h"
#include "app/shell/AppContext.h"
#include "app/shell/UndoHistory.h"
#include "app/widgets/Alert.h"
#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketXlsx.h"
#include "core/files/FileError.h"
#include "core/files/FileReader.h"
#include "core/files/FileWriter.h"
#include "engine/CivilDate.h"

namespace orvane::app {

namespace {

// Below this many rows an import is over before a progress window could be
// read, so none is shown.
constexpr std::int64_t progressThreshold = 500;

// A window-modal progress bar fed by the import's progress callback. It
// appears only for large files, and only once the work has run long enough
// to notice; there is no Cancel: the import is one transaction that is
// either applied whole or not at all.
class ProgressFeed {
 public:
  ProgressFeed(QWidget* parent, QString label) : parent_(parent), label_(std::move(label)) {}

  ImportProgress callback() {
    return [this](std::int64_t done, std::int64_t total) {
      if (total < progressThreshold) return;
      if (!dialog_) {
        dialog_ = std::make_unique<QProgressDialog>(label_, QString(), 0, static_cast<int>(total), parent_);
        dialog_->setObjectName(QStringLiteral("importProgress"));
        dialog_->setWindowTitle(QStringLiteral("Import tickets"));
        dialog_->setWindowModality(Qt::WindowModal);
        dialog_->setMinimumDuration(300);
      }
      // Every row would repaint thousands of times for nothing.
      if (done % 50 == 0 || done == total) dialog_->setValue(static_cast<int>(done));
    };
  }

 private:
  QWidget* parent_;
  QString label_;
  std::unique_ptr<QProgressDialog> dialog_;
};

bool hasSuffix(const std::filesystem::path& path, const char* suffix) {
  return QFileInfo(QString::fromStdString(path.string()))
             .suffix()
             .compare(QLatin1String(suffix), Qt::CaseInsensitive) == 0;
}

// Writes beside the target and renames over it at the end, so a failed
// write never leaves half a file under the chosen name.
bool writeWhole(QWidget* window, const std::filesystem::path& path, const std::string& bytes) {
  try {
    replaceFile(path, bytes, FileContent::tickets);
  } catch (const FileError& error) {
    showAlert(window, QString::fromStdString(error.what()));  // "The file could not be written: ..."
    return false;
  }
  return true;
}

QString documentsFolder() { return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation); }

}  // namespace

TicketExchangeCommands::TicketExchangeCommands(AppContext& context, QWidget* window)
    : QObject(window), context_(context), window_(window) {}

void TicketExchangeCommands::importTickets(const Uuid& project) {
  const QString path = QFileDialog::getOpenFileName(
      window_, QStringLiteral("Import tickets"), documentsFolder(),
      QStringLiteral("Ticket files (*.csv *.xlsx);;CSV (*.csv);;Excel workbooks (*.xlsx)"));
  if (!path.isEmpty()) openImportFile(project, path.toStdString());
}

ImportDialog* TicketExchangeCommands::openImportFile(const Uuid& project, const std::filesystem::path& path) {
  const QString name = QString::fromStdString(path.string());
  std::string bytes;
  try {
    bytes = readRegularFile(path, FileContent::tickets);
  } catch (const FileError& error) {
    showAlert(window_, QString::fromStdString(error.what()));  // "The file could not be read: ..."
    return nullptr;
  }
  const std::string_view view = bytes;
  // A workbook is recognised by its name or by the ZIP signature every
  // workbook starts with (no text file does); anything else is read as
  // delimited text.
  const bool workbook = hasSuffix(path, "xlsx") || view.starts_with(std::string_view("PK\x03\x04", 4));

  ParsedImport parsed;
  ImportReport preview;
  std::optional<ProjectSnapshot> snapshot;
  try {
    parsed = workbook ? TicketXlsx::parse(view) : TicketCSV::parse(view);
    snapshot = context_.board().snapshot(project);
    if (!snapshot) throw std::runtime_error("That project no longer exists.");
    // The preview is the import itself, rolled back: it lists exactly the
    // issues confirming would raise.
    ProgressFeed progress(window_, QStringLiteral("Checking the file…"));
    preview = orvane::importTickets(context_.store(), parsed, project, context_.now(), false,
                                    ImportOptions{progress.callback(), true});
  } catch (const std::exception& error) {
    // Whole-file failures (empty, no title column, an open quote, not a
    // workbook) carry their sentence.
    showAlert(window_, QString::fromStdString(error.what()));
    return nullptr;
  }

  auto* dialog = new ImportDialog(std::move(parsed), preview, QFileInfo(name).fileName(),
                                  QString::fromStdString(snapshot->project.name), snapshot->project.createdAt, window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this,
          [this, dialog, project] { runImport(project, dialog->parsed(), dialog->extendHistory()); });
  dialog->open();
  return dialog;
}

std::optional<ImportReport> TicketExchangeCommands::runImport(const Uuid& project, const ParsedImport& parsed,
                                                              bool extendHistory) {
  ImportReport report;
  QString projectName;
  try {
    const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project);
    if (!snapshot) throw std::runtime_error("That project no longer exists.");
    projectName = QString::fromStdString(snapshot->project.name);
    ProgressFeed progress(window_, QStringLiteral("Importing tickets…"));
    // One step in the history: a single undo removes every ticket, epic and
    // person the import made and restores the project's start.
    context_.undoHistory().record(QStringLiteral("Import tickets"), [&] {
      report = orvane::importTickets(context_.store(), parsed, project, context_.now(), extendHistory,
                                     ImportOptions{progress.callback(), false});
    });
  } catch (const std::exception& error) {
    showAlert(window_, QString::fromStdString(error.what()));
    return std::nullopt;
  }
  context_.notifyStoreChanged();

  auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Import tickets"),
                              reportMessage(report, projectName), QMessageBox::Ok, window_);
  box->setObjectName(QStringLiteral("importReport"));
  if (!report.issues.empty()) {
    QStringList lines;
    for (const ImportIssue& issue : sortedIssues(report)) {
      lines << (issue.isError ? QStringLiteral("Error, ") : QStringLiteral("Warning, ")) +
                   ImportDialog::issueText(issue);
    }
    box->setDetailedText(lines.join(QLatin1Char('\n')));
  }
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(Qt::WindowModal);
  box->open();
  return report;
}

QString TicketExchangeCommands::reportMessage(const ImportReport& report, const QString& projectName) {
  QString text = QStringLiteral("Imported ") +
                 counted(report.imported, QStringLiteral("ticket"), QStringLiteral("tickets")) +
                 QStringLiteral(" into ") + projectName;
  if (report.createdEpics > 0 || report.createdPeople > 0) {
    text += QStringLiteral(", creating ") +
            counted(report.createdEpics, QStringLiteral("epic"), QStringLiteral("epics")) + QStringLiteral(" and ") +
            counted(report.createdPeople, QStringLiteral("person"), QStringLiteral("people"));
  }
  text += QLatin1Char('.');
  const auto warnings = static_cast<std::int64_t>(report.issues.size()) - report.errorCount();
  if (!report.issues.empty()) {
    text += QLatin1Char(' ') + counted(skippedRowCount(report), QStringLiteral("row"), QStringLiteral("rows")) +
            QStringLiteral(" skipped; ") + counted(warnings, QStringLiteral("warning"), QStringLiteral("warnings")) +
            QLatin1Char('.');
  }
  if (report.projectHistoryExtendedTo) {
    text += QStringLiteral(" The project's history now starts on ") +
            QString::fromStdString(CivilDate::fromUtc(*report.projectHistoryExtendedTo).description()) +
            QLatin1Char('.');
  }
  return text;
}

void TicketExchangeCommands::exportTickets(const Uuid& project) {
  const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project);
  if (!snapshot) return;
  const QString csvFilter = QStringLiteral("CSV (*.csv)");
  const QString xlsxFilter = QStringLiteral("Excel workbook (*.xlsx)");
  QString filter = csvFilter;
  // A name the file system accepts: separators in a project name become dashes.
  QString base = QString::fromStdString(snapshot->project.name) + QStringLiteral(" tickets");
  base.replace(QLatin1Char('/'), QLatin1Char('-')).replace(QLatin1Char('\\'), QLatin1Char('-'));
  QString path = QFileDialog::getSaveFileName(window_, QStringLiteral("Export tickets"),
                                              documentsFolder() + QLatin1Char('/') + base + QStringLiteral(".csv"),
                                              csvFilter + QStringLiteral(";;") + xlsxFilter, &filter);
  if (path.isEmpty()) return;
  // The name's ending decides the kind; a name without one gets the ending
  // of the chosen filter.
  const QString suffix = QFileInfo(path).suffix().toLower();
  if (suffix != QStringLiteral("csv") && suffix != QStringLiteral("xlsx")) {
    path += filter == xlsxFilter ? QStringLiteral(".xlsx") : QStringLiteral(".csv");
  }
  writeExport(project, path.toStdString());
}

bool TicketExchangeCommands::writeExport(const Uuid& project, const std::filesystem::path& path) {
  std::string bytes;
  try {
    const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(project);
    if (!snapshot) throw std::runtime_error("That project no longer exists.");
    bytes = hasSuffix(path, "xlsx") ? TicketXlsx::exportWorkbook(*snapshot) : TicketCSV::exportText(*snapshot);
  } catch (const std::exception& error) {
    showAlert(window_, QString::fromStdString(error.what()));
    return false;
  }
  return writeWhole(window_, path, bytes);
}

void TicketExchangeCommands::saveImportTemplate() {
  QString path = QFileDialog::getSaveFileName(window_, QStringLiteral("Save the Excel import template"),
                                              documentsFolder() + QStringLiteral("/ticket-import-template.xlsx"),
                                              QStringLiteral("Excel workbook (*.xlsx)"));
  if (path.isEmpty()) return;
  if (QFileInfo(path).suffix().compare(QStringLiteral("xlsx"), Qt::CaseInsensitive) != 0)
    path += QStringLiteral(".xlsx");
  writeTemplate(path.toStdString());
}

bool TicketExchangeCommands::writeTemplate(const std::filesystem::path& path) {
  std::string bytes;
  try {
    bytes = TicketXlsx::importTemplate();
  } catch (const std::exception& error) {
    showAlert(window_, QString::fromStdString(error.what()));
    return false;
  }
  return writeWhole(window_, path, bytes);
}

}  // namespace orvane::app
