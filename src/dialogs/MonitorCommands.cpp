#include "MonitorCommands.h"

#include "SetupServices.h"
#include "dlgDataLogging.h"
#include "dlgIPSetup.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/ErrorPassing.h"

namespace MonitorCommands {

bool ConfigureEquipment(EquipmentMonitor &monitor, const qlxLanguage &language,
                        const SetupServices &services, QWidget *parent)
{
    bool confirmed = false;
    reportFailures(services.errors, "CorvaneUsw.ConfigureEquipment", [&] {
        dlgIPSetup dialog(language, services, parent);
        dialog.setEquipmentName(monitor.configurationName());
        dialog.RefreshSettings(monitor.address());
        dialog.exec();
        if (!dialog.isAccepted())
            return;
        monitor.setEquipment(dialog.equipmentName(), dialog.settingsText());
        confirmed = true;
    });
    return confirmed;
}

bool ConfigureDataLogging(EquipmentMonitor &monitor, const qlxLanguage &language,
                          const SetupServices &services, QWidget *parent)
{
    bool changed = false;
    reportFailures(services.errors, "CorvaneUsw.ConfigureDataLogging", [&] {
        dlgDataLogging dialog(language, services, parent);
        const MonitorConfiguration &configuration = monitor.configuration();
        dialog.setDataLogging(configuration.dataLoggingEnabled, configuration.dataLogFile);
        dialog.exec();
        if (!dialog.isAccepted() || !dialog.changed())
            return;
        monitor.setDataLogging(dialog.dataLoggingEnabled(), dialog.dataLogFile());
        changed = true;
    });
    return changed;
}

} // namespace MonitorCommands
