#include "app/widgets/FieldProblem.h"

#include <QVBoxLayout>

namespace orvane::app {

FieldProblem::FieldProblem(const char* objectName, QWidget* parent) : QLabel(parent) {
  setObjectName(QLatin1String(objectName));
  setWordWrap(true);
  setStyleSheet(QStringLiteral("color: #b3261e;"));
  hide();
}

void FieldProblem::say(const QString& sentence) {
  setText(sentence);
  setVisible(!sentence.isEmpty());
}

QString FieldProblem::sentence() const { return isHidden() ? QString() : text(); }

QWidget* withProblem(QWidget* field, FieldProblem* problem, QWidget* parent) {
  auto* box = new QWidget(parent);
  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(field);
  layout->addWidget(problem);
  return box;
}

}  // namespace orvane::app
