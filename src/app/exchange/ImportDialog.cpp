#include "app/exchange/ImportDialog.h"

#include <QApplication>
#include <QBrush>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPalette>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <set>

#include "core/exchange/IsoDateTime.h"
#include "core/model/SupportedDates.h"
#include "engine/CivilDate.h"

namespace orvane::app {

namespace {

// Errors in red, warnings in a dark amber that stays readable on white.
const QColor errorColour(0xB0, 0x1E, 0x1E);
const QColor warningColour(0x8A, 0x5A, 0x00);

// File dates are UTC instants; the table shows the UTC day the file names
// (midnight UTC is the whole day) and the exact instant in the tooltip.
QTableWidgetItem* dateItem(const std::optional<Timestamp>& instant) {
  auto* item = new QTableWidgetItem();
  if (instant) {
    item->setText(QString::fromStdString(CivilDate::fromUtc(*instant).description()));
    item->setToolTip(QString::fromStdString(ISODateTime::format(*instant)));
  }
  return item;
}

QTableWidgetItem* textItem(const std::string& text) { return new QTableWidgetItem(QString::fromStdString(text)); }

}  // namespace

QString counted(std::int64_t n, const QString& one, const QString& many) {
  return QLocale().toString(static_cast<qlonglong>(n)) + QLatin1Char(' ') + (n == 1 ? one : many);
}

std::int64_t skippedRowCount(const ImportReport& report) {
  std::set<std::int64_t> skipped;
  for (const ImportIssue& issue : report.issues) {
    if (issue.isError) skipped.insert(issue.rowNumber);
  }
  return static_cast<std::int64_t>(skipped.size());
}

std::vector<ImportIssue> sortedIssues(const ImportReport& report) {
  std::vector<ImportIssue> issues = report.issues;
  std::stable_sort(issues.begin(), issues.end(),
                   [](const ImportIssue& a, const ImportIssue& b) { return a.rowNumber < b.rowNumber; });
  return issues;
}

QString ImportDialog::issueText(const ImportIssue& issue) {
  return QStringLiteral("Row %1: %2").arg(issue.rowNumber).arg(QString::fromStdString(issue.message));
}

QString ImportDialog::summary(const ImportReport& preview) {
  QString text = preview.imported == 0
                     ? QStringLiteral("No ticket can be imported")
                     : counted(preview.imported, QStringLiteral("ticket"), QStringLiteral("tickets")) +
                           QStringLiteral(" will be imported");
  if (preview.createdEpics > 0 || preview.createdPeople > 0) {
    text += QStringLiteral(", creating ") +
            counted(preview.createdEpics, QStringLiteral("epic"), QStringLiteral("epics")) + QStringLiteral(" and ") +
            counted(preview.createdPeople, QStringLiteral("person"), QStringLiteral("people"));
  }
  text += QLatin1Char('.');
  const std::int64_t skipped = skippedRowCount(preview);
  const auto warnings = static_cast<std::int64_t>(preview.issues.size()) - preview.errorCount();
  if (skipped > 0 || warnings > 0) {
    text += QLatin1Char(' ') + counted(skipped, QStringLiteral("row"), QStringLiteral("rows")) +
            QStringLiteral(" will be skipped; ") +
            counted(warnings, QStringLiteral("warning"), QStringLiteral("warnings")) + QLatin1Char('.');
  }
  return text;
}

ImportDialog::ImportDialog(ParsedImport parsed, const ImportReport& preview, const QString& fileName,
                           const QString& projectName, Timestamp projectStart, QWidget* parent)
    : QDialog(parent), parsed_(std::move(parsed)) {
  setObjectName(QStringLiteral("importDialog"));
  setWindowTitle(QStringLiteral("Import tickets"));

  auto* heading = new QLabel(QStringLiteral("Tickets from %1 into %2").arg(fileName, projectName), this);
  QFont headingFont = heading->font();
  headingFont.setBold(true);
  heading->setFont(headingFont);

  // Rows the import itself would skip (a parse error leaves a row out of the
  // table already), with the first reason.
  std::map<std::int64_t, QString> skippedRows;
  for (const ImportIssue& issue : preview.issues) {
    if (issue.isError) skippedRows.emplace(issue.rowNumber, QString::fromStdString(issue.message));
  }

  table_ = new QTableWidget(static_cast<int>(parsed_.rows.size()), columnCount, this);
  table_->setObjectName(QStringLiteral("importRows"));
  table_->setHorizontalHeaderLabels({QStringLiteral("Row"), QStringLiteral("Title"), QStringLiteral("Column"),
                                     QStringLiteral("Epic"), QStringLiteral("Assignee"), QStringLiteral("Priority"),
                                     QStringLiteral("Created"), QStringLiteral("Started"), QStringLiteral("Completed"),
                                     QStringLiteral("Due")});
  table_->verticalHeader()->hide();
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setWordWrap(false);
  const QIcon errorIcon = style()->standardIcon(QStyle::SP_MessageBoxCritical);
  const QIcon warningIcon = style()->standardIcon(QStyle::SP_MessageBoxWarning);
  const QColor muted = palette().color(QPalette::Disabled, QPalette::Text);
  for (int r = 0; r < table_->rowCount(); ++r) {
    const ImportedRow& row = parsed_.rows[static_cast<std::size_t>(r)];
    auto* number = new QTableWidgetItem();
    number->setData(Qt::DisplayRole, static_cast<qlonglong>(row.rowNumber));
    table_->setItem(r, rowColumn, number);
    table_->setItem(r, titleColumn, textItem(row.title));
    // An empty column cell puts the ticket in the first Backlog column.
    auto* column = textItem(row.columnName);
    if (row.columnName.empty()) {
      column->setText(QStringLiteral("First Backlog column"));
      column->setForeground(muted);
    }
    table_->setItem(r, boardColumn, column);
    table_->setItem(r, epicColumn, textItem(row.epicName));
    table_->setItem(r, assigneeColumn, textItem(row.assigneeName));
    table_->setItem(r, priorityColumn, textItem(row.priority ? std::string(displayLabel(*row.priority)) : ""));
    table_->setItem(r, createdColumn, dateItem(row.createdAt));
    table_->setItem(r, startedColumn, dateItem(row.startedAt));
    table_->setItem(r, completedColumn, dateItem(row.completedAt));
    table_->setItem(r, dueColumn, dateItem(row.dueDate));
    if (auto skipped = skippedRows.find(row.rowNumber); skipped != skippedRows.end()) {
      table_->item(r, titleColumn)->setIcon(errorIcon);
      for (int c = 0; c < columnCount; ++c) {
        table_->item(r, c)->setForeground(muted);
        table_->item(r, c)->setToolTip(QStringLiteral("Skipped: ") + skipped->second);
      }
    }
  }
  table_->setCurrentItem(nullptr);
  table_->resizeColumnsToContents();
  table_->horizontalHeader()->setSectionResizeMode(titleColumn, QHeaderView::Stretch);
  table_->setColumnWidth(titleColumn, std::min(table_->columnWidth(titleColumn), 320));

  issues_ = new QListWidget(this);
  issues_->setObjectName(QStringLiteral("importIssues"));
  issues_->setWordWrap(true);
  issues_->setIconSize(QSize(16, 16));
  for (const ImportIssue& issue : sortedIssues(preview)) {
    auto* item = new QListWidgetItem(issue.isError ? errorIcon : warningIcon, issueText(issue), issues_);
    item->setForeground(issue.isError ? errorColour : warningColour);
    item->setData(isErrorRole, issue.isError);
    item->setToolTip(issue.isError ? QStringLiteral("Error: the row is skipped.")
                                   : QStringLiteral("Warning: the row is imported as well as possible."));
  }
  if (preview.issues.empty()) {
    auto* none = new QListWidgetItem(QStringLiteral("No problems found."), issues_);
    none->setFlags(Qt::NoItemFlags);
  }

  auto* issuesLabel = new QLabel(QStringLiteral("Problems"), this);
  issuesLabel->setFont(headingFont);
  auto* issuesBox = new QWidget(this);
  auto* issuesLayout = new QVBoxLayout(issuesBox);
  issuesLayout->setContentsMargins(0, 0, 0, 0);
  issuesLayout->addWidget(issuesLabel);
  issuesLayout->addWidget(issues_);

  auto* splitter = new QSplitter(Qt::Vertical, this);
  splitter->addWidget(table_);
  splitter->addWidget(issuesBox);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 1);
  splitter->setChildrenCollapsible(false);

