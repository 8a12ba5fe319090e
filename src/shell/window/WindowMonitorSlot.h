#pragma once

#include "shell/EquipmentMonitorSlot.h"

#include <QPointer>

class CorvaneUsw;

// A monitor slot of the desktop program: the equipment monitor and the face that shows
// it in its tab. Initializing the slot initializes the monitor through its face, so that
// the face takes the language's captions and the monitor's characteristics with it.
class WindowMonitorSlot : public EquipmentMonitorSlot
{
public:
    WindowMonitorSlot(std::unique_ptr<EquipmentMonitor> monitor, CorvaneUsw *view);
    ~WindowMonitorSlot() override;

    CorvaneUsw *view() const { return m_view.data(); }

    void Initialize(const qlxLanguage &language, int slotIndex) override;

private:
    QPointer<CorvaneUsw> m_view;
};
