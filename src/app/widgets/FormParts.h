#pragma once

#include <QString>
#include <string>

class QLabel;
class QLineEdit;
class QWidget;

namespace orvane::app {

// A one-line field holding `value`, found by tests and the tour as `name`.
QLineEdit* makeField(QWidget* parent, const char* name, const std::string& value, const QString& placeholder = {});

// A wrapped line of explanation under a form's fields, in the muted colour.
QLabel* makeNote(const QString& text, QWidget* parent);

}  // namespace orvane::app
