#include "app/shell/ScreenshotTour.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QEventLoop>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <fstream>
#include <iostream>
#include <map>

#include "app/board/AddColumnDialog.h"
#include "app/board/BoardColumnModel.h"
#include "app/board/BoardColumnWidget.h"
#include "app/board/BoardView.h"
#include "app/board/FilterBar.h"
#include "app/board/WipLimitField.h"
#include "app/exchange/ImportDialog.h"
#include "app/exchange/TicketExchangeCommands.h"
#include "app/reports/PackSheet.h"
#include "app/flow/FlowView.h"
#include "app/forecast/BacktestDialog.h"
#include "app/forecast/ForecastView.h"
#include "app/forecast/LogForecastDialog.h"
#include "app/help/AboutDialog.h"
#include "app/help/HelpWindow.h"
#include "app/planning/EpicDialog.h"
#include "app/planning/EpicsView.h"
#include "app/planning/IterationsView.h"
#include "app/reports/ReportsWindow.h"
#include "app/roadmap/RoadmapView.h"
#include "app/settings/SettingsDialog.h"
#include "app/shell/AppContext.h"
#include "app/shell/EmptyStateView.h"
#include "app/shell/MainWindow.h"
#include "app/shell/NewProjectDialog.h"
#include "app/shell/ProjectPane.h"
#include "app/shell/ProjectSetupDialog.h"
#include "app/shell/ProjectSidebar.h"
#include "app/shell/RenameProjectDialog.h"
#include "app/shell/StoreCommands.h"
#include "app/ticket/TicketOpener.h"
#include "core/board/RoadmapSample.h"
#include "core/forecast/ForecastService.h"

