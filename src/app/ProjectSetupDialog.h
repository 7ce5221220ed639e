#pragma once

#include <QDialog>

#include "core/model/Uuid.h"

class QLabel;
class QLineEdit;

namespace orvane::app {

class AppContext;

// Who one project's reports are for: the client and the internal
// recipient. Save goes through the project service, which checks the
// addresses; a refusal is shown in the sheet and the sheet stays open.
class ProjectSetupDialog : public QDialog {
  Q_OBJECT

 public:
  ProjectSetupDialog(AppContext& context, const Uuid& project, QWidget* parent);

  QString errorMessage() const;
  QLineEdit* field(const char* objectName) const;
  void save();

 private:
  AppContext& context_;
  Uuid project_;
  QLineEdit* clientName_;
  QLineEdit* clientCompany_;
  QLineEdit* clientEmail_;
  QLineEdit* internalName_;
  QLineEdit* internalEmail_;
  QLabel* error_;
};

}  // namespace orvane::app
