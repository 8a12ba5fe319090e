#pragma once

#include "SamplingDialogServices.h"

class DatabaseSupport;
class EquipmentMonitor;
class QWidget;
class qlxLanguage;

// The monitor's Configure command for SPC sampling. The monitor runs without widgets, so
// its window calls this with the monitor. Failures are reported under the monitor's name.
namespace SamplingCommands {

// Opens the sampling dialog modally on the monitor's sampling settings, when the SPC
// database can be used on this workstation; otherwise tells the user that the database
// product is not installed. When the user confirms, the settings have been copied back,
// the monitor's display is refreshed and its part and row controls are freed or locked
// as its run state requires; true then, so that the configuration is saved.
bool ConfigureSampling(EquipmentMonitor &monitor, const qlxLanguage &language,
                       const SamplingDialogServices &services, DatabaseSupport &support,
                       QWidget *parent = nullptr);

} // namespace SamplingCommands
