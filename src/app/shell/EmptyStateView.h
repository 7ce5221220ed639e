#pragma once

#include <QWidget>

namespace orvane::app {

// What the right side offers while the store holds no project: three ways in.
class EmptyStateView : public QWidget {
  Q_OBJECT

 public:
  explicit EmptyStateView(QWidget* parent);

  static QString explanation();

 signals:
  void startBlankRequested();
  void loadDemoRequested();
  void restoreRequested();
};

}  // namespace orvane::app
