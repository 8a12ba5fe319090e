#include "dlgDataLogging.h"

#include "OkCancelButtons.h"
#include "SaveFileChooser.h"
#include "SetupCaptions.h"

#include "platform/ErrorPassing.h"
#include "platform/FileErrors.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace SetupCaptions;

dlgDataLogging::dlgDataLogging(const qlxLanguage &language, const SetupServices &services,
                               QWidget *parent)
    : QDialog(parent)
    , m_language(language)
    , m_services(services)
{
    setObjectName(QStringLiteral("dlgDataLogging"));
    setModal(true);
    setWindowTitle(translate(kDataLogging));
    // The size is written in the user's regional form, without digit grouping.
    m_locale.setNumberOptions(QLocale::OmitGroupSeparator);

    m_chkEnabled = new QCheckBox(translate(kEnabled), this);
    m_chkEnabled->setObjectName(QStringLiteral("chkEnabled"));
    m_txtFile = new QLineEdit(this);
    m_txtFile->setObjectName(QStringLiteral("txtFile"));
    const QFontMetrics metrics(m_txtFile->font());
    m_txtFile->setMinimumWidth(metrics.horizontalAdvance(QString(48, u'x')));
    m_bnSelect = new QPushButton(translate(kSelect), this);
    m_bnSelect->setObjectName(QStringLiteral("bnSelect"));
    m_bnSelect->setAutoDefault(false);
    m_lblStatus = new QLabel(this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblStatus->setFrameShape(QFrame::StyledPanel);
    m_lblStatus->setFrameShadow(QFrame::Sunken);
    m_lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_lblStatus->setWordWrap(true);

    const OkCancelButtons okCancel =
        OkCancelButtons::create(this, translate(kOK), translate(kCancel));
    m_OKButton = okCancel.ok;
    m_CancelButton = okCancel.cancel;
    QDialogButtonBox *buttons = okCancel.box;

    // clicked, not toggled: Form_Load sets the box without running the user's command.
    connect(m_chkEnabled, &QCheckBox::clicked, this, &dlgDataLogging::chkEnabled_Click);
    connect(m_bnSelect, &QPushButton::clicked, this, &dlgDataLogging::bnSelect_Click);
    connect(m_OKButton, &QPushButton::clicked, this, &dlgDataLogging::OKButton_Click);
    connect(m_CancelButton, &QPushButton::clicked, this, &dlgDataLogging::CancelButton_Click);

    auto *grid = new QGridLayout;
    grid->addWidget(m_chkEnabled, 0, 0, 1, 3);
    grid->addWidget(new QLabel(translate(kFile), this), 1, 0);
    grid->addWidget(m_txtFile, 1, 1);
    grid->addWidget(m_bnSelect, 1, 2);
    grid->addWidget(m_lblStatus, 2, 0, 1, 3);
    grid->setColumnStretch(1, 1);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addStretch(1);
    layout->addWidget(buttons);
}

void dlgDataLogging::setDataLogging(bool enabled, const QString &fileName)
{
    m_enabled = enabled;
    m_fileName = fileName;
    m_loaded = false;
}

void dlgDataLogging::showEvent(QShowEvent *event)
{
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void dlgDataLogging::Form_Load()
{
    m_loaded = true;
    reportFailures(m_services.errors, "dlgDataLogging.Form_Load", [this] {
        DisplayTextFile(m_fileName);
        m_chkEnabled->setChecked(m_enabled);
        m_txtFile->setEnabled(m_enabled);
        m_bnSelect->setEnabled(m_enabled);
        m_lblStatus->clear();
    });
}

void dlgDataLogging::DisplayTextFile(const QString &path)
{
    // The caret at the end keeps the file name in view when the folder is long.
    m_txtFile->setText(path);
    m_txtFile->setCursorPosition(int(path.size()));
}

bool dlgDataLogging::TestDataFile(const QString &path)
{
    return passOn("dlgDataLogging.TestDataFile", [&] {
        if (!m_chkEnabled->isChecked()) {
            m_lblStatus->clear();
            return true;
        }
        QFile file(path);
        if (!file.open(QIODevice::Append)) {
            const ProgramError error =
                fileError(file, QStringLiteral("dlgDataLogging.TestDataFile"));
            m_lblStatus->setText(QString::number(error.number()) + QStringLiteral(" - ") +
                                 error.description());
            return false;
        }
        file.close();
        const QFileInfo info(path);
        if (!info.isFile()) {
            m_lblStatus->setText(QString::number(ProgramError::kFileNotFound) +
                                 QStringLiteral(" - File not found"));
            return false;
        }
        showFileSize(info.size());
        return true;
    });
}

void dlgDataLogging::showFileSize(qint64 bytes)
{
    m_lblStatus->setText(translate(kFileSize) + m_locale.toString(double(bytes) / 1024.0, 'f', 3) +
                         u' ' + translate(kKbytes));
}

void dlgDataLogging::bnSelect_Click()
{
    reportFailures(m_services.errors, "dlgDataLogging.bnSelect_Click", [this] {
        const SaveFileRequest request{translate(kDataLogging),
                                      translate(kTextFiles) + QStringLiteral(" (*.txt)"),
                                      QStringLiteral("txt"), m_txtFile->text()};
        const QString path = m_services.fileChooser.chooseSaveFile(this, request);
        if (path.isEmpty())
            return;
        DisplayTextFile(path);
        TestDataFile(path);
    });
}

void dlgDataLogging::chkEnabled_Click()
{
    reportFailures(m_services.errors, "dlgDataLogging.chkEnabled_Click", [this] {
        const bool enabled = m_chkEnabled->isChecked();
        m_txtFile->setEnabled(enabled);
        m_bnSelect->setEnabled(enabled);
        if (enabled && m_txtFile->text().isEmpty())
            bnSelect_Click();
        // Without a path there is nothing to try yet; OK asks for one.
        if (!enabled || !m_txtFile->text().isEmpty())
            TestDataFile(m_txtFile->text());
    });
}

void dlgDataLogging::OKButton_Click()
{
    reportFailures(m_services.errors, "dlgDataLogging.OKButton_Click", [this] {
        const bool enabled = m_chkEnabled->isChecked();
        const QString path = m_txtFile->text();
        if (enabled && path.trimmed().isEmpty()) {
            m_services.messages.critical(windowTitle(), translate(kSpecifyFilename));
            return;
        }
        if (!TestDataFile(path))
            return;
        if (enabled != m_enabled || path != m_fileName) {
            m_enabled = enabled;
            m_fileName = path;
            m_changed = true;
        }
        m_accepted = true;
        accept();
    });
}

void dlgDataLogging::CancelButton_Click()
{
    reportFailures(m_services.errors, "dlgDataLogging.CancelButton_Click", [this] { reject(); });
}

QString dlgDataLogging::translate(QStringView token) const
{
    return m_language.Translate(token);
}
