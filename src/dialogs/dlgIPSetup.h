#pragma once

#include "SetupServices.h"

#include "platform/RegionalFormat.h"
#include "platform/SerialPort.h"
#include "protocol/CorvaneParser.h"
#include "protocol/ReceiveBuffer.h"

#include <QDialog>

#include <memory>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class SocketPort;
class qlxLanguage;

// The communications setup of one configuration: the equipment's name, whether its
// power supply is reached over a serial line or TCP/IP, and the line settings. On OK it
// hands back one settings text, "IP:host:port" or "COM:port,baud,parity,data bits,stop
// bits,flow control".
//
// The test console tries the link at once with the dialog's own socket or serial port:
// what arrives is shown either byte by byte in hexadecimal or decoded into the weld
// record's fields, so the engineer sees that the power supply talks before the monitor
// is started. The console only listens, like the monitor.
class dlgIPSetup : public QDialog
{
    Q_OBJECT

public:
    enum CommunicationsType { SerialType = 0, EthernetType = 1 };

    // The language object and the services must outlive the dialog.
    dlgIPSetup(const qlxLanguage &language, const SetupServices &services,
               QWidget *parent = nullptr);
    ~dlgIPSetup() override;

    void setEquipmentName(const QString &name);
    QString equipmentName() const;

    // Fills the lists, then selects what the settings text says; an empty text stands for
    // the address of the dialog's socket.
    void RefreshSettings(const QString &settings);
    // The settings text built on OK (before that, the one given to RefreshSettings).
    const QString &settingsText() const { return m_settingsText; }
    // True only when OK closed the dialog with valid input.
    bool isAccepted() const { return m_accepted; }

    void SetupCombos();
    void cmboCommunicationsType_Click();
    void txtHost_GotFocus();
    void txtPort_GotFocus();
    void OKButton_Click();
    void CancelButton_Click();

    // Test console.
    void bnStartStop_Click();
    void bnCopy_Click();
    void bnClear_Click();
    void bnErrorLog_Click();
    void chkRawData_Click();
    void OpenSocket();
    void CloseSocket();
    void OpenComm();
    void CloseComm();
    void Winsock1_Connect();
    void Winsock1_Close();
    void Winsock1_Error(qint32 number, const QString &description, qint32 statusCode);
    void Winsock1_DataArrival(qint64 bytesTotal);
    void MSComm1_OnComm();
    void ShowHex(QByteArrayView bytes);
    void ShowProcessedData(ReceiveBuffer &buffer);
    void NotifyStarted();
    void NotifyStopped();

    // Whether the console's socket or serial port is open (or opening).
    bool consoleRunning() const;
    const ReceiveBuffer &receiveBuffer() const { return m_receiveBuffer; }

    // Closes the console's link whichever way the dialog ends.
    void done(int result) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildForm();
    QWidget *buildSettings();
    QWidget *buildConsole();
    void applySerialSettings(const QString &fields);
    SerialSettings serialSettings() const;
    void showInvalidValue(QStringView field, QStringView example);
    void showArrival(const QByteArray &bytes);
    void appendSample(const QString &entry);
    void setStatus(const QString &text);
    QString translate(QStringView token) const;

    const qlxLanguage &m_language;
    SetupServices m_services;
    RegionalFormat m_format;
    CorvaneParser m_parser;
    ReceiveBuffer m_receiveBuffer;
    std::unique_ptr<SocketPort> m_socket;
    std::unique_ptr<SerialPort> m_serial;
    QString m_settingsText;
    bool m_accepted = false;

    QLineEdit *m_txtName = nullptr;
    QComboBox *m_cmboCommunicationsType = nullptr;
    QStackedWidget *m_linkPages = nullptr;
    QGroupBox *m_gbSerial = nullptr;
    QGroupBox *m_gbTCPIP = nullptr;
    QComboBox *m_cmboComPort = nullptr;
    QComboBox *m_cmboBaudRate = nullptr;
    QComboBox *m_cmboParity = nullptr;
    QComboBox *m_cmboDataBits = nullptr;
    QComboBox *m_cmboStopBits = nullptr;
    QComboBox *m_cmboFlowControl = nullptr;
    QLineEdit *m_txtHost = nullptr;
    QLineEdit *m_txtPort = nullptr;
    QGroupBox *m_gbConsole = nullptr;
    QPushButton *m_bnStartStop = nullptr;
    QCheckBox *m_chkRawData = nullptr;
    QPushButton *m_bnClear = nullptr;
    QPushButton *m_bnCopy = nullptr;
    QPushButton *m_bnErrorLog = nullptr;
    QPlainTextEdit *m_txtSample = nullptr;
    QLabel *m_lblStatus = nullptr;
    QPushButton *m_OKButton = nullptr;
    QPushButton *m_CancelButton = nullptr;
};
