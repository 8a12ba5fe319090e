#pragma once

#include <QString>
#include <QStringList>

// Where the program keeps its files. The data folder is "Corvane" inside the per-machine
// application data folder (%ProgramData% on Windows; on other systems, which have no
// such folder that a desktop user may write, the user's XDG data folder
// ~/.local/share). The environment variable CORVANE_DATA_DIR and the option
// --data-dir override it. Files in it are named after the program: corvane-monitor.cfg,
// .ini and .log.
class ProgramFiles
{
public:
    static constexpr const char *kProgramBaseName = "corvane-monitor";
    static constexpr const char *kDataDirEnvironment = "CORVANE_DATA_DIR";

    explicit ProgramFiles(QString dataFolder);

    // The data folder from an explicit choice (--data-dir), else CORVANE_DATA_DIR, else
    // the platform's folder.
    static QString resolveDataFolder(const QString &explicitFolder = {});
    static QString platformDataFolder();

    const QString &dataFolder() const { return m_dataFolder; }
    QString inDataFolder(const QString &suffix) const;

    QString defaultConfigurationsPath() const { return inDataFolder(QStringLiteral(".cfg")); }
    QString preferencesPath() const { return inDataFolder(QStringLiteral(".ini")); }
    QString eventLogPath() const { return inDataFolder(QStringLiteral(".log")); }
    QString errorReportLogPath() const { return inDataFolder(QStringLiteral(".errors.log")); }

private:
    QString m_dataFolder;
};

// True when one argument of the command line is the switch "/debug", in any case.
bool debugSwitchPresent(const QStringList &arguments);
