#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "spc/ChartType.h"
#include "spc/RuleSet.h"

#include <optional>

// One command of the SPC administration tool, as read from its command line.
struct SpcCommand
{
    enum class Action {
        Init,
        AddGroup,
        AddPart,
        AddProcess,
        AddTest,
        SetLimits,
        List,
        Subgroups,
        Chart,
        Capability,
        FreezeLimits,
        Import,
        Outbox,
        Help,
    };

    Action action = Action::Help;
    QString dsn;
    // True when --dsn was not given and the default database in the data folder is
    // used.
    bool defaultDsn = true;
    // add-*: the name; set-limits: the part and the test; list: what to list; import: the
    // file ("-" for standard input).
    QStringList names;
    QString group;
    std::optional<double> upperSpecLimit;
    std::optional<double> lowerSpecLimit;
    std::optional<double> upperWarningLimit;
    std::optional<double> lowerWarningLimit;
    bool clear = false;
    QString part;
    QString process;
    QString test;
    QDateTime since;
    QDateTime until;
    bool csv = false;
    // chart and freeze-limits: the chart type when not the one the subgroups' size suits.
    std::optional<spc::ChartType> chartType;
    // The first this many subgroups of the window are the baseline.
    std::optional<int> baseline;
    bool frozen = false;
    // chart: the PNG or SVG file to draw the charts into (by its suffix); empty: figures.
    QString imageFile;
    spc::RuleSet rules = spc::RuleSet::defaults();
    // outbox: the outbox file, and what to do with its subgroups besides listing them.
    QString outboxPath;
    bool flush = false;
    bool discard = false;
};

// Reads the tool's arguments (the program name first). On bad usage returns nothing
// and leaves the reason in errorText.
class SpcCommandLine
{
public:
    static std::optional<SpcCommand> parse(const QStringList &arguments, QString &errorText);
    static QString usage();
    // The default data source: spc.db in the data folder (CORVANE_DATA_DIR honoured).
    static QString defaultDataSource();
    // The monitor's outbox in the data folder.
    static QString defaultOutbox();
};
