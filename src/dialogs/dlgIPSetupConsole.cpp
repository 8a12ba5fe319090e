#include "dlgIPSetup.h"

#include "ConsoleText.h"
#include "SetupCaptions.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/SocketPort.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/FrameSync.h"
#include "sampling/DatabaseSupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace SetupCaptions;

namespace {

// The console keeps the latest lines only: a link left running over a shift must not
// fill the memory with its dump.
constexpr int kSampleLines = 20000;

} // namespace

QWidget *dlgIPSetup::buildConsole()
{
    m_gbConsole = new QGroupBox(translate(kTestConsole), this);
    m_gbConsole->setObjectName(QStringLiteral("gbConsole"));

    m_bnStartStop = new QPushButton(m_gbConsole);
    m_bnStartStop->setObjectName(QStringLiteral("bnStartStop"));
    m_bnStartStop->setAutoDefault(false);
    m_chkRawData = new QCheckBox(translate(kRawData), m_gbConsole);
    m_chkRawData->setObjectName(QStringLiteral("chkRawData"));
    m_bnClear = new QPushButton(translate(kClear), m_gbConsole);
    m_bnClear->setObjectName(QStringLiteral("bnClear"));
    m_bnClear->setAutoDefault(false);
    m_bnCopy = new QPushButton(translate(kCopy), m_gbConsole);
    m_bnCopy->setObjectName(QStringLiteral("bnCopy"));
    m_bnCopy->setAutoDefault(false);
    m_bnErrorLog = new QPushButton(translate(kErrorLog), m_gbConsole);
    m_bnErrorLog->setObjectName(QStringLiteral("bnErrorLog"));
    m_bnErrorLog->setAutoDefault(false);

    m_txtSample = new QPlainTextEdit(m_gbConsole);
    m_txtSample->setObjectName(QStringLiteral("txtSample"));
    m_txtSample->setReadOnly(true);
    // A frame in hexadecimal is one long line; it wraps between bytes instead of
    // hiding behind a horizontal scroll bar.
    m_txtSample->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_txtSample->setMaximumBlockCount(kSampleLines);
    m_txtSample->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    const QFontMetrics metrics(m_txtSample->font());
    // Room for a decoded field line and a good part of a hexadecimal frame.
    m_txtSample->setMinimumSize(metrics.horizontalAdvance(QString(56, u'0')),
                                metrics.lineSpacing() * 22);

    m_lblStatus = new QLabel(m_gbConsole);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblStatus->setFrameShape(QFrame::StyledPanel);
    m_lblStatus->setFrameShadow(QFrame::Sunken);
    m_lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);

    connect(m_bnStartStop, &QPushButton::clicked, this, &dlgIPSetup::bnStartStop_Click);
    connect(m_chkRawData, &QCheckBox::clicked, this, &dlgIPSetup::chkRawData_Click);
    connect(m_bnClear, &QPushButton::clicked, this, &dlgIPSetup::bnClear_Click);
    connect(m_bnCopy, &QPushButton::clicked, this, &dlgIPSetup::bnCopy_Click);
    connect(m_bnErrorLog, &QPushButton::clicked, this, &dlgIPSetup::bnErrorLog_Click);

    auto *commands = new QHBoxLayout;
    commands->addWidget(m_bnStartStop);
    commands->addWidget(m_chkRawData);
    commands->addStretch(1);
    commands->addWidget(m_bnClear);
    commands->addWidget(m_bnCopy);
    commands->addWidget(m_bnErrorLog);

    auto *layout = new QVBoxLayout(m_gbConsole);
    layout->addLayout(commands);
    layout->addWidget(m_txtSample, 1);
    layout->addWidget(m_lblStatus);
    return m_gbConsole;
}

bool dlgIPSetup::consoleRunning() const
{
    return m_socket->state() != SocketPort::Closed || m_serial->isOpen();
}

void dlgIPSetup::bnStartStop_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.bnStartStop_Click", [this] {
        if (consoleRunning()) {
            CloseSocket();
            CloseComm();
            setStatus(translate(kDisconnected));
            return;
        }
        m_receiveBuffer.clear();
        if (m_cmboCommunicationsType->currentIndex() == SerialType)
            OpenComm();
        else
            OpenSocket();
    });
}

void dlgIPSetup::OpenSocket()
{
    passOn("dlgIPSetup.OpenSocket", [this] {
        setStatus(translate(kConnecting));
        NotifyStarted();
        m_socket->connectToHost(m_txtHost->text().trimmed(),
                                quint16(m_txtPort->text().trimmed().toUShort()));
    });
}

void dlgIPSetup::CloseSocket()
{
    passOn("dlgIPSetup.CloseSocket", [this] {
        if (m_socket->state() != SocketPort::Closed)
            m_socket->close();
        NotifyStopped();
    });
}

void dlgIPSetup::OpenComm()
{
    passOn("dlgIPSetup.OpenComm", [this] {
        setStatus(translate(kConnecting));
        QString reason;
        if (!m_serial->open(serialSettings(), &reason)) {
            m_services.messages.beep();
            setStatus(reason);
            return;
        }
        setStatus(translate(kConnected));
        NotifyStarted();
    });
}

