#include "app/reports/MailHandOff.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>

namespace orvane::app {

bool handOffMail(const MailDraft& draft) {
  const QString program = QStandardPaths::findExecutable(QStringLiteral("xdg-email"));
  if (program.isEmpty() || draft.to.isEmpty()) return false;
  QStringList arguments{QStringLiteral("--utf8"), QStringLiteral("--subject"), draft.subject, QStringLiteral("--body"),
                        draft.body};
  for (const QString& file : draft.attachments) arguments << QStringLiteral("--attach") << file;
  arguments << draft.to;
  // On the heap: a mail program still running when this returns must not be
  // killed with its QProcess; it deletes itself once the program ends.
  auto* mail = new QProcess;
  QObject::connect(mail, &QProcess::finished, mail, &QObject::deleteLater);
  mail->start(program, arguments);
  if (!mail->waitForStarted(5000)) {
    mail->deleteLater();
    return false;
  }
  // A mail program that keeps running has taken the message; one that ends
  // says by its exit status whether it could.
  if (!mail->waitForFinished(5000)) return true;
  return mail->exitStatus() == QProcess::NormalExit && mail->exitCode() == 0;
}

void showMailFallback(QWidget* parent, const QString& folder, const QString& to) {
  auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Send the files yourself"),
                              QStringLiteral("No mail program took the message. The files are in %1; send them "
                                             "to %2.")
                                  .arg(folder, to.isEmpty() ? QStringLiteral("their recipient") : to),
                              QMessageBox::Close, parent);
  box->setObjectName(QStringLiteral("mailFallback"));
  box->setAttribute(Qt::WA_DeleteOnClose);
  QPushButton* open = box->addButton(QStringLiteral("Open the folder"), QMessageBox::ActionRole);
  QObject::connect(open, &QPushButton::clicked, box,
                   [folder] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); });
  box->open();
}

}  // namespace orvane::app
