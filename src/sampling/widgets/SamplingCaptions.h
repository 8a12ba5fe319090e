#pragma once

#include <QStringView>

#include <array>

// Language tokens of the SPC sampling dialogs. Captions that have no number of their own
// yet show their default text until the language tables give them one.
namespace SamplingCaptions {

inline constexpr QStringView kSPCSampling = u"6337|SPC Sampling";
inline constexpr QStringView kOK = u"OK";
inline constexpr QStringView kCancel = u"Cancel";
inline constexpr QStringView kChoose = u"...";

// The sampling dialog.
inline constexpr QStringView kEnableSampling = u"&Enable SPC sampling";
inline constexpr QStringView kDatabaseFrame = u"SPC database";
inline constexpr QStringView kDataSourceButton = u"&Data Source...";
inline constexpr QStringView kPartProcessFrame = u"Part and process";
inline constexpr QStringView kPart = u"&Part:";
inline constexpr QStringView kPartReselect = u"Allow the part to be &changed at the monitor";
inline constexpr QStringView kProcess = u"P&rocess:";
inline constexpr QStringView kSamplingFrame = u"Subgroups";
inline constexpr QStringView kInterval = u"&Save a subgroup every";
inline constexpr QStringView kSubgroupSize = u"&Values per characteristic";
inline constexpr QStringView kCharacteristics = u"Characteristics:";
inline constexpr QStringView kSelectedCharacteristics = u"Se&lected characteristics";
inline constexpr QStringView kAllCharacteristics = u"&All characteristics";
inline constexpr QStringView kAlarmsFrame = u"Alarms";
inline constexpr QStringView kEnableAlarmLogging = u"Log alar&ms to the SPC database";

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
inline constexpr QStringView kUnableToConnect = u"5298|Unable To Connect";
inline constexpr QStringView kNotInstalled = u"5382|The following product is not yet installed:";
// The product's name is shown as it stands, in every language.
inline constexpr QStringView kDatabaseProduct = u"Meridal Ambrel";
inline constexpr QStringView kContactAdministrator =
    u"4785|Please contact your Administrator if you need to perform this action.";

// The part and process pickers.
inline constexpr QStringView kSelectPart = u"Select Part";
inline constexpr QStringView kSelectProcess = u"Select Process";
inline constexpr QStringView kFind = u"&Name:";
inline constexpr QStringView kFindHint = u"Type to search, or a new name";
inline constexpr QStringView kNameColumn = u"Name";
inline constexpr QStringView kGroupColumn = u"Group";
inline constexpr QStringView kAddPart = u"&Add Part";
inline constexpr QStringView kAddProcess = u"&Add Process";
inline constexpr QStringView kCreatePart =
    u"The part \"%1\" is not in the SPC database.\r\n\r\nAdd it now?";
inline constexpr QStringView kCreateProcess =
    u"The process \"%1\" is not in the SPC database.\r\n\r\nAdd it now?";
inline constexpr QStringView kRecordCount = u"%1 of %2 shown";

// The data source dialog.
inline constexpr QStringView kDataSourceTitle = u"SPC Data Source";
inline constexpr QStringView kSQLiteChoice = u"A &file on this workstation (SQLite)";
inline constexpr QStringView kServerChoice = u"The plant's database serve&r (PostgreSQL)";
inline constexpr QStringView kFile = u"F&ile:";
inline constexpr QStringView kHost = u"&Server:";
inline constexpr QStringView kPort = u"P&ort:";
inline constexpr QStringView kDatabase = u"&Database:";
inline constexpr QStringView kUser = u"&User:";
inline constexpr QStringView kUserHint = u"your login name";
inline constexpr QStringView kPasswordHint =
    u"No password is kept with the configuration. The server's password is taken from "
    u"the PGPASSWORD environment variable, or else from the password file %1.";
inline constexpr QStringView kDataSourceName = u"Data source name:";
inline constexpr QStringView kNoFile = u"Choose or type the file of the SPC database.";
inline constexpr QStringView kNoServer = u"Type the name or address of the SPC database server.";
inline constexpr QStringView kNoDatabase = u"Type the name of the SPC database on the server.";
inline constexpr QStringView kPortRange = u"The port must be a number from 1 to 65535.";
inline constexpr QStringView kInvalidServer = u"The server name \"%1\" is not valid.";
inline constexpr QStringView kTestConnection = u"&Test Connection";
inline constexpr QStringView kConnected = u"6052|Connected";
inline constexpr QStringView kConnectedCounts = u"%1 parts, %2 processes, %3 tests";
inline constexpr QStringView kFileToBeCreated =
    u"The file does not exist yet. It is created, with empty SPC tables, on the first "
    u"connection.";
inline constexpr QStringView kFolderMissing = u"The folder %1 does not exist.";
inline constexpr QStringView kFolderReadOnly = u"The folder %1 cannot be written.";
inline constexpr QStringView kDatabaseFiles = u"SPC databases";
inline constexpr QStringView kAllFiles = u"All files";

} // namespace SamplingCaptions
