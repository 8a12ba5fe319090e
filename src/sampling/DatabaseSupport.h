#pragma once

#include "platform/spc/Records.h"

#include <QString>
#include <QStringList>

#include <functional>

class ErrorReport;
class ProgramFiles;

namespace qlaDatabase6 {
class Database;
}

// Turns the names a monitor knows (its part, its process, each characteristic's name)
// into loaded records of the SPC database, finds the limits of a part and a test, tells
// whether the database library can be used at all, and opens the event log for the
// user. Every operation reports its own failures (object "DatabaseSupport") and never
// stops its caller: a failed look-up gives a record with identifier 0.
class DatabaseSupport
{
public:
    // Name of the group under which subgroups are saved when the part's or the
    // process's own group cannot be found.
    static constexpr const char *kFallbackGroup = "Corvane";

    // Whether the SQL drivers load. Once true, the answer is kept for the whole
    // process; while false, every call asks again (a driver installed while the
    // program runs is picked up).
    struct LibraryFlag
    {
        bool available = false;
    };
    using DriverCheck = std::function<bool()>;

    // How the event log is shown: a program started with its arguments (and, on
    // Windows, a command-line tail passed as it stands).
    struct ViewerCommand
    {
        QString program;
        QStringList arguments;
        QString nativeArguments;
    };
    using Launcher = std::function<bool(const ViewerCommand &)>;

    // The event log is the program's own in the data folder.
    DatabaseSupport(ErrorReport &errors, const ProgramFiles &files);
    // For tests: another driver check, flag or way of starting the viewer.
    DatabaseSupport(ErrorReport &errors, const ProgramFiles &files, DriverCheck driverCheck,
                    LibraryFlag &flag, Launcher launcher);

    static LibraryFlag &processLibraryFlag();
    static bool sqlDriversLoad();
    static bool startDetached(const ViewerCommand &command);
    // Notepad with the path in quotes on Windows; elsewhere the desktop's viewer for
    // the file.
    static ViewerCommand viewerCommand(const QString &path);

    bool DatabaseLibraryAvailable();

    qlaDatabase6::Part ResolvePartByName(qlaDatabase6::Database &database, const QString &name);
    qlaDatabase6::Process ResolveProcessByName(qlaDatabase6::Database &database,
                                               const QString &name);
    qlaDatabase6::Test ResolveTestByName(qlaDatabase6::Database &database, const QString &name);
    qlaDatabase6::SpecLimit ResolveSpecLim(qlaDatabase6::Database &database, qint64 partId,
                                           qint64 testId);

    // The name of the part's (process's) group; "Corvane" when the part, its group or
    // the connection cannot be found.
    QString ResolvePartGroup(qlaDatabase6::Database &database, const QString &partName);
    QString ResolveProcessGroup(qlaDatabase6::Database &database, const QString &processName);

    // What View Log came to: the event log handed to the viewer, no event log written
    // yet, or no viewer that could be started.
    enum class LogView { Shown, Empty, NoViewer };
    LogView ViewErrorLog();

    const QString &eventLogPath() const { return m_eventLogPath; }

private:
    template <typename RecordType>
    RecordType resolveByName(const char *location, qlaDatabase6::Database &database,
                             const QString &name);
    QString resolveGroup(const char *location, qlaDatabase6::Database &database,
                         qlaDatabase6::Record &owner);

    ErrorReport &m_errors;
    QString m_eventLogPath;
    DriverCheck m_driverCheck;
    LibraryFlag &m_flag;
    Launcher m_launcher;
};
