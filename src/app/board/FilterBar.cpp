#include "app/board/FilterBar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <set>

#include "app/shell/AppContext.h"
#include "app/shell/SnapshotCache.h"

namespace orvane::app {

namespace {

// Combo entries carry a kind and an id: "any", "none", "active", or an id.
const QString anyChoice = QStringLiteral("any");
const QString noneChoice = QStringLiteral("none");
const QString activeChoice = QStringLiteral("active");

// Wide enough for "Any priority"; a narrow window scrolls the bar instead.
QComboBox* makeBox(QWidget* parent, const char* name) {
  auto* box = new QComboBox(parent);
  box->setObjectName(QString::fromLatin1(name));
  box->setMinimumContentsLength(11);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  return box;
}

// Refills `box`, keeping the current choice when it is still offered.
void refill(QComboBox* box, const std::vector<std::pair<QString, QString>>& entries) {
  const QString kept = box->currentData().toString();
  box->clear();
  for (const auto& [label, data] : entries) box->addItem(label, data);
  const int index = box->findData(kept);
  box->setCurrentIndex(index >= 0 ? index : 0);
}

}  // namespace

std::shared_ptr<const ProjectSnapshot> FilterBar::load(const Uuid& project) {
  std::optional<ProjectSnapshot> loaded = context_.board().snapshot(project);
  return loaded ? std::make_shared<const ProjectSnapshot>(std::move(*loaded)) : nullptr;
}

FilterBar::FilterBar(AppContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName(QStringLiteral("filterBar"));
  search_ = new QLineEdit(this);
  search_->setObjectName(QStringLiteral("search"));
  search_->setPlaceholderText(QStringLiteral("Search tickets"));
  search_->setClearButtonEnabled(true);
  search_->setMinimumWidth(160);
  status_ = makeBox(this, "status");
  for (StatusFilter status : allStatusFilters) {
    const std::string_view label = displayLabel(status);
    const std::string_view raw = rawValue(status);
    status_->addItem(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())),
                     QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size())));
  }
  iteration_ = makeBox(this, "iteration");
  assignee_ = makeBox(this, "assignee");
  epic_ = makeBox(this, "epic");
  priority_ = makeBox(this, "priority");
  priority_->addItem(QStringLiteral("Any priority"), anyChoice);
  for (TicketPriority p : {TicketPriority::low, TicketPriority::medium, TicketPriority::high, TicketPriority::urgent}) {
    const std::string_view label = displayLabel(p);
    priority_->addItem(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())),
                       QString::number(static_cast<int>(p)));
  }
  tag_ = makeBox(this, "tag");
  blocked_ = new QCheckBox(QStringLiteral("Blocked"), this);
  blocked_->setObjectName(QStringLiteral("blocked"));
  thisWeek_ = new QCheckBox(QStringLiteral("This week"), this);
  thisWeek_->setObjectName(QStringLiteral("thisWeek"));
  clear_ = new QPushButton(QStringLiteral("Clear"), this);
  clear_->setObjectName(QStringLiteral("clearFilter"));

  connect(search_, &QLineEdit::textChanged, this, &FilterBar::changed);
  for (QComboBox* box : {status_, iteration_, assignee_, epic_, priority_, tag_}) {
    connect(box, &QComboBox::currentIndexChanged, this, &FilterBar::changed);
  }
  connect(blocked_, &QCheckBox::toggled, this, &FilterBar::changed);
  connect(thisWeek_, &QCheckBox::toggled, this, &FilterBar::changed);
  connect(clear_, &QPushButton::clicked, this, &FilterBar::clear);
  connect(&context_, &AppContext::storeChanged, this, &FilterBar::choicesChanged);

  // Two rows, the words and switches above the six choices, so the whole
  // bar fits a 1280-pixel screen beside the project list; a narrower window
  // scrolls the bar sideways instead of widening the window.
  auto* strip = new QWidget;
  auto* rows = new QVBoxLayout(strip);
  rows->setContentsMargins(8, 6, 8, 6);
  rows->setSpacing(4);
  auto* top = new QHBoxLayout;
  auto* choices = new QHBoxLayout;
  rows->addLayout(top);
  rows->addLayout(choices);
  search_->setParent(strip);
  top->addWidget(search_, 1);
  for (QWidget* widget : std::initializer_list<QWidget*>{blocked_, thisWeek_, clear_}) {
    widget->setParent(strip);
    top->addWidget(widget);
  }
  for (QComboBox* box : {status_, iteration_, assignee_, epic_, priority_, tag_}) {
    box->setParent(strip);
    choices->addWidget(box, 1);
  }
  auto* scroll = new QScrollArea(this);
  scroll->setWidget(strip);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  scroll->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  scroll->setFixedHeight(strip->sizeHint().height() + scroll->horizontalScrollBar()->sizeHint().height());
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(scroll);
}

