#pragma once

#include <QDialog>
#include <QStringList>

#include "core/model/Uuid.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace orvane::app {

class AppContext;
class FieldProblem;

// Who one project's reports are for: the client and the internal
// recipient. Save goes through the project service, which checks the
// addresses; a refusal is shown in the sheet and the sheet stays open.
// The address checks are also made as the addresses are typed: the
// sentence stands under the field and Save waits.
class ProjectSetupDialog : public QDialog {
  Q_OBJECT

 public:
  ProjectSetupDialog(AppContext& context, const Uuid& project, QWidget* parent);

  QString errorMessage() const;
  QLineEdit* field(const char* objectName) const;
  QPushButton* saveButton() const { return save_; }
  // The sentences shown under the address fields, client first.
  QStringList fieldProblems() const;
  // Saves, unless an address is still refused under its field.
  void save();

 private:
  void check();

  AppContext& context_;
  Uuid project_;
  QLineEdit* clientName_;
  QLineEdit* clientCompany_;
  QLineEdit* clientEmail_;
  QLineEdit* internalName_;
  QLineEdit* internalEmail_;
  QLabel* error_;
  FieldProblem* clientEmailProblem_;
  FieldProblem* internalEmailProblem_;
  QPushButton* save_;
};

}  // namespace orvane::app
