#include "dlgDataSource.h"

#include "NumericEntry.h"
#include "SamplingCaptions.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/DataSource.h"
#include "platform/spc/PasswordFile.h"
#include "platform/spc/SqlDatabase.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

using namespace SamplingCaptions;
using qlaDatabase6::DataSource;

namespace {

template <typename Widget> Widget *named(Widget *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QString defaultFileChooser(QWidget *parent, const QString &currentPath, const QString &caption,
                           const QString &filter)
{
    // A new file is a new SPC database: the connection creates its tables, so choosing
    // a name that is not there yet is allowed and an existing one is not overwritten.
    return QFileDialog::getSaveFileName(parent, caption, currentPath, filter, nullptr,
                                        QFileDialog::DontConfirmOverwrite);
}

} // namespace

dlgDataSource::dlgDataSource(const qlxLanguage &language, const SamplingDialogServices &services,
                             QWidget *parent)
    : QDialog(parent)
    , m_language(language)
    , m_services(services)
{
    setObjectName(QStringLiteral("dlgDataSource"));
    setModal(true);
    setWindowTitle(translate(kDataSourceTitle));
    m_numericKeys = new NumericKeyFilter(this);
    const QFontMetrics metrics(font());

    m_optSQLite = named(new QRadioButton(translate(kSQLiteChoice), this), "optSQLite");
    m_lblFile = new QLabel(translate(kFile), this);
    m_txtFile = named(new QLineEdit(this), "txtFile");
    m_txtFile->setMinimumWidth(metrics.horizontalAdvance(QString(44, u'x')));
    m_lblFile->setBuddy(m_txtFile);
    m_bnBrowse = named(new QToolButton(this), "bnBrowse");
    m_bnBrowse->setText(translate(kChoose));

    m_optPostgreSQL = named(new QRadioButton(translate(kServerChoice), this), "optPostgreSQL");
    m_txtHost = named(new QLineEdit(this), "txtHost");
    m_txtPort = named(new QLineEdit(this), "txtPort");
    m_txtPort->setPlaceholderText(QString::number(DataSource::kDefaultPostgreSQLPort));
    m_txtPort->setMaximumWidth(metrics.horizontalAdvance(QString(8, u'0')));
    m_txtPort->installEventFilter(m_numericKeys);
    m_txtDatabase = named(new QLineEdit(this), "txtDatabase");
    m_txtUser = named(new QLineEdit(this), "txtUser");
    m_txtUser->setPlaceholderText(translate(kUserHint));
    m_lblPasswordHint = named(
        new QLabel(translate(kPasswordHint)
                       .arg(QDir::toNativeSeparators(qlaDatabase6::PasswordFile::defaultPath())),
                   this),
        "lblPasswordHint");
    m_lblPasswordHint->setWordWrap(true);
    m_lblPasswordHint->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_txtDSN = named(new QLineEdit(this), "txtDSN");
    m_txtDSN->setReadOnly(true);
    m_bnTestConnection =
        named(new QPushButton(translate(kTestConnection), this), "bnTestConnection");
    m_bnTestConnection->setAutoDefault(false);
    m_lblTestResult = named(new QLabel(this), "lblTestResult");
    m_lblTestResult->setWordWrap(true);
    m_lblTestResult->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_lblTestResult->setMinimumHeight(metrics.height() * 3);
    m_lblTestResult->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    m_OKButton = named(new QPushButton(translate(kOK), this), "OKButton");
    m_OKButton->setDefault(true);
    m_CancelButton = named(new QPushButton(translate(kCancel), this), "CancelButton");
    m_CancelButton->setAutoDefault(false);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_OKButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_CancelButton, QDialogButtonBox::RejectRole);

    // The fields of each choice sit under it, indented as its dependants.
    const int indent = metrics.height() * 2;
    auto *grid = new QGridLayout;
    grid->setColumnMinimumWidth(0, indent);
    grid->addWidget(m_optSQLite, 0, 0, 1, 4);
    grid->addWidget(m_lblFile, 1, 1);
    grid->addWidget(m_txtFile, 1, 2);
    grid->addWidget(m_bnBrowse, 1, 3);
    grid->addWidget(m_optPostgreSQL, 2, 0, 1, 4);
    const std::array<std::pair<QStringView, QLineEdit *>, 4> serverFields = {{
        {kHost, m_txtHost},
        {kPort, m_txtPort},
        {kDatabase, m_txtDatabase},
        {kUser, m_txtUser},
    }};
    int row = 3;
    for (const auto &[caption, field] : serverFields) {
        auto *label = new QLabel(translate(caption), this);
        label->setBuddy(field);
        m_serverLabels.append(label);
        grid->addWidget(label, row, 1);
        grid->addWidget(field, row, 2, 1, 2, field == m_txtPort ? Qt::AlignLeft : Qt::Alignment());
        ++row;
    }
    grid->addWidget(m_lblPasswordHint, row++, 1, 1, 3);
    grid->setColumnStretch(2, 1);

