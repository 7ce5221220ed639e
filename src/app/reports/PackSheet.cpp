#include "app/reports/PackSheet.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "app/widgets/Alert.h"
#include "app/shell/AppContext.h"
#include "app/reports/MailHandOff.h"
#include "app/settings/BrandingSettings.h"
#include "core/files/FileError.h"

namespace orvane::app {
namespace {

enum Column { person, address, tickets, files, missing, plan, emailButton, columnCount };

QString q(const std::string& text) { return QString::fromStdString(text); }

QString counted(std::int64_t n, const QString& noun) {
  return QStringLiteral("%1 %2%3").arg(n).arg(noun, n == 1 ? QString() : QStringLiteral("s"));
}

// What writing and sending will do for `pack`, said before anything is done.
QString planFor(const DevelopmentPack& pack) {
  const std::int64_t zipped = pack.fileCount() - pack.missingCount();
  QString files = zipped > 0 ? QStringLiteral("PDF and ZIP (%1)").arg(counted(zipped, QStringLiteral("file")))
                             : QStringLiteral("PDF only (no file to zip)");
  if (pack.email.empty()) return files + QStringLiteral("; no e-mail address: hand it over yourself");
  return files + QStringLiteral(", sent to ") + q(pack.email);
}

QTableWidgetItem* cell(const QString& text, bool number = false) {
  auto* item = new QTableWidgetItem(text);
  item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  if (number) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  return item;
}

}  // namespace

PackSheet::PackSheet(AppContext& context, const Uuid& project, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("packSheet"));
  setWindowTitle(QStringLiteral("Development packs"));
  if (const std::optional<ProjectSnapshot> snapshot = context.board().snapshot(project))
    packs_ = developmentPacks(*snapshot, context.now(), context.calendar());

  auto* layout = new QVBoxLayout(this);
  auto* intro = new QLabel(
      QStringLiteral("<b>%1</b>, week of %2 to %3. For each person with open tickets flagged “this week”: a PDF of "
                     "those tickets and a ZIP of the files linked to them. Nothing is written until you choose a "
                     "folder; then each pack can be e-mailed to its person.")
          .arg(q(packs_.projectName).toHtmlEscaped(), q(packs_.weekStart.description()),
               q(packs_.weekStart.addingDays(6).description())),
      this);
  intro->setWordWrap(true);
  layout->addWidget(intro);

  table_ = new QTableWidget(0, columnCount, this);
  table_->setObjectName(QStringLiteral("packTable"));
  table_->setHorizontalHeaderLabels({QStringLiteral("Person"), QStringLiteral("E-mail"), QStringLiteral("Tickets"),
                                     QStringLiteral("Files"), QStringLiteral("Missing"),
                                     QStringLiteral("Will be written and sent"), QString()});
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->horizontalHeader()->setSectionResizeMode(plan, QHeaderView::Stretch);
  layout->addWidget(table_);

