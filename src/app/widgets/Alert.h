#pragma once

#include <QString>

class QWidget;

namespace orvane::app {

// Shows `text` (a service's sentence, unchanged) in a warning over `parent`.
// The alert opens window-modal and returns at once; it deletes itself when
// closed. Its object name is "alert", so tests can find and read it.
void showAlert(QWidget* parent, const QString& text);

}  // namespace orvane::app