    auto *nameRow = new QHBoxLayout;
    nameRow->addWidget(new QLabel(translate(kDataSourceName), this));
    nameRow->addWidget(m_txtDSN, 1);
    auto *testRow = new QHBoxLayout;
    testRow->addWidget(m_bnTestConnection, 0, Qt::AlignTop);
    testRow->addWidget(m_lblTestResult, 1);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(metrics.height() / 2);
    layout->addLayout(nameRow);
    layout->addLayout(testRow);
    layout->addStretch(1);
    layout->addWidget(buttons);

    m_optSQLite->setChecked(true);
    for (QRadioButton *option : {m_optSQLite, m_optPostgreSQL})
        connect(option, &QRadioButton::clicked, this, &dlgDataSource::optKind_Click);
    for (QLineEdit *field : {m_txtFile, m_txtHost, m_txtPort, m_txtDatabase, m_txtUser})
        connect(field, &QLineEdit::textEdited, this, &dlgDataSource::fieldsChanged);
    connect(m_bnBrowse, &QToolButton::clicked, this, &dlgDataSource::bnBrowse_Click);
    connect(m_bnTestConnection, &QPushButton::clicked, this,
            &dlgDataSource::bnTestConnection_Click);
    connect(m_OKButton, &QPushButton::clicked, this, &dlgDataSource::OKButton_Click);
    connect(m_CancelButton, &QPushButton::clicked, this, &dlgDataSource::CancelButton_Click);
    enableFields();
}

void dlgDataSource::setDataSourceName(const QString &dsn)
{
    m_dataSourceName = dsn;
    for (QLineEdit *field : {m_txtFile, m_txtHost, m_txtPort, m_txtDatabase, m_txtUser})
        field->clear();
    m_lblTestResult->clear();
    DataSource source;
    QString problem;
    if (!DataSource::parse(dsn, source, problem)) {
        m_optSQLite->setChecked(true);
        enableFields();
        m_txtDSN->setText(dsn);
        m_lblTestResult->setText(problem);
        return;
    }
    if (source.kind() == DataSource::Kind::SQLite) {
        m_optSQLite->setChecked(true);
        m_txtFile->setText(source.filePath());
    } else {
        m_optPostgreSQL->setChecked(true);
        m_txtHost->setText(source.host());
        // A port or user that the name leaves out stays out: the server's default port
        // and the login name apply, as before.
        if (QUrl(dsn.trimmed()).port() > 0)
            m_txtPort->setText(QString::number(source.port()));
        m_txtDatabase->setText(source.database());
        if (source.userGiven())
            m_txtUser->setText(source.user());
    }
    enableFields();
    m_txtDSN->setText(dsn);
}

QString dlgDataSource::sqliteDataSourceName(const QString &path)
{
    DataSource source;
    QString problem;
    if (DataSource::parse(path, source, problem) && source.kind() == DataSource::Kind::SQLite &&
        source.filePath() == path)
        return path;
    return QStringLiteral("sqlite:") + path;
}

QString dlgDataSource::buildDataSourceName(QString *problem) const
{
    QString why;
    QString dsn;
    if (m_optSQLite->isChecked()) {
        const QString path = m_txtFile->text().trimmed();
        if (path.isEmpty())
            why = translate(kNoFile);
        else
            dsn = sqliteDataSourceName(path);
    } else {
        dsn = serverDataSourceName(&why);
    }
    if (problem)
        *problem = why;
    return dsn;
}

QString dlgDataSource::serverDataSourceName(QString *problem) const
{
    const QString host = m_txtHost->text().trimmed();
    const QString portText = m_txtPort->text().trimmed();
    const QString database = m_txtDatabase->text().trimmed();
    const QString user = m_txtUser->text().trimmed();

    if (host.isEmpty()) {
        *problem = translate(kNoServer);
        return {};
    }
    if (database.isEmpty()) {
        *problem = translate(kNoDatabase);
        return {};
    }
    QUrl url;
    url.setScheme(QStringLiteral("postgresql"));
    url.setHost(host);
    if (!portText.isEmpty()) {
        bool ok = false;
        const int port = portText.toInt(&ok);
        if (!ok || port < 1 || port > 65535) {
            *problem = translate(kPortRange);
            return {};
        }
        url.setPort(port);
    }
    if (!user.isEmpty())
        url.setUserName(user);
    url.setPath(u'/' + database);

    // The readable form when it reads back as the same server, database and user; the
    // escaped form otherwise (blanks, a "@" in a user name).
    QString reason;
    for (const QUrl::ComponentFormattingOptions form : {QUrl::PrettyDecoded, QUrl::FullyEncoded}) {
        const QString text = url.toString(form);
        DataSource source;
        if (!DataSource::parse(text, source, reason))
            continue;
        const bool same = source.host().compare(host, Qt::CaseInsensitive) == 0 &&
                          source.database() == database &&
                          (user.isEmpty() ? !source.userGiven() : source.user() == user);
        if (same)
            return text;
        reason = translate(kInvalidServer).arg(host);
    }
    *problem = reason;
    return {};
}