void FilterBar::setProject(const std::optional<Uuid>& project) {
  if (project == project_) return;
  project_ = project;
  choicesChanged();
}

void FilterBar::choicesChanged() {
  choicesStale_ = true;
  if (isVisible()) reloadChoices();
}

void FilterBar::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (choicesStale_) reloadChoices();
}

void FilterBar::reloadChoices() {
  choicesStale_ = false;
  std::vector<std::pair<QString, QString>> iterations{{QStringLiteral("Any iteration"), anyChoice},
                                                      {QStringLiteral("Active iteration"), activeChoice},
                                                      {QStringLiteral("No iteration"), noneChoice}};
  std::vector<std::pair<QString, QString>> people{{QStringLiteral("Anyone"), anyChoice},
                                                  {QStringLiteral("Unassigned"), noneChoice}};
  std::vector<std::pair<QString, QString>> epics{{QStringLiteral("Any epic"), anyChoice}};
  std::vector<std::pair<QString, QString>> tags{{QStringLiteral("Any tag"), anyChoice}};
  if (project_) {
    if (const auto snapshot = cache_ != nullptr ? cache_->get(*project_) : load(*project_)) {
      for (const Iteration& iteration : snapshot->iterations)
        iterations.emplace_back(QString::fromStdString(iteration.name), QString::fromStdString(iteration.id.text()));
      for (const Person& person : snapshot->people)
        people.emplace_back(QString::fromStdString(person.name), QString::fromStdString(person.id.text()));
      for (const Epic& epic : snapshot->epics)
        epics.emplace_back(QString::fromStdString(epic.name), QString::fromStdString(epic.id.text()));
      std::set<QString> seen;
      for (const Ticket& ticket : snapshot->tickets) {
        for (const std::string& tag : ticket.tags) seen.insert(QString::fromStdString(tag).toLower());
      }
      for (const QString& tag : seen) tags.emplace_back(tag, QStringLiteral("tag:") + tag);
    }
  }
  const TicketFilter before = filter();
  loading_ = true;
  {
    const QSignalBlocker a(iteration_), b(assignee_), c(epic_), d(tag_);
    refill(iteration_, iterations);
    refill(assignee_, people);
    refill(epic_, epics);
    refill(tag_, tags);
  }
  loading_ = false;
  // A choice that disappeared (a deleted epic) falls back to "any"; the views
  // hear of it only when that changes the filter.
  if (filter() != before) emit filterChanged();
}

void FilterBar::changed() {
  if (loading_) return;
  clear_->setEnabled(isActive());
  emit filterChanged();
}

void FilterBar::clear() {
  loading_ = true;
  search_->clear();
  for (QComboBox* box : {status_, iteration_, assignee_, epic_, priority_, tag_}) box->setCurrentIndex(0);
  blocked_->setChecked(false);
  thisWeek_->setChecked(false);
  loading_ = false;
  changed();
}

bool FilterBar::isActive() const { return filter().isActive(); }

TicketFilter FilterBar::filter() const {
  TicketFilter filter;
  filter.text = search_->text().toStdString();
  filter.status = statusFilterFromRaw(status_->currentData().toString().toStdString()).value_or(StatusFilter::any);

  const QString iteration = iteration_->currentData().toString();
  if (iteration == activeChoice) {
    filter.iteration = IterationFilter::active();
  } else if (iteration == noneChoice) {
    filter.iteration = IterationFilter::none();
  } else if (const auto id = Uuid::parse(iteration.toStdString())) {
    filter.iteration = IterationFilter::specific(*id);
  }

  const QString assignee = assignee_->currentData().toString();
  if (assignee == noneChoice) {
    filter.unassignedOnly = true;
  } else {
    filter.assigneeId = Uuid::parse(assignee.toStdString());
  }
  filter.epicId = Uuid::parse(epic_->currentData().toString().toStdString());

  bool isNumber = false;
  const int priority = priority_->currentData().toString().toInt(&isNumber);
  if (isNumber) filter.priority = ticketPriorityFromRaw(priority);

  const QString tag = tag_->currentData().toString();
  if (tag.startsWith(QStringLiteral("tag:"))) filter.tag = tag.mid(4).toStdString();
  filter.blockedOnly = blocked_->isChecked();
  filter.thisWeekOnly = thisWeek_->isChecked();
  return filter;
}

}  // namespace orvane::app