namespace orvane::app {

namespace {

// Lets layouts, lazy reloads and painting finish before a grab.
void settle() {
  QEventLoop loop;
  QTimer::singleShot(150, &loop, &QEventLoop::quit);
  loop.exec();
}

// Lets a view's forecast, which runs in the thread pool, arrive.
template <typename View>
void awaitForecast(View& view) {
  while (view.isComputing()) {
    QEventLoop loop;
    QObject::connect(&view, &View::forecastShown, &loop, &QEventLoop::quit);
    QTimer::singleShot(1000, &loop, &QEventLoop::quit);
    loop.exec();
  }
}

// Lets the roadmap's simulations, which run in the thread pool, arrive.
void awaitRoadmap(QWidget* view) {
  auto* roadmap = qobject_cast<RoadmapView*>(view);
  while (roadmap != nullptr && roadmap->isComputing()) {
    QEventLoop loop;
    QObject::connect(roadmap, &RoadmapView::roadmapShown, &loop, &QEventLoop::quit);
    QTimer::singleShot(1000, &loop, &QEventLoop::quit);
    loop.exec();
  }
}

// Lets the Flow view's figures, computed in the thread pool, arrive.
void awaitFlow(FlowView& view) {
  while (view.isComputing()) {
    QEventLoop loop;
    QObject::connect(&view, &FlowView::redrawn, &loop, &QEventLoop::quit);
    QTimer::singleShot(1000, &loop, &QEventLoop::quit);
    loop.exec();
  }
}

}  // namespace

ScreenshotTour::ScreenshotTour(AppContext& context, MainWindow& window, std::filesystem::path folder, QObject* parent)
    : QObject(parent), context_(context), window_(window), folder_(std::move(folder)) {}

bool ScreenshotTour::save(QWidget* widget, const QString& name) {
  settle();
  const std::filesystem::path file = folder_ / (name.toStdString() + ".png");
  const bool saved = widget != nullptr && widget->grab().save(QString::fromStdString(file.string()));
  if (!saved) {
    std::cerr << "Could not save " << file.string() << '\n';
    ++failures_;
  }
  return saved;
}

bool ScreenshotTour::saveScreen(const QString& name) {
  // The whole screen, for popups that are windows of their own.
  settle();
  const std::filesystem::path file = folder_ / (name.toStdString() + ".png");
  QScreen* screen = window_.screen();
  const bool saved = screen != nullptr && screen->grabWindow(0).save(QString::fromStdString(file.string()));
  if (!saved) {
    std::cerr << "Could not save " << file.string() << '\n';
    ++failures_;
  }
  return saved;
}

void ScreenshotTour::logForecasts(ForecastView& forecast, const Uuid& project) {
  // A committed date four weeks out, and a run logged two weeks ago, so the
  // history has lines to draw, the promise among them.
  ForecastService service(context_.store());
  const Timestamp earlier{context_.now().secondsSince1970 - 14 * 86400.0};
  const CivilDate today = ForecastService::todayUTC(context_.now());
  try {
    service.setCommitment(project, CivilDate::fromDaysSinceEpoch(today.daysSinceEpoch() + 28).utcMidnight());
    service.log(service.input(project, ForecastService::todayUTC(earlier)).runWhen(), project,
                "Before the scope review", earlier);
  } catch (const std::exception& error) {
    std::cerr << "Could not log a forecast: " << error.what() << '\n';
    ++failures_;
  }
  context_.notifyStoreChanged();
  awaitForecast(forecast);
  // Today's "When" and "By date" forecasts, logged through the sheet.
  struct Logged {
    const char* button;
    const char* note;
    const char* shot;
  };
  for (const Logged& logged : {Logged{"logWhen", "After the scope review", "07-forecast-log-sheet"},
                               Logged{"logByDate", "For the April demo", nullptr}}) {
    auto* button = forecast.findChild<QPushButton*>(QString::fromLatin1(logged.button));
    if (button == nullptr || !button->isEnabled()) continue;
    button->click();
    // The sheet just opened: a closed one may wait for deletion still.
    LogForecastDialog* sheet = nullptr;
    for (auto* open : forecast.findChildren<LogForecastDialog*>())
      if (open->isVisible()) sheet = open;
    if (sheet == nullptr) continue;
    sheet->noteField()->setText(QString::fromLatin1(logged.note));
    if (logged.shot != nullptr) save(sheet, QString::fromLatin1(logged.shot));
    sheet->log();
    settle();
    awaitForecast(forecast);
  }
  auto* tabs = forecast.findChild<QTabWidget*>(QStringLiteral("forecastTabs"));
  if (tabs == nullptr) return;
  tabs->setCurrentIndex(1);
  save(&window_, QStringLiteral("07-forecast-log-and-accuracy"));
  if (auto* scroll = tabs->widget(1)->findChild<QScrollArea*>()) {
    settle();
    if (auto* accuracy = scroll->findChild<QWidget*>(QStringLiteral("accuracySection")))
      scroll->ensureWidgetVisible(accuracy, 0, 0);
    save(&window_, QStringLiteral("07-forecast-accuracy"));
    scroll->verticalScrollBar()->setValue(0);
  }
  tabs->setCurrentIndex(0);
}

int ScreenshotTour::run() {
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);

  EmptyStateView empty(nullptr);
  empty.resize(window_.size());
  empty.show();
  save(&empty, QStringLiteral("00-empty-state"));
  empty.hide();

  if (window_.sidebar()->count() == 0) window_.commands()->loadDemoProject();
  window_.sidebar()->setCurrentRow(0);
  const std::optional<Uuid> project = window_.selectedProject();

  int index = 1;
  for (ProjectViewMode mode : allProjectViewModes) {
    window_.setViewMode(mode);
    // The planning views show forecasts too: grab them with the numbers in.
    if (auto* epics = qobject_cast<EpicsView*>(window_.pane()->view(mode))) awaitForecast(*epics);
    if (auto* iterations = qobject_cast<IterationsView*>(window_.pane()->view(mode))) awaitForecast(*iterations);
    awaitRoadmap(window_.pane()->view(mode));
    save(&window_, QStringLiteral("%1-%2").arg(index++, 2, 10, QChar('0')).arg(title(mode).toLower()));
  }

