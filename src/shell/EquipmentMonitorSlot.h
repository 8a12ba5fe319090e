#pragma once

#include "ConfigurationMonitor.h"

#include <memory>

class EquipmentMonitor;

// A slot's monitor backed by a real equipment monitor, which it owns.
class EquipmentMonitorSlot : public ConfigurationMonitor
{
public:
    explicit EquipmentMonitorSlot(std::unique_ptr<EquipmentMonitor> monitor);
    ~EquipmentMonitorSlot() override;

    EquipmentMonitor &monitor() const { return *m_monitor; }

    void Initialize(const qlxLanguage &language, int slotIndex) override;
    bool Load(const QString &xml) override;
    QDomElement GetXMLNode() const override;
    bool ShutDown() override;
    int DriverState() const override;
    QString identifier() const override;
    QString configurationName() const override;
    bool SPCSamplingEnabled() const override;
    WelderCondition condition() const override;
    DataSourceState dataSource() const override;
    void StartStop() override;
    void StartDataCollection() override;
    void StopDataCollection() override;

private:
    std::unique_ptr<EquipmentMonitor> m_monitor;
};
