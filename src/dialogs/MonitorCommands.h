#pragma once

class EquipmentMonitor;
class QWidget;
class qlxLanguage;
struct SetupServices;

// The monitor's Configure commands that need a dialog. The monitor itself runs without
// widgets, so its window calls these with the monitor; each opens its dialog modally
// with the monitor's current values and copies the answer back only when the user
// confirms. Failures are reported under the monitor's name.
namespace MonitorCommands {

// The communications setup with the monitor's name and address. True when confirmed:
// the name and address have been copied back and the tab caption should follow.
bool ConfigureEquipment(EquipmentMonitor &monitor, const qlxLanguage &language,
                        const SetupServices &services, QWidget *parent = nullptr);

// The data logging dialog with the monitor's switch and file. True when the user
// confirmed a change: the configuration is changed and should be saved.
bool ConfigureDataLogging(EquipmentMonitor &monitor, const qlxLanguage &language,
                          const SetupServices &services, QWidget *parent = nullptr);

} // namespace MonitorCommands