void dlgDataSource::optKind_Click()
{
    reportFailures(m_services.errors, "dlgDataSource.optKind_Click", [this] {
        enableFields();
        fieldsChanged();
    });
}

void dlgDataSource::enableFields()
{
    const bool sqlite = m_optSQLite->isChecked();
    for (QWidget *widget : {static_cast<QWidget *>(m_lblFile), static_cast<QWidget *>(m_txtFile),
                            static_cast<QWidget *>(m_bnBrowse)})
        widget->setEnabled(sqlite);
    for (QWidget *widget : {m_txtHost, m_txtPort, m_txtDatabase, m_txtUser})
        widget->setEnabled(!sqlite);
    for (QLabel *label : m_serverLabels)
        label->setEnabled(!sqlite);
    m_lblPasswordHint->setEnabled(!sqlite);
}

void dlgDataSource::fieldsChanged()
{
    QString problem;
    const QString dsn = buildDataSourceName(&problem);
    m_txtDSN->setText(dsn);
    // A result belongs to the source it was tried on.
    m_lblTestResult->setText(dsn.isEmpty() ? problem : QString());
}

void dlgDataSource::bnBrowse_Click()
{
    reportFailures(m_services.errors, "dlgDataSource.bnBrowse_Click", [this] {
        const QString current = m_txtFile->text().trimmed();
        QString path;
        if (m_services.chooseDatabaseFile) {
            path = m_services.chooseDatabaseFile(this, current);
        } else {
            path = defaultFileChooser(this, current, translate(kDataSourceTitle),
                                      translate(kDatabaseFiles) + QStringLiteral(" (*.db);;") +
                                          translate(kAllFiles) + QStringLiteral(" (*)"));
        }
        if (path.isEmpty())
            return;
        m_txtFile->setText(QDir::toNativeSeparators(path));
        fieldsChanged();
    });
}

void dlgDataSource::bnTestConnection_Click()
{
    reportFailures(m_services.errors, "dlgDataSource.bnTestConnection_Click", [this] {
        QString problem;
        const QString dsn = buildDataSourceName(&problem);
        if (dsn.isEmpty()) {
            m_lblTestResult->setText(problem);
            return;
        }
        DataSource source;
        if (!DataSource::parse(dsn, source, problem)) {
            m_lblTestResult->setText(problem);
            return;
        }
        // A file that is not there yet is not created by a mere test.
        if (source.kind() == DataSource::Kind::SQLite && !QFileInfo::exists(source.filePath()))
            m_lblTestResult->setText(testFile(source.filePath()));
        else
            m_lblTestResult->setText(testConnection(dsn));
    });
}

QString dlgDataSource::testFile(const QString &path) const
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    const QString shown = QDir::toNativeSeparators(folder.filePath());
    if (!folder.isDir())
        return translate(kFolderMissing).arg(shown);
    if (!folder.isWritable())
        return translate(kFolderReadOnly).arg(shown);
    return translate(kFileToBeCreated);
}

QString dlgDataSource::testConnection(const QString &dsn) const
{
    // A connection of its own: the monitor's connection keeps its source until OK.
    qlaDatabase6::SqlDatabase trial;
    trial.setDataSourceName(dsn);
    if (!trial.openConnection())
        return translate(kUnableToConnect) + QStringLiteral(": ") + trial.lastErrorText();
    using qlaDatabase6::RecordKind;
    const auto count = [&](const std::array<QStringView, 2> &forms, RecordKind kind) {
        return m_language.TranslateCount(forms[0], forms[1], trial.listRecords(kind).size());
    };
    const QString counts = count(kPartCount, RecordKind::Part) + QStringLiteral(", ") +
                           count(kProcessCount, RecordKind::Process) + QStringLiteral(", ") +
                           count(kTestCount, RecordKind::Test);
    trial.closeConnection();
    return translate(kConnected) + QStringLiteral(": ") + counts;
}

void dlgDataSource::OKButton_Click()
{
    reportFailures(m_services.errors, "dlgDataSource.OKButton_Click", [this] {
        QString problem;
        const QString dsn = buildDataSourceName(&problem);
        if (dsn.isEmpty()) {
            m_services.messages.critical(windowTitle(), problem);
            return;
        }
        m_dataSourceName = dsn;
        accept();
    });
}

void dlgDataSource::CancelButton_Click()
{
    reportFailures(m_services.errors, "dlgDataSource.CancelButton_Click", [this] { reject(); });
}

QString dlgDataSource::translate(QStringView token) const
{
    return m_language.Translate(token);
}
