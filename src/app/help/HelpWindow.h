#pragma once

#include <QString>
#include <QWidget>

class QListWidget;
class QTextBrowser;

namespace orvane::app {

// The help text (a resource, so it ships inside the binary) in a browser,
// with its sections listed at the side; choosing one scrolls to it.
class HelpWindow : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent);

  // The whole help text, as HTML.
  static QString html();
  QTextBrowser* browser() const { return browser_; }
  QListWidget* contents() const { return contents_; }
  // Shows the section whose anchor is `anchor` ("forecasts", "shortcuts" ...).
  void showSection(const QString& anchor);

 private:
  QListWidget* contents_;
  QTextBrowser* browser_;
};

}  // namespace orvane::app
