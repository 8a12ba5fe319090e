#include "WindowMonitorSlot.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/CorvaneUsw.h"

WindowMonitorSlot::WindowMonitorSlot(std::unique_ptr<EquipmentMonitor> monitor, CorvaneUsw *view)
    : EquipmentMonitorSlot(std::move(monitor))
    , m_view(view)
{}

WindowMonitorSlot::~WindowMonitorSlot() = default;

void WindowMonitorSlot::Initialize(const qlxLanguage &language, int slotIndex)
{
    if (m_view)
        m_view->Initialize(language, slotIndex);
    else
        EquipmentMonitorSlot::Initialize(language, slotIndex);
}
