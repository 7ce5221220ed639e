#pragma once

#include "app/ProjectViewBase.h"

class QLabel;

namespace orvane::app {

// A view that is not built yet: it says what it will show.
class PlaceholderView : public ProjectViewBase {
  Q_OBJECT

 public:
  PlaceholderView(AppContext& context, const QString& heading, const QString& promise, QWidget* parent);

 protected:
  void reload() override {}
};

}  // namespace orvane::app
