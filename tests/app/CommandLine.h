#pragma once

// The real orvane-cli, for tests that hold a screen's numbers against the
// command line's. Include only in test programs given ORVANE_CLI (see
// tests/CMakeLists.txt).

#include <QJsonDocument>
#include <QLabel>
#include <QProcess>
#include <QStringList>
#include <QWidget>

#include "app/AppFixture.h"

namespace orvane::testing {

// What the command line answered: its exit status, standard output and
// standard error.
struct CliAnswer {
  int exitCode = 0;
  QByteArray out;
  QString error;

  QJsonDocument json() const { return QJsonDocument::fromJson(out); }
};

// Runs `orvane-cli --store <the fixture's store> --now <the fixture's day>
// arguments...`, the same store and moment as the fixture's window.
inline CliAnswer runCli(AppFixture& f, const QStringList& arguments) {
  QProcess process;
  const QStringList common{"--store", QString::fromStdString((f.t.dir.path() / "orvane.sqlite").string()), "--now",
                           "2026-03-04T10:00:00Z"};
  process.start(QStringLiteral(ORVANE_CLI), common + arguments);
  if (!process.waitForFinished(30000)) qFatal("orvane-cli %s did not finish", qPrintable(arguments.join(' ')));
  return {process.exitCode(), process.readAllStandardOutput(), QString::fromUtf8(process.readAllStandardError())};
}

// The JSON of `arguments --json`; a failing command stops the test.
inline QJsonDocument cliJson(AppFixture& f, const QStringList& arguments) {
  const CliAnswer answer = runCli(f, arguments + QStringList{"--json"});
  if (answer.exitCode != 0) qFatal("orvane-cli %s failed: %s", qPrintable(arguments.join(' ')), qPrintable(answer.error));
  return answer.json();
}

// The text of the label called `name` inside `parent`; a missing one stops
// the test.
inline QString labelText(const QWidget& parent, const QString& name) {
  auto* found = parent.findChild<QLabel*>(name);
  if (found == nullptr) qFatal("no label %s", qPrintable(name));
  return found->text();
}

}  // namespace orvane::testing
