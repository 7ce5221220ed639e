#include "app/planning/EpicDialog.h"

#include <QColor>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>

#include "app/widgets/DayField.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/ItemIds.h"
#include "app/widgets/NameCheck.h"

namespace orvane::app {
namespace {

// Colours are stored as typed and drawn by the board and the reports, which
// read "#RRGGBB" only.
bool isColorHex(const QString& text) {
  static const QRegularExpression hex(QStringLiteral("^#[0-9A-Fa-f]{6}$"));
  return hex.match(text).hasMatch();
}

}  // namespace

EpicDialog::EpicDialog(const icu::Calendar& calendar, const std::vector<Epic>& epics, const std::optional<Epic>& epic,
                       Save save, QWidget* parent)
    : QDialog(parent), save_(std::move(save)), others_(epics) {
  setObjectName(QStringLiteral("epicDialog"));
  setWindowTitle(epic ? QStringLiteral("Edit epic") : QStringLiteral("New epic"));
  if (epic) self_ = epic->id;
  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("name"));
  details_ = new QPlainTextEdit(this);
  details_->setObjectName(QStringLiteral("details"));
  details_->setTabChangesFocus(true);
  start_ = new DayField(calendar, true, this);
  start_->setObjectName(QStringLiteral("start"));
  due_ = new DayField(calendar, true, this);
  due_->setObjectName(QStringLiteral("due"));
  color_ = new QLineEdit(this);
  color_->setObjectName(QStringLiteral("color"));
  color_->setPlaceholderText(QStringLiteral("#RRGGBB"));
  swatch_ = new QLabel(this);
  swatch_->setObjectName(QStringLiteral("swatch"));
  swatch_->setFixedSize(18, 18);
  nameProblem_ = new FieldProblem("nameProblem", this);
  dateProblem_ = new FieldProblem("dateProblem", this);
  colorProblem_ = new FieldProblem("colorProblem", this);
  if (epic) {
    name_->setText(qText(epic->name));
    details_->setPlainText(qText(epic->details));
    start_->setInstant(epic->startDate);
    due_->setInstant(epic->dueDate);
    color_->setText(qText(epic->colorHex.value_or("")));
  }

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  saveButton_ = buttons->button(QDialogButtonBox::Save);
  saveButton_->setObjectName(QStringLiteral("save"));
  connect(buttons, &QDialogButtonBox::accepted, this, &EpicDialog::submit);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &EpicDialog::check);
  connect(color_, &QLineEdit::textChanged, this, &EpicDialog::check);
  connect(start_, &DayField::edited, this, &EpicDialog::check);
  connect(due_, &DayField::edited, this, &EpicDialog::check);

  auto* colorRow = new QWidget(this);
  auto* colorLayout = new QHBoxLayout(colorRow);
  colorLayout->setContentsMargins(0, 0, 0, 0);
  colorLayout->addWidget(color_, 1);
  colorLayout->addWidget(swatch_);
  auto* form = new QFormLayout(this);
  form->addRow(QStringLiteral("Name"), withProblem(name_, nameProblem_, this));
  form->addRow(QStringLiteral("Details"), details_);
  form->addRow(QStringLiteral("Start"), start_);
  form->addRow(QStringLiteral("Due (a milestone)"), withProblem(due_, dateProblem_, this));
  form->addRow(QStringLiteral("Colour"), withProblem(colorRow, colorProblem_, this));
  form->addRow(buttons);
  check();
}

EpicDialog::Values EpicDialog::values() const {
  Values values{name_->text().toStdString(), details_->toPlainText().toStdString(), start_->instant(), due_->instant(),
                std::nullopt};
  if (!color_->text().trimmed().isEmpty()) values.colorHex = color_->text().toStdString();
  return values;
}

QStringList EpicDialog::problems() const {
  QStringList shown;
  for (const FieldProblem* problem : {nameProblem_, dateProblem_, colorProblem_})
    if (!problem->sentence().isEmpty()) shown << problem->sentence();
  return shown;
}

void EpicDialog::check() {
  const QString nameProblem = app::nameProblem(name_->text(), others_, NameErrors::project, self_);
  nameProblem_->say(name_->text().isEmpty() ? QString() : nameProblem);

  const std::optional<Timestamp> start = start_->instant();
  const std::optional<Timestamp> due = due_->instant();
  const bool datesInOrder = !start || !due || !(*due < *start);
  dateProblem_->say(datesInOrder ? QString() : QString::fromUtf8(PMError(PMError::Case::invalidDateRange).what()));

  const QString color = color_->text().trimmed();
  const bool colorFine = color.isEmpty() || isColorHex(color);
  colorProblem_->say(colorFine ? QString()
                               : QStringLiteral("A colour is # followed by six hexadecimal digits (0-9, A-F), for "
                                                "example #3A7BD5."));
  // The swatch shows the colour the board will draw; nothing while there is none.
  QPixmap swatch(swatch_->size());
  swatch.fill(color.isEmpty() || !colorFine ? QColor(Qt::transparent) : QColor(color));
  swatch_->setPixmap(swatch);
  swatch_->setToolTip(colorFine ? color : QString());

  saveButton_->setEnabled(nameProblem.isEmpty() && datesInOrder && colorFine);
}

void EpicDialog::submit() {
  if (!saveButton_->isEnabled()) return;
  if (save_(values(), this)) accept();
}

}  // namespace orvane::app
