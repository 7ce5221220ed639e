#pragma once

#include <QDialog>
#include <optional>
#include <string>

#include "core/reports/ReportBranding.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace orvane::app {

class FieldProblem;

// The user's settings, for all projects: who prepared the reports (name,
// organisation, contact line and a PNG logo), with the footer every report
// page will carry drawn live under the fields. Save writes the one branding
// record; Cancel leaves the stored record as it was.
class SettingsDialog : public QDialog {
  Q_OBJECT

 public:
  explicit SettingsDialog(QWidget* parent);

  // The branding as the fields stand now, texts trimmed as they are stored.
  ReportBranding branding() const;
  QLineEdit* field(const char* objectName) const;
  // Takes the PNG at `path` as the logo, or says beside the logo why not
  // and keeps the logo there was. Returns whether it was taken.
  bool chooseLogo(const QString& path);
  void removeLogo();
  // The sentence beside the logo, or empty.
  QString logoProblem() const;
  // The prepared-by line as the footer will show it, or empty.
  QString preparedByLine() const;
  const QLabel* footerPreview() const { return footer_; }
  void save();

 private:
  void pickLogo();
  void update();

  QLineEdit* preparedBy_;
  QLineEdit* organisation_;
  QLineEdit* contact_;
  std::optional<std::string> logo_;
  QLabel* logoPreview_;
  QPushButton* removeLogo_;
  FieldProblem* logoProblem_;
  QLabel* preparedByLine_;
  QLabel* footer_;
};

}  // namespace orvane::app
