#pragma once

#include <QDomElement>
#include <QString>

class qlxLanguage;

// How a welder stands, as its tab and the tray show it from across the cell.
enum class WelderCondition {
    Stopped,            // not collecting: nothing to watch
    Connected,          // collecting, and the last weld within its limits
    LinkDown,           // collecting, but the link is not up (connecting, invalid port)
    OutOfSpecification, // collecting, and the last weld beyond a specification limit
};

// The SPC data source a configuration samples into, for Help > About Data Source.
struct DataSourceState
{
    QString name;
    bool connected = false;
};

// What the configurations file and the main window ask of the monitor in one slot. A
// slot holds one monitor for the whole life of the configuration set; a monitor whose
// DriverState is 0 holds no configuration and its slot is free for the next addition.
class ConfigurationMonitor
{
public:
    virtual ~ConfigurationMonitor() = default;

    virtual void Initialize(const qlxLanguage &language, int slotIndex) = 0;
    // Takes the text of one Configuration element; false when the monitor refuses it.
    virtual bool Load(const QString &xml) = 0;
    // The monitor's Configuration element, in a document of its own.
    virtual QDomElement GetXMLNode() const = 0;
    virtual bool ShutDown() = 0;
    // 0 free (after ShutDown), 1 stopped, 2 connecting, 3 running.
    virtual int DriverState() const = 0;
    // The configuration's key, unique among the slots.
    virtual QString identifier() const = 0;
    // The configuration's name: the tab caption.
    virtual QString configurationName() const = 0;
    virtual bool SPCSamplingEnabled() const = 0;
    // Told by the driver state alone unless the monitor knows better.
    virtual WelderCondition condition() const
    {
        const int state = DriverState();
        return state < 2    ? WelderCondition::Stopped
               : state == 2 ? WelderCondition::LinkDown
                            : WelderCondition::Connected;
    }
    virtual DataSourceState dataSource() const { return {}; }

    virtual void StartStop() = 0;
    virtual void StartDataCollection() = 0;
    virtual void StopDataCollection() = 0;
};
