#include "app/forecast/LogForecastDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/shell/AppContext.h"
#include "core/forecast/ForecastService.h"

namespace orvane::app {
namespace {

QString ticketsText(std::int64_t n) { return QStringLiteral("%1 ticket%2").arg(n).arg(n == 1 ? "" : "s"); }

QString whatIfText(double percent) {
  if (percent == 0) return {};
  return QStringLiteral(", throughput %1%2%").arg(percent > 0 ? "+" : "").arg(percent);
}

// What is about to be logged, in one line, so the user sees it is the
// forecast on screen.
QString summary(const ShownForecast& forecast) {
  if (const auto* when = std::get_if<WhenForecast>(&forecast)) {
    const auto p85 = when->dates.find(85);
    return QStringLiteral("“When will it be done?” as of %1: %2%3; 85% by %4.")
        .arg(QString::fromStdString(when->asOf.displayText()), ticketsText(when->backlog),
             whatIfText(when->whatIfPercent),
             p85 != when->dates.end() ? QString::fromStdString(p85->second.displayText()) : QStringLiteral("–"));
  }
  const auto& byDate = std::get<ByDateForecast>(forecast);
  const auto p85 = byDate.counts.find(85);
  return QStringLiteral("“How many by a date?” as of %1: %2%3; by %4, %5 at 85%.")
      .arg(QString::fromStdString(byDate.asOf.displayText()), ticketsText(byDate.backlog),
           whatIfText(byDate.whatIfPercent), QString::fromStdString(byDate.target.displayText()),
           p85 != byDate.counts.end() ? ticketsText(p85->second) : QStringLiteral("–"));
}

}  // namespace

LogForecastDialog::LogForecastDialog(AppContext& context, const Uuid& project, ShownForecast forecast, QWidget* parent)
    : QDialog(parent, Qt::Sheet), context_(context), project_(project), forecast_(std::move(forecast)) {
  setObjectName(QStringLiteral("logForecastDialog"));
  setWindowTitle(QStringLiteral("Log this forecast"));
  setWindowModality(Qt::WindowModal);

  auto* what = new QLabel(summary(forecast_), this);
  what->setObjectName(QStringLiteral("loggedForecast"));
  what->setWordWrap(true);
  auto* hint = new QLabel(
      QStringLiteral("The log keeps this run's numbers, so later forecasts can be compared with it and it can be "
                     "judged against what happens."),
      this);
  hint->setWordWrap(true);
  hint->setStyleSheet(QStringLiteral("color: palette(placeholder-text);"));
  note_ = new QLineEdit(this);
  note_->setObjectName(QStringLiteral("forecastNote"));
  note_->setPlaceholderText(QStringLiteral("Note (optional), e.g. after the scope review"));

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* logButton = buttons->addButton(QStringLiteral("Log"), QDialogButtonBox::AcceptRole);
  logButton->setObjectName(QStringLiteral("log"));
  logButton->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &LogForecastDialog::log);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(what);
  layout->addWidget(hint);
  layout->addWidget(note_);
  layout->addWidget(buttons);
  setMinimumWidth(460);
}

void LogForecastDialog::log() {
  const std::string note = note_->text().toStdString();
  const bool logged = context_.perform(
      QStringLiteral("Log forecast"),
      [&](BoardService&) {
        ForecastService service(context_.store());
        std::visit([&](const auto& forecast) { service.log(forecast, project_, note, context_.now()); }, forecast_);
      },
      this);
  if (logged) accept();
}

void askToLogForecast(AppContext& context, const Uuid& project, ShownForecast forecast, QWidget* parent) {
  auto* dialog = new LogForecastDialog(context, project, std::move(forecast), parent);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->open();
}

}  // namespace orvane::app
