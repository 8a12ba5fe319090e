#pragma once

#include "ConfigurationCommands.h"

class Clock;
class DatabaseSupport;
class EquipmentMonitor;
class ErrorReport;
class MessageBoxes;
class SaveFileChooser;

// The Configure commands of the desktop program: the communications setup, the data
// logging and the SPC sampling dialogs over the selected slot's equipment monitor.
class DialogConfigurationCommands : public ConfigurationCommands
{
public:
    struct Services
    {
        ErrorReport &errors;
        MessageBoxes &messages;
        DatabaseSupport &database;
        SaveFileChooser &fileChooser;
        const Clock &clock;
    };

    explicit DialogConfigurationCommands(Services services);

    bool ConfigureEquipment(ConfigurationMonitor &monitor, const Context &context) override;
    bool ConfigureDataLogging(ConfigurationMonitor &monitor, const Context &context) override;
    bool ConfigureSampling(ConfigurationMonitor &monitor, const Context &context) override;

    // The equipment monitor in a slot; fails for a slot that holds no such monitor.
    static EquipmentMonitor &equipmentMonitor(ConfigurationMonitor &monitor);

private:
    Services m_services;
};
