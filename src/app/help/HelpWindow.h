#pragma once

#include <QString>
#include <QWidget>

class QTextBrowser;
class QTreeWidget;

namespace orvane::app {

// The help text (a resource, so it ships inside the binary) in a browser,
// with its sections and their parts listed at the side; choosing one
// scrolls to it.
class HelpWindow : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent);

  // The whole help text, as HTML.
  static QString html();
  QTextBrowser* browser() const { return browser_; }
  // One top-level item per section, its parts as children.
  QTreeWidget* contents() const { return contents_; }
  // Shows the section or part whose anchor is `anchor` ("forecasts",
  // "shortcuts" ...).
  void showSection(const QString& anchor);

 private:
  QTreeWidget* contents_;
  QTextBrowser* browser_;
};

}  // namespace orvane::app