  // The forecast with the team's throughput 30% lower and 30% higher.
  window_.setViewMode(ProjectViewMode::forecast);
  if (auto* forecast = qobject_cast<ForecastView*>(window_.pane()->view(ProjectViewMode::forecast))) {
    auto* slider = forecast->findChild<QSlider*>(QStringLiteral("throughputChange"));
    for (const int percent : {-30, 30}) {
      slider->setValue(percent);
      awaitForecast(*forecast);
      save(&window_, QStringLiteral("07-forecast-what-if-%1")
                         .arg(percent < 0 ? QStringLiteral("minus-30") : QStringLiteral("plus-30")));
    }
    slider->setValue(0);
    awaitForecast(*forecast);
    // How many by a date, then a day the service refuses, then the
    // throughput history with its weekly estimate, scrolled into sight.
    auto* byDate = forecast->findChild<QWidget*>(QStringLiteral("byDateSection"));
    // The forecast page's own scroll area: the log page has another.
    QScrollArea* scroll = nullptr;
    for (QWidget* up = byDate; up != nullptr && scroll == nullptr; up = up->parentWidget())
      scroll = qobject_cast<QScrollArea*>(up);
    auto* day = forecast->findChild<QDateEdit*>(QStringLiteral("byDateDay"));
    if (scroll != nullptr && byDate != nullptr && day != nullptr) {
      settle();
      scroll->ensureWidgetVisible(byDate, 0, 0);
      save(&window_, QStringLiteral("07-forecast-by-date"));
      const QDate picked = day->date();
      day->setDate(QDate::currentDate().addYears(11));
      awaitForecast(*forecast);
      settle();
      scroll->ensureWidgetVisible(byDate, 0, 0);
      save(&window_, QStringLiteral("07-forecast-by-date-refused"));
      day->setDate(picked);
      awaitForecast(*forecast);
      settle();
      scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
      save(&window_, QStringLiteral("07-forecast-history"));
      scroll->verticalScrollBar()->setValue(0);
    }
    // The first epic at half of the team's capacity.
    auto* scope = forecast->findChild<QComboBox*>(QStringLiteral("forecastScope"));
    if (scope->count() > 1) {
      forecast->findChild<QDoubleSpinBox*>(QStringLiteral("capacityShare"))->setValue(50);
      scope->setCurrentIndex(1);
      awaitForecast(*forecast);
      save(&window_, QStringLiteral("07-forecast-epic"));
      scope->setCurrentIndex(0);
      awaitForecast(*forecast);
    }
    // How the forecast of six weeks ago would have done.
    if (auto* backtest = qobject_cast<BacktestDialog*>(forecast->openBacktest())) {
      backtest->backtest(ForecastService::todayUTC(context_.now()).addingDays(-42));
      saveScreen(QStringLiteral("07-forecast-backtest"));
      backtest->close();
    }
    if (project) logForecasts(*forecast, *project);
  }

  // The flow over 12 and 52 weeks: the tiles with the health beside them,
  // then scrolled down to each group of charts in turn.
  window_.setViewMode(ProjectViewMode::flow);
  if (auto* flow = qobject_cast<FlowView*>(window_.pane()->view(ProjectViewMode::flow))) {
    auto* scroll = flow->findChild<QScrollArea*>();
    const std::pair<const char*, const char*> parts[] = {{"charts", "workItemAgeCard"},
                                                         {"over-time", "wipRunCard"},
                                                         {"behaviour", "cycleTimeXmRCard"},
                                                         {"stability", "stabilityCard"}};
    for (const std::int64_t weeks : {12, 52}) {
      flow->setWeeks(weeks);
      awaitFlow(*flow);
      scroll->verticalScrollBar()->setValue(0);
      save(&window_, QStringLiteral("08-flow-%1-weeks").arg(weeks));
      for (const auto& [part, widget] : parts) {
        if (auto* shown = flow->findChild<QWidget*>(QLatin1String(widget))) {
          settle();
          scroll->ensureWidgetVisible(shown, 0, 0);
          save(&window_, QStringLiteral("08-flow-%1-weeks-%2").arg(weeks).arg(QLatin1String(part)));
        }
      }
    }
    flow->setWeeks(FlowScreen::defaultWeeks);
    awaitFlow(*flow);
    scroll->verticalScrollBar()->setValue(0);
  }

