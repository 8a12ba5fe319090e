#include "DialogConfigurationCommands.h"

#include "dialogs/MonitorCommands.h"
#include "dialogs/SetupServices.h"
#include "platform/ProgramError.h"
#include "sampling/widgets/SamplingCommands.h"
#include "shell/EquipmentMonitorSlot.h"

DialogConfigurationCommands::DialogConfigurationCommands(Services services)
    : m_services(services)
{}

EquipmentMonitor &DialogConfigurationCommands::equipmentMonitor(ConfigurationMonitor &monitor)
{
    auto *slot = dynamic_cast<EquipmentMonitorSlot *>(&monitor);
    if (!slot) {
        throw ProgramError::raised(QStringLiteral("The configuration has no equipment monitor"),
                                   QStringLiteral("dlgMain.equipmentMonitor"));
    }
    return slot->monitor();
}

namespace {

SetupServices setupServices(const DialogConfigurationCommands::Services &services,
                            MeasurementSystem measurementSystem)
{
    return SetupServices{.errors = services.errors,
                         .messages = services.messages,
                         .database = services.database,
                         .fileChooser = services.fileChooser,
                         .clock = services.clock,
                         .measurementSystem = measurementSystem};
}

} // namespace

bool DialogConfigurationCommands::ConfigureEquipment(ConfigurationMonitor &monitor,
                                                     const Context &context)
{
    return MonitorCommands::ConfigureEquipment(equipmentMonitor(monitor), context.language,
                                               setupServices(m_services, context.measurementSystem),
                                               context.parent);
}

bool DialogConfigurationCommands::ConfigureDataLogging(ConfigurationMonitor &monitor,
                                                       const Context &context)
{
    return MonitorCommands::ConfigureDataLogging(
        equipmentMonitor(monitor), context.language,
        setupServices(m_services, context.measurementSystem), context.parent);
}

bool DialogConfigurationCommands::ConfigureSampling(ConfigurationMonitor &monitor,
                                                    const Context &context)
{
    return SamplingCommands::ConfigureSampling(
        equipmentMonitor(monitor), context.language,
        SamplingDialogServices{.errors = m_services.errors, .messages = m_services.messages},
        m_services.database, context.parent);
}
