#include "dlgSplash.h"

#include "shell/window/ProgramVersion.h"

#include "platform/qlxLanguage.h"
#include "shell/ShellSettings.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel *label(QWidget *parent, const char *name, const QString &placeholder)
{
    auto *created = new QLabel(placeholder, parent);
    created->setObjectName(QLatin1String(name));
    created->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return created;
}

} // namespace

dlgSplash::dlgSplash(const SettingsStore &settings, QWidget *parent)
    : QDialog(parent)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("dlgSplash"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    m_icon = new QLabel(this);
    m_icon->setPixmap(QIcon(QStringLiteral(":/corvane-monitor/DEFAULT.svg")).pixmap(64, 64));
    m_icon->setAlignment(Qt::AlignTop);

    lblProductName = label(this, "lblProductName", QStringLiteral("Product"));
    QFont productFont = lblProductName->font();
    productFont.setPointSizeF(productFont.pointSizeF() * 1.4);
    productFont.setBold(true);
    lblProductName->setFont(productFont);
    lblVersion = label(this, "lblVersion", QStringLiteral("Version"));
    lblCopyright = label(this, "lblCopyright", QStringLiteral("Copyright"));
    lblPoweredBy = label(this, "lblPoweredBy", QString());
    lblLicense = label(this, "lblLicense", QString());
    lblLicense->setWordWrap(true);

    bnClose = new QPushButton(this);
    bnClose->setObjectName(QStringLiteral("bnClose"));
    bnClose->setDefault(true);
    connect(bnClose, &QPushButton::clicked, this, &QDialog::accept);

    auto *lines = new QVBoxLayout;
    lines->addWidget(lblProductName);
    lines->addWidget(lblVersion);
    lines->addSpacing(8);
    lines->addWidget(lblCopyright);
    lines->addWidget(lblPoweredBy);
    lines->addWidget(lblLicense);
    lines->addStretch(1);

    auto *body = new QHBoxLayout;
    body->addWidget(m_icon);
    body->addSpacing(12);
    body->addLayout(lines, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(bnClose);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addSpacing(12);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void dlgSplash::Form_Load()
{
    // The build number is shown as it is stored, without a prefix.
    lblVersion->setText(ShellSettings::buildNumber(m_settings));
    lblProductName->setText(QStringLiteral("%1 %2").arg(QLatin1String(ProgramVersion::kProductName),
                                                        QLatin1String(ProgramVersion::kVersion)));
    lblCopyright->setText(QString::fromUtf8(ProgramVersion::kCopyright));

    const qlxLanguage builtIn;
    const qlxLanguage &language = m_language ? *m_language : builtIn;
    setWindowTitle(language.Translate(u"762|About Application"));
    bnClose->setText(language.Translate(u"7400|&Close"));
    lblPoweredBy->setText(language.Translate(u"7051|Powered by Meridal"));
    lblLicense->setText(language.Translate(u"7063|Free software under the GNU General Public "
                                           u"License, version 3 or later; it comes with no "
                                           u"warranty. The licence is in the file LICENSE."));
}