  status_ = new QLabel(this);
  status_->setObjectName(QStringLiteral("packStatus"));
  status_->setWordWrap(true);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(status_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  write_ = buttons->addButton(QStringLiteral("Write packs…"), QDialogButtonBox::ActionRole);
  write_->setObjectName(QStringLiteral("writePacks"));
  write_->setEnabled(!packs_.packs.empty());
  connect(write_, &QPushButton::clicked, this, &PackSheet::chooseFolderAndWrite);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  connect(&watcher_, &QFutureWatcher<Outcome>::finished, this, &PackSheet::showOutcome);

  fillTable();
  resize(900, 420);
}

void PackSheet::fillTable() {
  table_->setRowCount(static_cast<int>(packs_.packs.size()));
  QStringList notes;
  for (std::size_t i = 0; i < packs_.packs.size(); ++i) {
    const DevelopmentPack& pack = packs_.packs[i];
    const int row = static_cast<int>(i);
    table_->setItem(row, person, cell(q(pack.personName)));
    table_->setItem(row, address, cell(pack.email.empty() ? QStringLiteral("none") : q(pack.email)));
    table_->setItem(row, tickets, cell(QString::number(pack.tickets.size()), true));
    table_->setItem(row, files, cell(QString::number(pack.fileCount()), true));
    auto* missingCell = cell(QString::number(pack.missingCount()), true);
    QStringList missingPaths;
    for (const PackTicket& ticket : pack.tickets)
      for (const PackFile& file : ticket.files)
        if (!file.present) missingPaths << q(ticket.reference) + QStringLiteral(": ") + q(file.path);
    missingCell->setToolTip(missingPaths.join(QLatin1Char('\n')));
    table_->setItem(row, missing, missingCell);
    table_->setItem(row, plan, cell(planFor(pack)));
    auto* button = new QPushButton(QStringLiteral("Email…"), table_);
    button->setObjectName(QStringLiteral("email%1").arg(row));
    button->setEnabled(false);
    button->setToolTip(pack.email.empty() ? QStringLiteral("%1 has no e-mail address.").arg(q(pack.personName))
                                          : QStringLiteral("Write the packs first."));
    connect(button, &QPushButton::clicked, this, [this, i] { email(i); });
    table_->setCellWidget(row, emailButton, button);
    for (const QString& path : missingPaths)
      notes << QStringLiteral("Missing for %1: %2").arg(q(pack.personName), path);
  }
  if (packs_.packs.empty())
    notes << QStringLiteral("No open ticket of this project is flagged “this week” with someone assigned.");
  if (packs_.unassignedTickets > 0)
    notes << QStringLiteral("%1 flagged “this week” %2 nobody assigned and %3 in no pack.")
                 .arg(counted(packs_.unassignedTickets, QStringLiteral("ticket")),
                      packs_.unassignedTickets == 1 ? QStringLiteral("has") : QStringLiteral("have"),
                      packs_.unassignedTickets == 1 ? QStringLiteral("is") : QStringLiteral("are"));
  status_->setText(notes.join(QLatin1Char('\n')));
}

void PackSheet::chooseFolderAndWrite() {
  const QString folder = QFileDialog::getExistingDirectory(this, QStringLiteral("Write the packs into"));
  if (!folder.isEmpty()) writeInto(folder);
}

void PackSheet::writeInto(const QString& folder) {
  if (watcher_.isRunning()) return;
  folder_ = folder;
  write_->setEnabled(false);
  status_->setText(QStringLiteral("Writing the packs into %1…").arg(folder));
  // Plain values only cross to the pool: the packs, the branding and the folder.
  const DevelopmentPacks packs = packs_;
  const ReportBranding branding = storedBranding();
  const std::filesystem::path target = folder.toStdString();
  watcher_.setFuture(QtConcurrent::run([packs, branding, target] {
    Outcome outcome;
    try {
      for (const DevelopmentPack& pack : packs.packs)
        outcome.written.push_back(writePack(packs, pack, branding, target));
    } catch (const std::exception& error) {
      outcome.error = QString::fromUtf8(error.what());
    }
    return outcome;
  }));
}

void PackSheet::showOutcome() {
  const Outcome outcome = watcher_.result();
  written_ = outcome.written;
  write_->setEnabled(true);
  for (std::size_t i = 0; i < written_.size(); ++i) {
    auto* button = qobject_cast<QPushButton*>(table_->cellWidget(static_cast<int>(i), emailButton));
    const bool canMail = !written_[i].email.isEmpty();
    button->setEnabled(canMail);
    if (canMail)
      button->setToolTip(QStringLiteral("Send the pack to %1 with the mail program.").arg(written_[i].email));
  }
  if (!outcome.error.isEmpty()) {
    status_->setText(QStringLiteral("%1 of %2 packs were written before this stopped.")
                         .arg(written_.size())
                         .arg(packs_.packs.size()));
    showAlert(this, outcome.error);
    emit writeFailed(outcome.error);
    return;
  }
  QStringList lines{QStringLiteral("%1 written into %2.")
                        .arg(counted(static_cast<std::int64_t>(written_.size()), QStringLiteral("pack")), folder_)};
  for (const WrittenPack& pack : written_)
    if (pack.email.isEmpty())
      lines << QStringLiteral("%1 has no e-mail address: hand the files over yourself.").arg(pack.personName);
  status_->setText(lines.join(QLatin1Char('\n')));
  emit packsWritten();
}

void PackSheet::email(std::size_t row) {
  if (row >= written_.size()) return;
  const WrittenPack& pack = written_[row];
  MailDraft draft;
  draft.to = pack.email;
  draft.subject = QStringLiteral("%1: your tickets for the week of %2")
                      .arg(q(packs_.projectName), q(packs_.weekStart.description()));
  draft.body = QStringLiteral(
                   "Hello %1,\n\nattached are your tickets for this week and the files linked to them. "
                   "Please quote the ticket reference when you reply about a ticket.\n")
                   .arg(pack.personName);
  if (!pack.missing.isEmpty())
    draft.body += QStringLiteral("\nThese linked files could not be found and are not attached:\n") +
                  pack.missing.join(QLatin1Char('\n')) + QLatin1Char('\n');
  draft.attachments << pack.pdfPath;
  if (!pack.zipPath.isEmpty()) draft.attachments << pack.zipPath;
  if (!handOffMail(draft)) showMailFallback(this, folder_, pack.email);
}

}  // namespace orvane::app
