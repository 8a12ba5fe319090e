#include "DatabaseSupport.h"

#include "platform/ErrorPassing.h"
#include "platform/ProgramFiles.h"
#include "platform/spc/Database.h"

#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>

using qlaDatabase6::Database;
using qlaDatabase6::Group;
using qlaDatabase6::Part;
using qlaDatabase6::Process;
using qlaDatabase6::Record;
using qlaDatabase6::SpecLimit;
using qlaDatabase6::Test;

DatabaseSupport::DatabaseSupport(ErrorReport &errors, const ProgramFiles &files)
    : DatabaseSupport(errors, files, &DatabaseSupport::sqlDriversLoad, processLibraryFlag(),
                      &DatabaseSupport::startDetached)
{}

DatabaseSupport::DatabaseSupport(ErrorReport &errors, const ProgramFiles &files,
                                 DriverCheck driverCheck, LibraryFlag &flag, Launcher launcher)
    : m_errors(errors)
    , m_eventLogPath(files.eventLogPath())
    , m_driverCheck(std::move(driverCheck))
    , m_flag(flag)
    , m_launcher(std::move(launcher))
{}

DatabaseSupport::LibraryFlag &DatabaseSupport::processLibraryFlag()
{
    static LibraryFlag flag;
    return flag;
}

bool DatabaseSupport::sqlDriversLoad()
{
    // The workstation's own SPC file needs the SQLite driver; the server driver is
    // only needed where a server is configured, and its absence is reported when
    // that connection is made.
    return QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE"));
}

bool DatabaseSupport::startDetached(const ViewerCommand &command)
{
    QProcess process;
    process.setProgram(command.program);
    process.setArguments(command.arguments);
#ifdef Q_OS_WIN
    process.setNativeArguments(command.nativeArguments);
#endif
    return process.startDetached();
}

DatabaseSupport::ViewerCommand DatabaseSupport::viewerCommand(const QString &path)
{
#ifdef Q_OS_WIN
    return {QStringLiteral("notepad.exe"), {}, u'"' + path + u'"'};
#else
    return {QStringLiteral("xdg-open"), {path}, {}};
#endif
}

bool DatabaseSupport::DatabaseLibraryAvailable()
{
    if (m_flag.available)
        return true;
    reportFailures(m_errors, "DatabaseSupport.DatabaseLibraryAvailable",
                   [&] { m_flag.available = m_driverCheck && m_driverCheck(); });
    return m_flag.available;
}

template <typename RecordType>
RecordType DatabaseSupport::resolveByName(const char *location, Database &database,
                                          const QString &name)
{
    RecordType record;
    reportFailures(m_errors, location, [&] {
        if (!database.isConnected())
            return;
        record.setName(name);
        record.setLookup(Record::kLookupByName);
        record.load(database);
    });
    return record;
}

Part DatabaseSupport::ResolvePartByName(Database &database, const QString &name)
{
    return resolveByName<Part>("DatabaseSupport.ResolvePartByName", database, name);
}

Process DatabaseSupport::ResolveProcessByName(Database &database, const QString &name)
{
    return resolveByName<Process>("DatabaseSupport.ResolveProcessByName", database, name);
}

Test DatabaseSupport::ResolveTestByName(Database &database, const QString &name)
{
    return resolveByName<Test>("DatabaseSupport.ResolveTestByName", database, name);
}

SpecLimit DatabaseSupport::ResolveSpecLim(Database &database, qint64 partId, qint64 testId)
{
    SpecLimit limit;
    reportFailures(m_errors, "DatabaseSupport.ResolveSpecLim", [&] {
        limit.setPartSelector(SpecLimit::kByIdentifier);
        limit.setTestSelector(SpecLimit::kByIdentifier);
        limit.setPartId(partId);
        limit.setTestId(testId);
        limit.load(database);
    });
    return limit;
}

QString DatabaseSupport::resolveGroup(const char *location, Database &database, Record &owner)
{
    QString groupName = QLatin1String(kFallbackGroup);
    reportFailures(m_errors, location, [&] {
        if (owner.id() == 0 || owner.groupId() == 0)
            return;
        Group group;
        group.setLookup(Record::kLookupById);
        group.setId(owner.groupId());
        if (group.load(database))
            groupName = group.name();
    });
    return groupName;
}

QString DatabaseSupport::ResolvePartGroup(Database &database, const QString &partName)
{
    Part part = ResolvePartByName(database, partName);
    return resolveGroup("DatabaseSupport.ResolvePartGroup", database, part);
}

QString DatabaseSupport::ResolveProcessGroup(Database &database, const QString &processName)
{
    Process process = ResolveProcessByName(database, processName);
    return resolveGroup("DatabaseSupport.ResolveProcessGroup", database, process);
}

DatabaseSupport::LogView DatabaseSupport::ViewErrorLog()
{
    // An empty viewer would look as if the program had lost its log.
    if (QFileInfo(m_eventLogPath).size() == 0)
        return LogView::Empty;
    return m_launcher && m_launcher(viewerCommand(m_eventLogPath)) ? LogView::Shown
                                                                   : LogView::NoViewer;
}
