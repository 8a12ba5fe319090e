#include "EquipmentMonitorSlot.h"

#include "monitor/EquipmentMonitor.h"

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