  window_.setViewMode(ProjectViewMode::board);
  window_.pane()->filterBar()->blockedBox()->setChecked(true);
  save(&window_, QStringLiteral("10-board-blocked-only"));
  window_.pane()->filterBar()->clear();

  auto* newProject = new NewProjectDialog(
      [this](const QString& name, const QString& key) { return window_.commands()->createProject(name, key); },
      &window_);
  newProject->keyField()->setText(QStringLiteral("FRC"));
  newProject->create();  // no name: the sheet shows the refusal
  newProject->show();
  save(newProject, QStringLiteral("11-new-project-refused"));
  delete newProject;

  if (project) {
    auto* setup = new ProjectSetupDialog(context_, *project, &window_);
    setup->field("clientEmail")->setText(QStringLiteral("anna@client.example"));
    setup->field("internalEmail")->setText(QStringLiteral(" Anna@Client.example "));
    setup->save();
    setup->show();
    save(setup, QStringLiteral("12-report-recipients-refused"));
    delete setup;
  }

  auto* addColumn = new AddColumnDialog(&window_);
  addColumn->show();
  save(addColumn, QStringLiteral("13-add-column"));
  // A limit that would be refused is said where it is typed, and Add waits.
  addColumn->nameField()->setText(QStringLiteral("QA"));
  addColumn->limitField()->field()->setText(QStringLiteral("-1"));
  save(addColumn, QStringLiteral("13b-add-column-limit-refused"));
  delete addColumn;

  // The prefix as it will be stored, shown while it is typed.
  auto* prefix =
      new NewProjectDialog([](const QString&, const QString&) { return std::optional<QString>(); }, &window_);
  prefix->nameField()->setText(QStringLiteral("Forecast clinic"));
  prefix->keyField()->setText(QStringLiteral("frc x"));
  prefix->show();
  save(prefix, QStringLiteral("11b-new-project-prefix"));
  delete prefix;

  if (project) {
    if (const std::optional<ProjectSnapshot> snapshot = context_.board().snapshot(*project)) {
      auto* epic = new EpicDialog(
          context_.calendar(), snapshot->epics, std::nullopt, [](auto&&...) { return true; }, &window_);
      epic->findChild<QLineEdit*>(QStringLiteral("name"))->setText(QStringLiteral("Payments"));
      epic->findChild<QLineEdit*>(QStringLiteral("color"))->setText(QStringLiteral("#zz12"));
      epic->show();
      save(epic, QStringLiteral("13c-epic-colour-refused"));
      epic->findChild<QLineEdit*>(QStringLiteral("color"))->setText(QStringLiteral("#3A7BD5"));
      save(epic, QStringLiteral("13d-epic-colour-swatch"));
      delete epic;
    }
  }

  if (project) {
    window_.deleteSelectedProject();
    settle();
    auto* confirm = window_.findChild<QMessageBox*>(QStringLiteral("confirmDeleteProject"));
    save(confirm, QStringLiteral("14-delete-project-confirmation"));
    if (confirm != nullptr) confirm->reject();
  }

