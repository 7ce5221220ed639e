#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace orvane::app {

// A message for the desktop's own mail program to open, ready to send.
struct MailDraft {
  QString to;  // one address
  QString subject;
  QString body;
  QStringList attachments;  // absolute paths of files that exist
};

// Hands `draft` to the desktop's mail program (xdg-email, with --attach).
// False when there is none or it refused the draft: the caller then shows
// where the files are and whom to send them to (showMailFallback).
bool handOffMail(const MailDraft& draft);

// Tells the user that no mail program took the message: the folder that
// holds the files (with a button that opens it) and the address to send
// them to. Returns at once; the box deletes itself when closed.
void showMailFallback(QWidget* parent, const QString& folder, const QString& to);

}  // namespace orvane::app
