#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <optional>

#include "core/exchange/TicketImport.h"
#include "core/model/Uuid.h"

class QWidget;

namespace orvane::app {

class AppContext;
class ImportDialog;

// Tickets in and out of a project as files: import from CSV or the first
// sheet of a workbook (previewed in an ImportDialog, then one undoable
// step), export as CSV or workbook, and the workbook template to fill in.
// Failures reach the user as sentences; nothing in the store or on disk is
// ever left half-changed.
class TicketExchangeCommands : public QObject {
  Q_OBJECT

 public:
  TicketExchangeCommands(AppContext& context, QWidget* window);

  // Offer an open / save panel, then do the work below.
  void importTickets(const Uuid& project);
  void exportTickets(const Uuid& project);
  void saveImportTemplate();

  // Reads and checks the file and opens the preview over the window;
  // accepting it runs the import. A file that cannot be read at all gets an
  // alert with its sentence and no dialog (nullptr).
  ImportDialog* openImportFile(const Uuid& project, const std::filesystem::path& path);
  // Adds the rows as one undoable step "Import tickets" and shows the
  // report; an alert and nothing when the store refuses.
  std::optional<ImportReport> runImport(const Uuid& project, const ParsedImport& parsed, bool extendHistory);
  // Write the file whole or not at all; false after an alert.
  bool writeExport(const Uuid& project, const std::filesystem::path& path);
  bool writeTemplate(const std::filesystem::path& path);

  // "Imported 3 tickets into Shop, creating 1 epic and 2 people.", then
  // "2 rows skipped; 1 warning." and "The project's history now starts on
  // 2025-12-01." when they apply.
  static QString reportMessage(const ImportReport& report, const QString& projectName);

 private:
  AppContext& context_;
  QWidget* window_;
};

}  // namespace orvane::app
