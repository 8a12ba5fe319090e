#pragma once

#include <QStringView>

#include <array>

// Language tokens of the SPC sampling dialogs: the sampling dialog's captions number from
// 7200, the data source dialog's from 7300.
namespace SamplingCaptions {

inline constexpr QStringView kSPCSampling = u"6337|SPC Sampling";
inline constexpr QStringView kOK = u"7113|OK";
inline constexpr QStringView kCancel = u"7114|Cancel";
inline constexpr QStringView kChoose = u"...";

// The sampling dialog.
inline constexpr QStringView kEnableSampling = u"7200|&Enable SPC sampling";
inline constexpr QStringView kDatabaseFrame = u"7201|SPC database";
inline constexpr QStringView kDataSourceButton = u"7202|&Data Source...";
inline constexpr QStringView kPartProcessFrame = u"7203|Part and process";
inline constexpr QStringView kPart = u"7204|&Part:";
inline constexpr QStringView kPartReselect = u"7205|Allow the part to be &changed at the monitor";
inline constexpr QStringView kProcess = u"7206|P&rocess:";
inline constexpr QStringView kSamplingFrame = u"7207|Subgroups";
inline constexpr QStringView kInterval = u"7209|&Save a subgroup every";
inline constexpr QStringView kSubgroupSize = u"7210|&Values per characteristic";
inline constexpr QStringView kCharacteristics = u"7211|Characteristics:";
inline constexpr QStringView kSelectedCharacteristics = u"7212|Se&lected characteristics";
inline constexpr QStringView kAllCharacteristics = u"7213|&All characteristics";
inline constexpr QStringView kAlarmsFrame = u"7001|Alarms";
inline constexpr QStringView kEnableAlarmLogging = u"7215|Log alar&ms to the SPC database";

// The sampling period's units, in the order of the list, with their length in seconds.
struct PeriodUnit
{
    QStringView token;
    int seconds;
};
inline constexpr std::array<PeriodUnit, 3> kPeriodUnits = {{
    {u"869|Seconds", 1},
    {u"499|Minutes", 60},
    {u"870|Hours", 3600},
}};

// Labels of the alarm groups by box index: box i stands for bit 2^i of the logged groups.
inline constexpr std::array<QStringView, 7> kAlarmGroupLabels = {
    u"6462|Reject Part Alarms", u"6463|Suspect Part Alarms",      u"6459|No Cycle Alarms",
    u"6461|Overload Alarms",    u"6458|Equipment Failure Alarms", u"6457|Cycle Modified Alarms",
    u"6460|Note Alarms",
};

// Messages.
inline constexpr QStringView kPeriodNotPositive =
    u"7208|The subgroup period must be a number of seconds, minutes or hours above 0.";
inline constexpr QStringView kUnableToConnect = u"5298|Unable To Connect";
inline constexpr QStringView kNotInstalled = u"5382|The following product is not yet installed:";
// The product's name is shown as it stands, in every language.
inline constexpr QStringView kDatabaseProduct = u"Meridal Ambrel";
inline constexpr QStringView kContactAdministrator =
    u"4785|Please contact your Administrator if you need to perform this action.";

// The part and process pickers.
inline constexpr QStringView kSelectPart = u"7220|Select Part";
inline constexpr QStringView kSelectProcess = u"7221|Select Process";
inline constexpr QStringView kFind = u"7222|&Name:";
inline constexpr QStringView kFindHint = u"7223|Type to search, or a new name";
inline constexpr QStringView kNameColumn = u"7101|Name";
inline constexpr QStringView kGroupColumn = u"7225|Group";
inline constexpr QStringView kAddPart = u"7226|&Add Part";
inline constexpr QStringView kAddProcess = u"7227|&Add Process";
inline constexpr QStringView kCreatePart =
    u"7228|The part \"%1\" is not in the SPC database.\r\n\r\nAdd it now?";
inline constexpr QStringView kCreateProcess =
    u"7229|The process \"%1\" is not in the SPC database.\r\n\r\nAdd it now?";
inline constexpr QStringView kRecordCount = u"7230|%1 of %2 shown";

// The data source dialog.
inline constexpr QStringView kDataSourceTitle = u"7300|SPC Data Source";
inline constexpr QStringView kSQLiteChoice = u"7301|A &file on this workstation (SQLite)";
inline constexpr QStringView kServerChoice = u"7302|The plant's database serve&r (PostgreSQL)";
inline constexpr QStringView kFile = u"7303|F&ile:";
inline constexpr QStringView kHost = u"7304|&Server:";
inline constexpr QStringView kPort = u"7305|P&ort:";
inline constexpr QStringView kDatabase = u"7306|&Database:";
inline constexpr QStringView kUser = u"7307|&User:";
inline constexpr QStringView kUserHint = u"7308|your login name";
inline constexpr QStringView kPasswordHint =
    u"7309|No password is kept with the configuration. The server's password is taken from "
    u"the PGPASSWORD environment variable, or else from the password file %1.";
inline constexpr QStringView kDataSourceName = u"7310|Data source name:";
inline constexpr QStringView kNoFile = u"7311|Choose or type the file of the SPC database.";
inline constexpr QStringView kNoServer =
    u"7312|Type the name or address of the SPC database server.";
inline constexpr QStringView kNoDatabase = u"7313|Type the name of the SPC database on the server.";
inline constexpr QStringView kPortRange = u"7314|The port must be a number from 1 to 65535.";
inline constexpr QStringView kInvalidServer = u"7315|The server name \"%1\" is not valid.";
inline constexpr QStringView kTestConnection = u"7316|&Test Connection";
inline constexpr QStringView kConnected = u"6052|Connected";
// Counts in the singular for one and in the plural for every other number.
inline constexpr std::array<QStringView, 2> kPartCount = {u"7330|%1 part", u"7331|%1 parts"};
inline constexpr std::array<QStringView, 2> kProcessCount = {u"7332|%1 process",
                                                             u"7333|%1 processes"};
inline constexpr std::array<QStringView, 2> kTestCount = {u"7334|%1 test", u"7335|%1 tests"};
inline constexpr QStringView kFileToBeCreated =
    u"7318|The file does not exist yet. It is created, with empty SPC tables, on the first "
    u"connection.";
inline constexpr QStringView kFolderMissing = u"7319|The folder %1 does not exist.";
inline constexpr QStringView kFolderReadOnly = u"7320|The folder %1 cannot be written.";
inline constexpr QStringView kDatabaseFiles = u"7321|SPC databases";
inline constexpr QStringView kAllFiles = u"7322|All files";

} // namespace SamplingCaptions