  if (project) {
    if (auto snapshot = context_.board().snapshot(*project); snapshot && !snapshot->tickets.empty()) {
      // The ticket with the most comments and checklist items shows the
      // window best.
      std::map<Uuid, int> records;
      for (const TicketComment& comment : snapshot->comments) ++records[comment.ticketId];
      for (const ChecklistItem& item : snapshot->checklistItems) ++records[item.ticketId];
      Uuid shown = snapshot->tickets.front().id;
      int most = 0;
      for (const auto& [ticket, count] : records) {
        if (count > most) {
          most = count;
          shown = ticket;
        }
      }
      if (QWidget* ticket = openTicketWindow(context_, shown, &window_)) {
        save(ticket, QStringLiteral("15-ticket-window"));
        ticket->close();
      }
    }
  }
  if (QWidget* people = openPeopleWindow(context_, &window_)) {
    save(people, QStringLiteral("16-people"));
    people->close();
  }
  // Backing up and restoring into the same store adds a restored copy.
  const std::filesystem::path backup = folder_ / "backup.json";
  if (window_.commands()->writeBackup(backup)) {
    if (const std::optional<QString> message = window_.commands()->restoreFile(backup)) {
      QMessageBox box(QMessageBox::Information, QStringLiteral("Restore from backup"), *message, QMessageBox::Ok,
                      &window_);
      box.show();
      save(&box, QStringLiteral("17-restore-result"));
    }
    std::filesystem::remove(backup, ignored);
  }
  if (project) {
    // A small file with a warning, a skipped row and a new epic and person,
    // previewed and then imported.
    const std::filesystem::path sample = folder_ / "import-sample.csv";
    std::ofstream(sample) << "title,column,epic,assignee,priority,created_at,due_date\n"
                             "Export invoices as PDF,Backlog,Billing,Mara Lind,High,2026-01-05,2026-04-30\n"
                             "Retry failed payments,In Progress,Billing,,Someday,2026-01-12,\n"
                             "Sign-in with passkeys,Nowhere,,Mara Lind,Low,,\n"
                             ",Backlog,,,,,\n"
                             "Tidy the settings page,,,,,,\n";
    if (ImportDialog* dialog = window_.exchange()->openImportFile(*project, sample)) {
      save(dialog, QStringLiteral("18-import-preview"));
      dialog->importButton()->click();
      settle();
      auto* report = window_.findChild<QMessageBox*>(QStringLiteral("importReport"));
      save(report, QStringLiteral("19-import-report"));
      if (report != nullptr) report->accept();
    }
    std::filesystem::remove(sample, ignored);
  }
  if (project) {
    window_.setViewMode(ProjectViewMode::board);
    settle();
    // Three cards from two columns, then the card menu over them.
    BoardView* board = window_.pane()->boardView();
    std::vector<Uuid> chosen;
    for (BoardColumnWidget* column : board->columnWidgets()) {
      for (int row = 0; row < column->model()->rowCount() && row < 2 && chosen.size() < 3; ++row)
        chosen.push_back(column->model()->card(row).id);
    }
    board->selectTickets(chosen);
    save(&window_, QStringLiteral("20-board-multi-selection"));
    for (BoardColumnWidget* column : board->columnWidgets()) {
      if (column->model()->rowCount() == 0) continue;
      const QRect card = column->list()->visualRect(column->model()->index(0));
      QMenu* menu = board->showCardMenu(column->list()->viewport()->mapToGlobal(card.center()));
      settle();
      saveScreen(QStringLiteral("21-card-menu"));
      menu->close();
      break;
    }
    board->selectTickets({});

    // The rename sheet, refusing an empty name where it was typed.
    if (auto* rename = qobject_cast<RenameProjectDialog*>(window_.renameProject(*project))) {
      rename->nameField()->setText(QStringLiteral("  "));
      rename->rename();
      save(rename, QStringLiteral("22-rename-project-refused"));
      rename->reject();
    }

    // The development packs: what will be written, then written and ready to send.
    auto* packs = new PackSheet(context_, *project, &window_);
    packs->show();
    settle();
    save(packs, QStringLiteral("23-development-packs"));
    QTemporaryDir packFolder;
    QEventLoop writing;
    connect(packs, &PackSheet::packsWritten, &writing, &QEventLoop::quit);
    connect(packs, &PackSheet::writeFailed, &writing, &QEventLoop::quit);
    QTimer::singleShot(60000, &writing, &QEventLoop::quit);
    packs->writeInto(packFolder.path());
    writing.exec();
    if (!packs->written().empty()) save(packs, QStringLiteral("23b-development-packs-written"));
    else ++failures_;
    delete packs;
  }
  tourSettingsAndHelp();
  tourRoadmap(project);
  tourReports(project);
  return failures_ == 0 ? 0 : 1;
}

