#include "dlgIPSetup.h"

#include "OkCancelButtons.h"
#include "SetupCaptions.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/QtSerialPort.h"
#include "platform/SerialAddress.h"
#include "platform/SocketPort.h"
#include "platform/TcpSocketPort.h"
#include "platform/qlxLanguage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

using namespace SetupCaptions;

namespace {

// The port field must not carry the separators of the settings text.
bool fitsSettingsText(const QString &field)
{
    return !field.contains(u':') && !field.contains(u',') && !field.contains(u' ');
}

QComboBox *newCombo(QWidget *parent, const QString &objectName)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(objectName);
    // Wide enough for the longest entry in any language, so no choice is cut off.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    return combo;
}

} // namespace

dlgIPSetup::dlgIPSetup(const qlxLanguage &language, const SetupServices &services, QWidget *parent)
    : QDialog(parent)
    , m_language(language)
    , m_services(services)
    , m_parser(services.measurementSystem, services.clock)
    , m_socket(services.makeSocket ? services.makeSocket() : std::make_unique<TcpSocketPort>())
    , m_serial(services.makeSerialPort ? services.makeSerialPort()
                                       : std::make_unique<QtSerialPort>())
{
    setObjectName(QStringLiteral("dlgIPSetup"));
    setModal(true);
    buildForm();

    connect(m_socket.get(), &SocketPort::connected, this, &dlgIPSetup::Winsock1_Connect);
    connect(m_socket.get(), &SocketPort::closed, this, &dlgIPSetup::Winsock1_Close);
    connect(m_socket.get(), &SocketPort::errorOccurred, this, &dlgIPSetup::Winsock1_Error);
    connect(m_socket.get(), &SocketPort::dataArrival, this, &dlgIPSetup::Winsock1_DataArrival);
    connect(m_serial.get(), &SerialPort::received, this, &dlgIPSetup::MSComm1_OnComm);

    SetupCombos();
    NotifyStopped();
}

dlgIPSetup::~dlgIPSetup()
{
    // The ports go before the widgets they report to.
    m_socket->disconnect(this);
    m_serial->disconnect(this);
    m_socket->close();
    m_serial->close();
}

void dlgIPSetup::buildForm()
{
    setWindowTitle(translate(kCommunicationsSetup));

    auto *columns = new QHBoxLayout;
    columns->addWidget(buildSettings());
    columns->addWidget(buildConsole(), 1);

    const OkCancelButtons okCancel =
        OkCancelButtons::create(this, translate(kOK), translate(kCancel));
    m_OKButton = okCancel.ok;
    m_CancelButton = okCancel.cancel;
    QDialogButtonBox *buttons = okCancel.box;
    // The buttons' own handlers decide whether the dialog closes.
    connect(m_OKButton, &QPushButton::clicked, this, &dlgIPSetup::OKButton_Click);
    connect(m_CancelButton, &QPushButton::clicked, this, &dlgIPSetup::CancelButton_Click);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addWidget(buttons);
}

QWidget *dlgIPSetup::buildSettings()
{
    auto *settings = new QWidget(this);

    m_txtName = new QLineEdit(settings);
    m_txtName->setObjectName(QStringLiteral("txtName"));
    m_txtName->setMinimumWidth(m_txtName->fontMetrics().horizontalAdvance(QString(20, u'x')));
    m_cmboCommunicationsType = newCombo(settings, QStringLiteral("cmboCommunicationsType"));
    auto *top = new QFormLayout;
    top->addRow(translate(kName), m_txtName);
    top->addRow(translate(kCommunicationsType), m_cmboCommunicationsType);

    m_gbSerial = new QGroupBox(translate(kSerialPort));
    m_gbSerial->setObjectName(QStringLiteral("gbSerial"));
    m_cmboComPort = newCombo(m_gbSerial, QStringLiteral("cmboComPort"));
    // Besides the numbers, a device path can be chosen or typed (a USB adapter, a
    // pseudo-terminal); it is stored as it stands.
    m_cmboComPort->setEditable(true);
    m_cmboComPort->setInsertPolicy(QComboBox::NoInsert);
    m_cmboComPort->setMinimumContentsLength(10);
    m_cmboBaudRate = newCombo(m_gbSerial, QStringLiteral("cmboBaudRate"));
    m_cmboParity = newCombo(m_gbSerial, QStringLiteral("cmboParity"));
    m_cmboDataBits = newCombo(m_gbSerial, QStringLiteral("cmboDataBits"));
    m_cmboStopBits = newCombo(m_gbSerial, QStringLiteral("cmboStopBits"));
    m_cmboFlowControl = newCombo(m_gbSerial, QStringLiteral("cmboFlowControl"));
    auto *serial = new QFormLayout(m_gbSerial);
    serial->addRow(translate(kComPort), m_cmboComPort);
    serial->addRow(translate(kBaudRate), m_cmboBaudRate);
    serial->addRow(translate(kParity), m_cmboParity);
    serial->addRow(translate(kDataBits), m_cmboDataBits);
    serial->addRow(translate(kStopBits), m_cmboStopBits);
    serial->addRow(translate(kFlowControl), m_cmboFlowControl);

    m_gbTCPIP = new QGroupBox(translate(kEthernet));
    m_gbTCPIP->setObjectName(QStringLiteral("gbTCPIP"));
    m_txtHost = new QLineEdit(m_gbTCPIP);
    m_txtHost->setObjectName(QStringLiteral("txtHost"));
    m_txtPort = new QLineEdit(m_gbTCPIP);
    m_txtPort->setObjectName(QStringLiteral("txtPort"));
    m_txtPort->setMaxLength(5);
    m_txtHost->installEventFilter(this);
    m_txtPort->installEventFilter(this);
    auto *tcpip = new QFormLayout(m_gbTCPIP);
    tcpip->addRow(translate(kIPAddress), m_txtHost);
    tcpip->addRow(translate(kIPPort), m_txtPort);

    // One group at a time, in the same place, and the dialog keeps its size when the
    // type changes.
    m_linkPages = new QStackedWidget(settings);
    for (QGroupBox *group : {m_gbSerial, m_gbTCPIP}) {
        auto *page = new QWidget(m_linkPages);
        auto *pageLayout = new QVBoxLayout(page);
        pageLayout->setContentsMargins(0, 0, 0, 0);
        pageLayout->addWidget(group);
        pageLayout->addStretch(1);
        m_linkPages->addWidget(page);
    }
    connect(m_cmboCommunicationsType, &QComboBox::currentIndexChanged, this,
            &dlgIPSetup::cmboCommunicationsType_Click);

    auto *layout = new QVBoxLayout(settings);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(top);
    layout->addWidget(m_linkPages);
    layout->addStretch(1);
    return settings;
}

