#include "app/widgets/FormParts.h"

#include <QLabel>
#include <QLineEdit>

namespace orvane::app {

QLineEdit* makeField(QWidget* parent, const char* name, const std::string& value, const QString& placeholder) {
  auto* field = new QLineEdit(QString::fromStdString(value), parent);
  field->setObjectName(QString::fromLatin1(name));
  field->setPlaceholderText(placeholder);
  return field;
}

QLabel* makeNote(const QString& text, QWidget* parent) {
  auto* note = new QLabel(text, parent);
  note->setWordWrap(true);
  note->setStyleSheet(QStringLiteral("color: palette(mid);"));
  return note;
}

}  // namespace orvane::app
