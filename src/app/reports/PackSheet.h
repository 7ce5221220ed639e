#pragma once

#include <QDialog>
#include <QFutureWatcher>
#include <QString>
#include <vector>

#include "app/reports/PackWriter.h"
#include "core/model/Uuid.h"
#include "core/reports/DevelopmentPack.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace orvane::app {

class AppContext;

// The development packs of one project, before and after they are written.
// First it lists every person with open tickets flagged "this week": their
// ticket, file and missing-file counts and what will be written and sent,
// before anything touches the disk. "Write packs…" asks for a folder and
// writes a PDF (and a ZIP of the linked files) per person off the window's
// thread; then each row offers "Email…", which hands the person's files to
// the mail program, addressed to the person.
class PackSheet : public QDialog {
  Q_OBJECT

 public:
  PackSheet(AppContext& context, const Uuid& project, QWidget* parent = nullptr);

  // Writes the packs into `folder` without asking for it; packsWritten() or
  // writeFailed() follows once the work is done.
  void writeInto(const QString& folder);
  const DevelopmentPacks& packs() const { return packs_; }
  const std::vector<WrittenPack>& written() const { return written_; }

 signals:
  void packsWritten();
  void writeFailed(const QString& sentence);

 private:
  struct Outcome {
    std::vector<WrittenPack> written;
    QString error;  // the sentence when writing stopped
  };

  void fillTable();
  void chooseFolderAndWrite();
  void showOutcome();
  void email(std::size_t row);

  DevelopmentPacks packs_;
  std::vector<WrittenPack> written_;
  QString folder_;
  QTableWidget* table_ = nullptr;
  QLabel* status_ = nullptr;
  QPushButton* write_ = nullptr;
  QFutureWatcher<Outcome> watcher_;
};

}  // namespace orvane::app