void ScreenshotTour::tourSettingsAndHelp() {
  // A logo drawn for the occasion: a wide mark with initials, as a studio
  // would have.
  std::error_code ignored;
  const std::filesystem::path logo = folder_ / "logo.png";
  const std::filesystem::path notPng = folder_ / "notes.png";
  {
    QImage mark(240, 96, QImage::Format_ARGB32);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(0x1f, 0x6f, 0xb2));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(4, 4, 232, 88), 18, 18);
    painter.setPen(Qt::white);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(52);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(mark.rect(), Qt::AlignCenter, QStringLiteral("LSS"));
    painter.end();
    mark.save(QString::fromStdString(logo.string()), "PNG");
  }
  std::ofstream(notPng) << "Meeting notes, not a picture.\n";
  if (SettingsDialog* settings = window_.openSettings()) {
    settings->field("preparedBy")->setText(QStringLiteral("Mara Lind"));
    settings->field("organisation")->setText(QStringLiteral("Lind Software Studio"));
    settings->field("contact")->setText(QStringLiteral("mara@lind-studio.example · +44 20 7946 0000"));
    settings->chooseLogo(QString::fromStdString(logo.string()));
    save(settings, QStringLiteral("23-settings"));
    settings->chooseLogo(QString::fromStdString(notPng.string()));
    save(settings, QStringLiteral("23b-settings-logo-refused"));
    settings->reject();
  }
  std::filesystem::remove(logo, ignored);
  std::filesystem::remove(notPng, ignored);

  if (HelpWindow* help = window_.showHelp()) {
    save(help, QStringLiteral("24-help"));
    help->showSection(QStringLiteral("shortcuts"));
    save(help, QStringLiteral("24b-help-shortcuts"));
    help->close();
  }
  if (AboutDialog* about = window_.showAbout()) {
    save(about, QStringLiteral("25-about"));
    about->reject();
  }
}

void ScreenshotTour::tourReports(const std::optional<Uuid>& demo) {
  if (!demo) return;
  ReportsWindow* reports = openReportsWindow(context_, *demo, &window_);
  const auto awaitPreview = [reports] {
    while (reports->isDrawing()) {
      QEventLoop loop;
      QObject::connect(reports, &ReportsWindow::previewShown, &loop, &QEventLoop::quit);
      QTimer::singleShot(1000, &loop, &QEventLoop::quit);
      loop.exec();
    }
    settle();
  };
  awaitPreview();
  save(reports, QStringLiteral("40-reports-client"));
  reports->setAudience(ReportAudience::internal);
  awaitPreview();
  save(reports, QStringLiteral("41-reports-internal"));
  reports->close();
}

void ScreenshotTour::tourRoadmap(const std::optional<Uuid>& demo) {
  // The demo's roadmap by weeks and by quarters, then a generated plan of
  // 40 epics: its top, and its list of risks and overlaps with one chosen.
  auto* roadmap = qobject_cast<RoadmapView*>(window_.pane()->view(ProjectViewMode::roadmap));
  auto* zoom = roadmap != nullptr ? roadmap->findChild<QComboBox*>(QStringLiteral("roadmapZoom")) : nullptr;
  if (zoom == nullptr) return;
  if (demo) {
    window_.selectProject(*demo);
    window_.setViewMode(ProjectViewMode::roadmap);
    awaitRoadmap(roadmap);
    for (const int z : {0, 2}) {
      zoom->setCurrentIndex(z);
      save(&window_, QStringLiteral("04-roadmap-%1").arg(zoom->currentText().toLower()));
    }
    zoom->setCurrentIndex(1);
  }
  const Project sample = createRoadmapSample(context_.board(), context_.store(), context_.now());
  context_.notifyStoreChanged();
  window_.selectProject(sample.id);
  window_.setViewMode(ProjectViewMode::roadmap);
  awaitRoadmap(roadmap);
  save(&window_, QStringLiteral("04-roadmap-40-epics"));
  if (auto* issues = roadmap->findChild<QListWidget*>(QStringLiteral("roadmapIssues")); issues && issues->count() > 2) {
    issues->setCurrentRow(2);
    save(&window_, QStringLiteral("04-roadmap-40-epics-chosen-risk"));
  }
  zoom->setCurrentIndex(2);
  save(&window_, QStringLiteral("04-roadmap-40-epics-quarters"));
  zoom->setCurrentIndex(1);
}

}  // namespace orvane::app
