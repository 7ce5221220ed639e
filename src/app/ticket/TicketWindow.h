#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/model/ProjectSnapshot.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QTabWidget;

namespace orvane {
class BoardService;
struct TicketFields;
}  // namespace orvane

namespace orvane::app {

class AppContext;
class DayField;
class TicketFilesTab;
class TicketTab;

// Everything about one ticket, each field editable on its own: every edit is
// one undoable step, and a refusal is shown as the service's sentence with
// the field put back to what is stored. The window follows the store: it
// reloads on every change, and when the ticket is gone (deleted here or
// elsewhere) it says so and disables itself until an undo brings it back.
// Non-modal, so several tickets can be open beside the board.
class TicketWindow : public QDialog {
  Q_OBJECT

 public:
  TicketWindow(AppContext& context, const Uuid& ticket, QWidget* parent);
  ~TicketWindow() override;

  const Uuid& ticket() const { return ticket_; }
  // Links the file at `path` (what "Add file…" does after its open panel).
  void addFile(const QString& path);
  // Opens a linked file with the desktop's program for it; a warning when
  // the file is no longer where it was linked.
  void openFile(const Uuid& fileLink);

 public slots:
  void done(int result) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildFields();

  void reload();
  void showGone();
  void fillFields(const Ticket& ticket);

  // One undoable step over this window; false (after the alert) when refused,
  // in which case the fields are put back to what is stored.
  bool change(const QString& label, const std::function<void(BoardService&)>& step);
  // The ticket's editable text fields as stored, with `edit` applied.
  void changeFields(const QString& label, const std::function<void(TicketFields&)>& edit);
  const Ticket* current() const;

  void commitTitle();
  void commitDetails();
  void commitTags();

  AppContext& context_;
  Uuid ticket_;
  std::optional<Uuid> project_;
  std::shared_ptr<const ProjectSnapshot> snapshot_;
  bool changing_ = false;  // a step (and its alert) is under way

  QLabel* reference_ = nullptr;
  QLabel* dates_ = nullptr;
  QLabel* notice_ = nullptr;
  QLineEdit* title_ = nullptr;
  QPlainTextEdit* details_ = nullptr;
  QComboBox* priority_ = nullptr;
  QComboBox* column_ = nullptr;
  QComboBox* epic_ = nullptr;
  QComboBox* assignee_ = nullptr;
  QComboBox* iteration_ = nullptr;
  DayField* due_ = nullptr;
  QLineEdit* tags_ = nullptr;
  QCheckBox* blocked_ = nullptr;
  QCheckBox* thisWeek_ = nullptr;
  QWidget* fields_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  // The pages below the fields, each filled from the same snapshot.
  std::vector<TicketTab*> pages_;
  TicketFilesTab* files_ = nullptr;
};

}  // namespace orvane::app
