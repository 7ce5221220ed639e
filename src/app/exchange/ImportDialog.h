#pragma once

#include <QDialog>
#include <QString>
#include <cstdint>
#include <vector>

#include "core/exchange/TicketCsv.h"
#include "core/exchange/TicketImport.h"
#include "engine/Timestamp.h"

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QTableWidget;

namespace orvane::app {

// "1 ticket", "4,000 tickets": a count in the user's locale with its noun.
QString counted(std::int64_t n, const QString& one, const QString& many);

// The rows an import skips: a row may have two errors but is skipped once.
std::int64_t skippedRowCount(const ImportReport& report);

// The issues in file order: the import lists the file's own issues before
// its own, and a reader looks for a row by its number.
std::vector<ImportIssue> sortedIssues(const ImportReport& report);

// The preview of a ticket file before anything is added: every readable row,
// every issue ("Row N: …", errors and warnings told apart), a summary line
// and the choice to extend the project's history. The preview comes from a
// dry run of the import, so it lists the issues the import itself would
// raise (an unknown column, dates reconciled with the column) as well as the
// file's own, and rows the import would skip are marked in the table.
// Accepting ("Import") only closes the dialog; the caller runs the import.
class ImportDialog : public QDialog {
  Q_OBJECT

 public:
  // The table's columns, in order.
  enum Column {
    rowColumn,
    titleColumn,
    boardColumn,
    epicColumn,
    assigneeColumn,
    priorityColumn,
    createdColumn,
    startedColumn,
    completedColumn,
    dueColumn,
    columnCount
  };
  // The item data role of an issue line that says whether it is an error.
  static constexpr int isErrorRole = Qt::UserRole + 1;

  // `preview` is the dry run's report; `projectStart` the project's current
  // start, which decides whether extending its history would change it.
  ImportDialog(ParsedImport parsed, const ImportReport& preview, const QString& fileName, const QString& projectName,
               Timestamp projectStart, QWidget* parent = nullptr);

  const ParsedImport& parsed() const { return parsed_; }
  bool extendHistory() const;

  QTableWidget* rowTable() const { return table_; }
  QListWidget* issueList() const { return issues_; }
  QLabel* summaryLabel() const { return summary_; }
  QCheckBox* extendHistoryBox() const { return extend_; }
  QPushButton* importButton() const { return import_; }

  // "3 tickets will be imported, creating 1 epic and 2 people. 2 rows will be
  // skipped; 1 warning."
  static QString summary(const ImportReport& preview);
  // "Row 4: …" for an issue line.
  static QString issueText(const ImportIssue& issue);

 private:
  ParsedImport parsed_;
  QTableWidget* table_;
  QListWidget* issues_;
  QLabel* summary_;
  QCheckBox* extend_;
  QPushButton* import_;
};

}  // namespace orvane::app
