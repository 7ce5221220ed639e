#include "app/board/AddColumnDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/board/WipLimitField.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/NameCheck.h"

namespace orvane::app {

AddColumnDialog::AddColumnDialog(QWidget* parent, std::vector<BoardColumn> columns)
    : QDialog(parent, Qt::Sheet), columns_(std::move(columns)) {
  setObjectName(QStringLiteral("addColumnDialog"));
  setWindowTitle(QStringLiteral("Add column"));
  setWindowModality(Qt::WindowModal);
  name_ = new QLineEdit(this);
  name_->setObjectName(QStringLiteral("columnName"));
  name_->setPlaceholderText(QStringLiteral("Column name"));
  nameProblem_ = new FieldProblem("columnNameProblem", this);
  type_ = new QComboBox(this);
  for (ColumnType type : {ColumnType::backlog, ColumnType::inProgress, ColumnType::done}) {
    const std::string_view label = formLabel(type);
    type_->addItem(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())), static_cast<int>(type));
  }
  type_->setCurrentIndex(1);
  limit_ = new WipLimitField(this);

  auto* explanation = new QLabel(
      QStringLiteral("The type decides what a move into this column means for started and completed dates, so it "
                     "cannot be changed later."),
      this);
  explanation->setWordWrap(true);

  auto* nameColumn = new QVBoxLayout;
  nameColumn->setContentsMargins(0, 0, 0, 0);
  nameColumn->addWidget(name_);
  nameColumn->addWidget(nameProblem_);
  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Name"), nameColumn);
  form->addRow(QStringLiteral("Type"), type_);
  form->addRow(QString(), explanation);
  form->addRow(QStringLiteral("WIP limit"), limit_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  add_ = buttons->addButton(QStringLiteral("Add column"), QDialogButtonBox::AcceptRole);
  add_->setObjectName(QStringLiteral("addColumn"));
  add_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(name_, &QLineEdit::textChanged, this, &AddColumnDialog::check);
  connect(limit_, &WipLimitField::acceptableChanged, this, &AddColumnDialog::check);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  setMinimumWidth(420);
  check();
}

QString AddColumnDialog::name() const { return name_->text(); }

ColumnType AddColumnDialog::type() const { return static_cast<ColumnType>(type_->currentData().toInt()); }

std::optional<std::int64_t> AddColumnDialog::wipLimit() const { return limit_->limit(); }

QString AddColumnDialog::nameProblem() const { return nameProblem_->sentence(); }

void AddColumnDialog::check() {
  const QString problem = app::nameProblem(name_->text(), columns_, NameErrors::board);
  // An untouched empty name is not ready yet rather than wrong.
  nameProblem_->say(name_->text().isEmpty() ? QString() : problem);
  add_->setEnabled(problem.isEmpty() && limit_->isAcceptable());
}

}  // namespace orvane::app
