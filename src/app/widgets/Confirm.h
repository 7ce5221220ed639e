#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace orvane::app {

// Asks `question` with `explanation` below it over `parent`, window-modal and
// non-blocking; runs `onConfirm` when the user presses `action` (a
// destructive button beside Cancel). The box is named `name`, so tests can
// find it and press the button, and deletes itself when closed.
void confirm(QWidget* parent, const QString& name, const QString& question, const QString& explanation,
             const QString& action, std::function<void()> onConfirm);

}  // namespace orvane::app