  summary_ = new QLabel(summary(preview), this);
  summary_->setObjectName(QStringLiteral("importSummary"));
  summary_->setWordWrap(true);

  // Extending only ever moves the start back, so the choice matters only
  // when some created date lies before the project's start.
  extend_ = new QCheckBox(QStringLiteral("Extend the project's history to the earliest created date"), this);
  extend_->setObjectName(QStringLiteral("extendHistory"));
  std::optional<Timestamp> earliest;
  for (const ImportedRow& row : parsed_.rows) {
    if (row.createdAt && (!earliest || *row.createdAt < *earliest)) earliest = row.createdAt;
  }
  if (earliest && *earliest < projectStart) {
    // A start no calendar day holds (a store from before dates were
    // checked) is not shown; extending replaces it.
    const QString instead = isSupportedDate(projectStart)
                                ? QStringLiteral(" instead of ") +
                                      QString::fromStdString(CivilDate::fromUtc(projectStart).description())
                                : QString();
    extend_->setToolTip(QStringLiteral("The project would start on %1%2, so charts and forecasts see "
                                       "the imported history.")
                            .arg(QString::fromStdString(CivilDate::fromUtc(*earliest).description()), instead));
  } else {
    extend_->setEnabled(false);
    extend_->setToolTip(QStringLiteral("No created date in the file lies before the project's start."));
  }

  auto* buttons = new QDialogButtonBox(this);
  import_ = buttons->addButton(QStringLiteral("Import"), QDialogButtonBox::AcceptRole);
  import_->setObjectName(QStringLiteral("import"));
  import_->setDefault(true);
  import_->setEnabled(preview.imported > 0);
  buttons->addButton(QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(heading);
  layout->addWidget(splitter, 1);
  layout->addWidget(summary_);
  layout->addWidget(extend_);
  layout->addWidget(buttons);
  resize(980, 620);
}

bool ImportDialog::extendHistory() const { return extend_->isEnabled() && extend_->isChecked(); }

}  // namespace orvane::app
