#pragma once

#include <QStringView>

#include <array>

// Language tokens of the setup dialogs. Captions that the welder maker's tables do not
// number take numbers from 7100.
namespace SetupCaptions {

// Communications setup.
inline constexpr QStringView kCommunicationsSetup = u"7100|Communications Setup";
inline constexpr QStringView kName = u"7101|Name:";
inline constexpr QStringView kCommunicationsType = u"7102|Communications:";
inline constexpr QStringView kSerialPort = u"6242|Serial Port";
inline constexpr QStringView kEthernet = u"6040|Ethernet TCP/IP";
inline constexpr QStringView kComPort = u"7103|COM Port";
inline constexpr QStringView kBaudRate = u"7104|Baud Rate";
inline constexpr QStringView kParity = u"7105|Parity";
inline constexpr QStringView kDataBits = u"7106|Data Bits";
inline constexpr QStringView kStopBits = u"7107|Stop Bits";
inline constexpr QStringView kFlowControl = u"7108|Flow Control";
inline constexpr QStringView kIPAddress = u"6041|IP Address";
inline constexpr QStringView kIPPort = u"6042|IP Port";
inline constexpr QStringView kTestConsole = u"7109|Test Console";
inline constexpr QStringView kRawData = u"7110|&Raw Data";
inline constexpr QStringView kCopy = u"7111|C&opy";
inline constexpr QStringView kClear = u"7112|C&lear";
inline constexpr QStringView kErrorLog = u"3736|&View Log...";
inline constexpr QStringView kOK = u"7113|OK";
inline constexpr QStringView kCancel = u"7114|Cancel";

inline constexpr QStringView kParityNone = u"158|None";
inline constexpr QStringView kParityOdd = u"3433|Odd";
inline constexpr QStringView kParityEven = u"3434|Even";
inline constexpr QStringView kParityMark = u"3435|Mark";
inline constexpr QStringView kParitySpace = u"2276|Space";
inline constexpr QStringView kFlowNone = u"158|None";
inline constexpr QStringView kFlowXonXoff = u"3436|XON/XOFF";
inline constexpr QStringView kFlowCtsRts = u"3437|CTS/RTS";

inline constexpr QStringView kInvalidValue = u"4174|Invalid Value: ";
inline constexpr QStringView kExample = u"3236|Example: ";
// The example address is the one users have always been shown; keep it as it stands.
inline constexpr QStringView kExampleAddress = u"192.169.4.3";
inline constexpr QStringView kExamplePort = u"1000";
inline constexpr QStringView kExampleComPort = u"1";

inline constexpr QStringView kConnecting = u"6051|Connecting...";
inline constexpr QStringView kConnected = u"6052|Connected";
inline constexpr QStringView kDisconnected = u"3866|Disconnected";
inline constexpr QStringView kStop = u"929|&Stop";
inline constexpr QStringView kStart = u"3786|&Start";

// The decoded console dump: one caption per weld record field, in the order shown.
inline constexpr std::array<QStringView, 37> kRecordFields = {
    u"6343|Cycle Count: ",
    u"2124|Hour: ",
    u"3955|Minute: ",
    u"5442|Second: ",
    u"2128|Year: ",
    u"2125|Month: ",
    u"1768|Day: ",
    u"6007|Weld Time: ",
    u"6008|Energy: ",
    u"6344|Distance: ",
    u"6010|Weld Collapse: ",
    u"6011|Total Collapse: ",
    u"6345|Start Frequency: ",
    u"6346|End Frequency: ",
    u"6347|Frequency Change: ",
    u"6348|Frequency Minimum: ",
    u"6349|Frequency Maximum: ",
    u"6464|Velocity: ",
    u"6350|Trigger Distance: ",
    u"6462|Reject Part Alarms: ",
    u"6463|Suspect Part Alarms: ",
    u"6459|No Cycle Alarms: ",
    u"6461|Overload Alarms: ",
    u"6458|Equipment Failure Alarms: ",
    u"6457|Cycle Modified Alarms: ",
    u"6016|Preset #: ",
    u"6460|Note Alarms: ",
    u"6352|Amplitude A: ",
    u"6353|Amplitude B: ",
    u"6017|Mode: ",
    u"6354|PS Control Flags: ",
    u"6009|Peak Power: ",
    u"6355|Weld Pressure: ",
    u"6013|Weld Force: ",
    u"6356|Hold Force: ",
    u"6014|Total Cycle Time: ",
    u"6359|Trigger Force: ",
};

// Data logging.
inline constexpr QStringView kDataLogging = u"6335|Data Logging";
inline constexpr QStringView kEnabled = u"7120|&Enabled";
inline constexpr QStringView kFile = u"7121|File:";
inline constexpr QStringView kSelect = u"7122|&Select...";
inline constexpr QStringView kTextFiles = u"1260|Text Files";
inline constexpr QStringView kSpecifyFilename = u"1259|Specify Filename";
inline constexpr QStringView kFileSize = u"939|File Size: ";
inline constexpr QStringView kKbytes = u"940|Kbytes";

} // namespace SetupCaptions