void dlgIPSetup::setEquipmentName(const QString &name)
{
    m_txtName->setText(name);
}

QString dlgIPSetup::equipmentName() const
{
    return m_txtName->text();
}

void dlgIPSetup::SetupCombos()
{
    passOn("dlgIPSetup.SetupCombos", [this] {
        const QSignalBlocker quiet(m_cmboCommunicationsType);
        m_cmboCommunicationsType->clear();
        m_cmboCommunicationsType->addItems({translate(kSerialPort), translate(kEthernet)});

        m_cmboComPort->clear();
        m_cmboComPort->addItems(QtSerialPort::portChoices());

        m_cmboBaudRate->clear();
        m_cmboBaudRate->addItems({"110", "300", "600", "1200", "2400", "4800", "9600", "14400",
                                  "19200", "28800", "38400", "56000", "128000", "256000"});

        m_cmboParity->clear();
        const std::pair<QChar, QStringView> parities[] = {{u'N', kParityNone},
                                                          {u'O', kParityOdd},
                                                          {u'E', kParityEven},
                                                          {u'M', kParityMark},
                                                          {u'S', kParitySpace}};
        for (const auto &[letter, name] : parities)
            m_cmboParity->addItem(QString(letter) + QStringLiteral(" (") + translate(name) + u')');

        m_cmboDataBits->clear();
        m_cmboDataBits->addItems({"4", "5", "6", "7", "8"});
        m_cmboStopBits->clear();
        m_cmboStopBits->addItems({"1", "1.5", "2"});

        // The position in this list is the port's handshaking mode.
        m_cmboFlowControl->clear();
        m_cmboFlowControl->addItems(
            {translate(kFlowNone), translate(kFlowXonXoff), translate(kFlowCtsRts),
             translate(kFlowCtsRts) + QStringLiteral(" + ") + translate(kFlowXonXoff)});

        m_cmboComPort->setCurrentIndex(m_cmboComPort->findText(QStringLiteral("1")));
        m_cmboBaudRate->setCurrentIndex(m_cmboBaudRate->findText(QStringLiteral("9600")));
        m_cmboParity->setCurrentIndex(0);
        m_cmboDataBits->setCurrentIndex(m_cmboDataBits->findText(QStringLiteral("8")));
        m_cmboStopBits->setCurrentIndex(0);
        m_cmboFlowControl->setCurrentIndex(0);
        m_cmboCommunicationsType->setCurrentIndex(-1);
    });
    m_cmboCommunicationsType->setCurrentIndex(EthernetType);
}

void dlgIPSetup::RefreshSettings(const QString &settings)
{
    passOn("dlgIPSetup.RefreshSettings", [&] {
        SetupCombos();
        QString text = settings;
        if (text.isEmpty())
            text = QStringLiteral("IP:") + m_socket->remoteHost() + u':' +
                   QString::number(m_socket->remotePort());
        m_settingsText = text;

        const QString kind = text.section(u':', 0, 0);
        if (kind == u"IP") {
            m_cmboCommunicationsType->setCurrentIndex(EthernetType);
            m_txtHost->setText(text.section(u':', 1, 1));
            // A new welder has no port yet: an empty field rather than a "0" that the
            // field's own check refuses.
            const QString port = text.section(u':', 2, 2);
            m_txtPort->setText(port == u"0" ? QString() : port);
        } else if (kind == u"COM") {
            m_cmboCommunicationsType->setCurrentIndex(SerialType);
            applySerialSettings(text.section(u':', 1));
        }
        // Any other text leaves everything as SetupCombos chose it.
    });
}

