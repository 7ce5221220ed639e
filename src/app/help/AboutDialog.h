#pragma once

#include <QDialog>
#include <QString>

namespace orvane::app {

// Orvane's version and the licences of the libraries it is built from.
class AboutDialog : public QDialog {
  Q_OBJECT

 public:
  explicit AboutDialog(QWidget* parent);

  // The version the build was made as ("0.1.0").
  static QString version();
  // The text shown, as HTML.
  QString text() const { return text_; }

 private:
  QString text_;
};

}  // namespace orvane::app
