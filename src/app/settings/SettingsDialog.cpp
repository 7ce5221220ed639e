#include "app/settings/SettingsDialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "app/settings/BrandingSettings.h"
#include "app/settings/FooterPreview.h"
#include "app/settings/LogoFile.h"
#include "app/widgets/FieldProblem.h"
#include "app/widgets/FormParts.h"

namespace orvane::app {

namespace {

constexpr int footerPreviewWidth = 640;
constexpr int logoPreviewHeight = 48;

}  // namespace

SettingsDialog::SettingsDialog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("settingsDialog"));
  setWindowTitle(QStringLiteral("Settings"));
  setWindowModality(Qt::WindowModal);

  const ReportBranding stored = storedBranding();
  logo_ = stored.logoPNG;

  auto* branding = new QGroupBox(QStringLiteral("Report branding"), this);
  preparedBy_ = makeField(branding, "preparedBy", stored.preparedBy, QStringLiteral("Your name"));
  organisation_ = makeField(branding, "organisation", stored.organisation, QStringLiteral("Your company"));
  contact_ = makeField(branding, "contact", stored.contact,
                       QStringLiteral("For example you@your-company.com, +44 20 7946 0000"));

  logoPreview_ = new QLabel(branding);
  logoPreview_->setObjectName(QStringLiteral("logoPreview"));
  logoPreview_->setMinimumSize(logoPreviewHeight * 3, logoPreviewHeight);
  logoPreview_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  auto* choose = new QPushButton(QStringLiteral("Choose…"), branding);
  choose->setObjectName(QStringLiteral("chooseLogo"));
  removeLogo_ = new QPushButton(QStringLiteral("Remove"), branding);
  removeLogo_->setObjectName(QStringLiteral("removeLogo"));
  auto* logoRow = new QWidget(branding);
  auto* logoLayout = new QHBoxLayout(logoRow);
  logoLayout->setContentsMargins(0, 0, 0, 0);
  logoLayout->addWidget(logoPreview_, 1);
  logoLayout->addWidget(choose);
  logoLayout->addWidget(removeLogo_);
  logoProblem_ = new FieldProblem("logoProblem", branding);

  auto* form = new QFormLayout(branding);
  form->addRow(makeNote(QStringLiteral("Named at the foot of every report page and development pack, for all "
                                       "projects. Who receives a project's reports is kept with the project "
                                       "(Project > Report recipients…)."),
                        branding));
  form->addRow(QStringLiteral("Prepared by"), preparedBy_);
  form->addRow(QStringLiteral("Organisation"), organisation_);
  form->addRow(QStringLiteral("Contact"), contact_);
  form->addRow(QStringLiteral("Logo (PNG)"), withProblem(logoRow, logoProblem_, branding));

  auto* footerBox = new QGroupBox(QStringLiteral("Every page's footer"), this);
  preparedByLine_ = new QLabel(footerBox);
  preparedByLine_->setObjectName(QStringLiteral("preparedByLine"));
  preparedByLine_->setWordWrap(true);
  footer_ = new QLabel(footerBox);
  footer_->setObjectName(QStringLiteral("footerPreview"));
  footer_->setFrameShape(QFrame::StyledPanel);
  auto* footerLayout = new QVBoxLayout(footerBox);
  footerLayout->addWidget(preparedByLine_);
  footerLayout->addWidget(footer_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* save = buttons->addButton(QStringLiteral("Save"), QDialogButtonBox::AcceptRole);
  save->setObjectName(QStringLiteral("save"));
  save->setDefault(true);

  for (QLineEdit* field : {preparedBy_, organisation_, contact_})
    connect(field, &QLineEdit::textChanged, this, &SettingsDialog::update);
  connect(choose, &QPushButton::clicked, this, &SettingsDialog::pickLogo);
  connect(removeLogo_, &QPushButton::clicked, this, &SettingsDialog::removeLogo);
  connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::save);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(branding);
  layout->addWidget(footerBox);
  layout->addStretch(1);
  layout->addWidget(buttons);
  update();
}

ReportBranding SettingsDialog::branding() const {
  // Stored trimmed, as every text the user enters; the prepared-by line
  // trims again on its own.
  return ReportBranding{preparedBy_->text().trimmed().toStdString(), organisation_->text().trimmed().toStdString(),
                        contact_->text().trimmed().toStdString(), logo_};
}

QLineEdit* SettingsDialog::field(const char* objectName) const {
  return findChild<QLineEdit*>(QString::fromLatin1(objectName));
}

void SettingsDialog::pickLogo() {
  const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Choose a logo"),
                                                    QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                                                    QStringLiteral("PNG images (*.png)"));
  if (!path.isEmpty()) chooseLogo(path);
}

bool SettingsDialog::chooseLogo(const QString& path) {
  auto read = readLogoFile(path);
  if (auto* problem = std::get_if<LogoProblem>(&read)) {
    logoProblem_->say(problem->sentence);
    return false;
  }
  logo_ = std::move(std::get<std::string>(read));
  logoProblem_->say({});
  update();
  return true;
}

void SettingsDialog::removeLogo() {
  logo_.reset();
  logoProblem_->say({});
  update();
}

QString SettingsDialog::logoProblem() const { return logoProblem_->sentence(); }

QString SettingsDialog::preparedByLine() const {
  const auto line = branding().preparedByLine();
  return line ? QString::fromStdString(*line) : QString();
}

void SettingsDialog::update() {
  const ReportBranding current = branding();
  const QString line = preparedByLine();
  preparedByLine_->setText(line.isEmpty() ? QStringLiteral("No prepared-by line: fill in your name or organisation.")
                                          : line);

  QImage logo;
  if (logo_) logo.loadFromData(reinterpret_cast<const uchar*>(logo_->data()), static_cast<int>(logo_->size()), "PNG");
  if (logo.isNull()) {
    logoPreview_->setPixmap({});
    logoPreview_->setText(QStringLiteral("No logo"));
  } else {
    logoPreview_->setPixmap(
        QPixmap::fromImage(logo.scaledToHeight(std::min(logo.height(), logoPreviewHeight), Qt::SmoothTransformation)));
  }
  removeLogo_->setEnabled(logo_.has_value());
  footer_->setPixmap(QPixmap::fromImage(orvane::app::footerPreview(current, footerPreviewWidth)));
}

void SettingsDialog::save() {
  storeBranding(branding());
  accept();
}

}  // namespace orvane::app