void dlgIPSetup::applySerialSettings(const QString &fields)
{
    const QStringList pieces = fields.split(u',');
    const auto select = [&pieces](QComboBox *combo, int field) {
        const int index = combo->findText(pieces.value(field).trimmed());
        if (index >= 0)
            combo->setCurrentIndex(index);
    };

    const QString port = pieces.value(0).trimmed();
    const int portIndex = m_cmboComPort->findText(port);
    if (portIndex >= 0)
        m_cmboComPort->setCurrentIndex(portIndex);
    else if (!port.isEmpty())
        m_cmboComPort->setEditText(port);
    select(m_cmboBaudRate, 1);
    const QString parity = pieces.value(2).trimmed().toUpper();
    for (int i = 0; i < m_cmboParity->count() && !parity.isEmpty(); ++i) {
        if (m_cmboParity->itemText(i).startsWith(parity.at(0)))
            m_cmboParity->setCurrentIndex(i);
    }
    select(m_cmboDataBits, 3);
    select(m_cmboStopBits, 4);
    bool isNumber = false;
    const int flow = pieces.value(5).trimmed().toInt(&isNumber);
    if (isNumber && flow >= 0 && flow < m_cmboFlowControl->count())
        m_cmboFlowControl->setCurrentIndex(flow);
}

SerialSettings dlgIPSetup::serialSettings() const
{
    SerialSettings settings;
    settings.port = m_cmboComPort->currentText().trimmed();
    settings.baudRate = m_cmboBaudRate->currentText().toInt();
    const QString parity = m_cmboParity->currentText();
    settings.parity = parity.isEmpty() ? QChar(u'N') : parity.at(0);
    settings.dataBits = m_cmboDataBits->currentText().toInt();
    settings.stopBits = m_cmboStopBits->currentText();
    settings.handshaking = std::max(m_cmboFlowControl->currentIndex(), 0);
    return settings;
}

void dlgIPSetup::cmboCommunicationsType_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.cmboCommunicationsType_Click", [this] {
        const int type = m_cmboCommunicationsType->currentIndex();
        if (type == SerialType || type == EthernetType)
            m_linkPages->setCurrentIndex(type);
    });
}

bool dlgIPSetup::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        if (watched == m_txtHost)
            txtHost_GotFocus();
        else if (watched == m_txtPort)
            txtPort_GotFocus();
    }
    return QDialog::eventFilter(watched, event);
}

// A field entered by Tab or by a click has its whole text selected, so that typing
// replaces an address instead of adding to it. Deferred: the click that gave the focus
// would otherwise place the caret and undo the selection.
void dlgIPSetup::txtHost_GotFocus()
{
    QTimer::singleShot(0, m_txtHost, &QLineEdit::selectAll);
}

void dlgIPSetup::txtPort_GotFocus()
{
    QTimer::singleShot(0, m_txtPort, &QLineEdit::selectAll);
}

void dlgIPSetup::showInvalidValue(QStringView field, QStringView example)
{
    m_services.messages.critical(windowTitle(), translate(kInvalidValue) + translate(field) +
                                                    QStringLiteral("\r\n") + translate(kExample) +
                                                    example.toString());
}

void dlgIPSetup::OKButton_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.OKButton_Click", [this] {
        QString settings;
        if (m_cmboCommunicationsType->currentIndex() == SerialType) {
            const SerialSettings serial = serialSettings();
            if (serial.port.isEmpty() || !fitsSettingsText(serial.port)) {
                showInvalidValue(kComPort, kExampleComPort);
                m_cmboComPort->setFocus();
                return;
            }
            settings = SerialAddress::format(serial);
        } else {
            const QString host = m_txtHost->text().trimmed();
            if (host.isEmpty() || !fitsSettingsText(host)) {
                showInvalidValue(kIPAddress, kExampleAddress);
                m_txtHost->setFocus();
                return;
            }
            bool isNumber = false;
            const uint port = m_txtPort->text().trimmed().toUInt(&isNumber);
            if (!isNumber || port == 0 || port > 65535) {
                showInvalidValue(kIPPort, kExamplePort);
                m_txtPort->setFocus();
                return;
            }
            settings = QStringLiteral("IP:") + host + u':' + QString::number(port);
        }
        m_settingsText = settings;
        m_accepted = true;
        accept();
    });
}

void dlgIPSetup::CancelButton_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.CancelButton_Click", [this] { reject(); });
}

void dlgIPSetup::done(int result)
{
    reportFailures(m_services.errors, "dlgIPSetup.done", [this] {
        CloseSocket();
        CloseComm();
    });
    QDialog::done(result);
}

QString dlgIPSetup::translate(QStringView token) const
{
    return m_language.Translate(token);
}
