#pragma once

#include <QFrame>

class QLabel;
class QStackedWidget;
class QVBoxLayout;

namespace orvane::app {

// A framed card around one chart: its title above, and in place of the
// chart a centred empty text when there is nothing to draw. Widgets added
// with addBelow() stay under the chart either way.
class ChartCard : public QFrame {
  Q_OBJECT

 public:
  // `emptyText` may be empty when the chart always has something to show.
  ChartCard(const QString& name, const QString& title, QWidget* chart, const QString& emptyText, QWidget* parent);

  void showEmpty(bool empty);
  bool isEmptyShown() const;
  void addBelow(QWidget* widget);

 private:
  QStackedWidget* pages_ = nullptr;
  QVBoxLayout* column_ = nullptr;
};

}  // namespace orvane::app
