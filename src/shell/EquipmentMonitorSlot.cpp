#include "EquipmentMonitorSlot.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/SamplingSeam.h"

EquipmentMonitorSlot::EquipmentMonitorSlot(std::unique_ptr<EquipmentMonitor> monitor)
    : m_monitor(std::move(monitor))
{}

EquipmentMonitorSlot::~EquipmentMonitorSlot() = default;

void EquipmentMonitorSlot::Initialize(const qlxLanguage &language, int slotIndex)
{
    m_monitor->Initialize(language, slotIndex);
}

bool EquipmentMonitorSlot::Load(const QString &xml)
{
    return m_monitor->Load(xml);
}

QDomElement EquipmentMonitorSlot::GetXMLNode() const
{
    return m_monitor->GetXMLNode();
}

bool EquipmentMonitorSlot::ShutDown()
{
    return m_monitor->ShutDown();
}

int EquipmentMonitorSlot::DriverState() const
{
    return m_monitor->DriverState();
}

QString EquipmentMonitorSlot::identifier() const
{
    return m_monitor->identifier();
}

QString EquipmentMonitorSlot::configurationName() const
{
    return m_monitor->configurationName();
}

bool EquipmentMonitorSlot::SPCSamplingEnabled() const
{
    return m_monitor->SPCSamplingEnabled();
}

WelderCondition EquipmentMonitorSlot::condition() const
{
    const int state = m_monitor->DriverState();
    if (state < 2)
        return WelderCondition::Stopped;
    if (state == 2 || m_monitor->connectionProblem())
        return WelderCondition::LinkDown;
    return m_monitor->lastWeldOutOfSpecification() ? WelderCondition::OutOfSpecification
                                                   : WelderCondition::Connected;
}

DataSourceState EquipmentMonitorSlot::dataSource() const
{
    const SamplingSeam &sampling = m_monitor->sampling();
    return {sampling.DataSourceName(), sampling.DataSourceConnected()};
}

void EquipmentMonitorSlot::StartStop()
{
    m_monitor->StartStop();
}

void EquipmentMonitorSlot::StartDataCollection()
{
    m_monitor->StartDataCollection();
}

void EquipmentMonitorSlot::StopDataCollection()
{
    m_monitor->StopDataCollection();
}
