#pragma once

#include "platform/MeasurementSystem.h"

class ConfigurationMonitor;
class QWidget;
class qlxLanguage;

// The Configure commands of the Configuration menu, each a modal dialog over the
// selected configuration's monitor. The window calls them through this interface so
// that the desktop program opens the real dialogs and a test answers them itself.
class ConfigurationCommands
{
public:
    // What every dialog is opened with.
    struct Context
    {
        const qlxLanguage &language;
        MeasurementSystem measurementSystem;
        QWidget *parent;
    };

    virtual ~ConfigurationCommands() = default;

    // The communications setup; true when the user confirmed a name and address.
    virtual bool ConfigureEquipment(ConfigurationMonitor &monitor, const Context &context) = 0;
    virtual bool ConfigureDataLogging(ConfigurationMonitor &monitor, const Context &context) = 0;
    virtual bool ConfigureSampling(ConfigurationMonitor &monitor, const Context &context) = 0;
};