void dlgIPSetup::CloseComm()
{
    passOn("dlgIPSetup.CloseComm", [this] {
        if (m_serial->isOpen())
            m_serial->close();
        NotifyStopped();
    });
}

void dlgIPSetup::Winsock1_Connect()
{
    reportFailures(m_services.errors, "dlgIPSetup.Winsock1_Connect",
                   [this] { setStatus(translate(kConnected)); });
}

void dlgIPSetup::Winsock1_Close()
{
    // The power supply ended the connection: the console stops, ready to start again.
    reportFailures(m_services.errors, "dlgIPSetup.Winsock1_Close", [this] {
        CloseSocket();
        setStatus(translate(kDisconnected));
    });
}

void dlgIPSetup::Winsock1_Error(qint32 number, const QString &description, qint32)
{
    reportFailures(m_services.errors, "dlgIPSetup.Winsock1_Error", [&] {
        CloseSocket();
        setStatus(QString::number(number) + QStringLiteral(" - ") + description);
    });
}

void dlgIPSetup::Winsock1_DataArrival(qint64)
{
    // After a frame that cannot be decoded the console starts over with the next
    // arrival, so one corrupted frame cannot stop it.
    if (!reportFailures(m_services.errors, "dlgIPSetup.Winsock1_DataArrival",
                        [this] { showArrival(m_socket->readAll()); }))
        m_receiveBuffer.clear();
}

void dlgIPSetup::MSComm1_OnComm()
{
    if (!reportFailures(m_services.errors, "dlgIPSetup.MSComm1_OnComm", [this] {
            if (m_serial->bytesWaiting() > 0)
                showArrival(m_serial->readAll());
        }))
        m_receiveBuffer.clear();
}

void dlgIPSetup::showArrival(const QByteArray &bytes)
{
    passOn("dlgIPSetup.showArrival", [&] {
        if (bytes.isEmpty())
            return;
        if (m_chkRawData->isChecked()) {
            ShowHex(bytes);
            return;
        }
        CorvaneUSWSupport::AppendBytes(m_receiveBuffer, bytes);
        ShowProcessedData(m_receiveBuffer);
    });
}

void dlgIPSetup::ShowHex(QByteArrayView bytes)
{
    passOn("dlgIPSetup.ShowHex", [&] { appendSample(ConsoleText::hexEntry(bytes)); });
}

void dlgIPSetup::ShowProcessedData(ReceiveBuffer &buffer)
{
    passOn("dlgIPSetup.ShowProcessedData", [&] {
        // Frames of other functions are passed over until a weld record or the end of
        // the complete frames.
        CorvaneFUN26 record;
        FrameScanner::FrameStatus status = FrameScanner::FrameStatus::OtherFunction;
        while (status == FrameScanner::FrameStatus::OtherFunction)
            status = m_parser.next(buffer, record);
        if (status == FrameScanner::FrameStatus::BadEndMarker ||
            status == FrameScanner::FrameStatus::EndBeforeBuffer)
            throw CorvaneParser::frameError(status);
        if (status != FrameScanner::FrameStatus::WeldRecord) {
            // What waits for the rest of a frame stays; noise in front of it goes, so a
            // line at the wrong baud rate cannot grow the buffer.
            FrameSync::discardUnframedLead(buffer);
            return;
        }
        // The console shows one record per arrival and starts afresh behind it.
        buffer.clear();
        appendSample(ConsoleText::recordEntry(record, m_language, m_format));
    });
}

void dlgIPSetup::appendSample(const QString &entry)
{
    // The box shows CR LF as one line break.
    QString lines = entry;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QTextCursor end = m_txtSample->textCursor();
    end.movePosition(QTextCursor::End);
    end.insertText(lines);
    m_txtSample->setTextCursor(end);
    m_txtSample->ensureCursorVisible();
}

void dlgIPSetup::chkRawData_Click()
{
    // Bytes kept for the decoder would be out of step after a spell of raw display.
    reportFailures(m_services.errors, "dlgIPSetup.chkRawData_Click",
                   [this] { m_receiveBuffer.clear(); });
}

void dlgIPSetup::bnCopy_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.bnCopy_Click",
                   [this] { QApplication::clipboard()->setText(m_txtSample->toPlainText()); });
}

void dlgIPSetup::bnClear_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.bnClear_Click", [this] { m_txtSample->clear(); });
}

void dlgIPSetup::bnErrorLog_Click()
{
    reportFailures(m_services.errors, "dlgIPSetup.bnErrorLog_Click",
                   [this] { m_services.database.ViewErrorLog(); });
}

void dlgIPSetup::NotifyStarted()
{
    m_bnStartStop->setText(translate(kStop));
    // The settings cannot change under a running test.
    m_cmboCommunicationsType->setEnabled(false);
    m_linkPages->setEnabled(false);
}

void dlgIPSetup::NotifyStopped()
{
    m_bnStartStop->setText(translate(kStart));
    m_cmboCommunicationsType->setEnabled(true);
    m_linkPages->setEnabled(true);
}

void dlgIPSetup::setStatus(const QString &text)
{
    m_lblStatus->setText(text);
}
