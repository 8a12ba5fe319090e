#pragma once

#include "shell/ConfigurationMonitor.h"

#include <QDomDocument>

// One Configuration element for a fake monitor.
inline QString welder(const QString &name, const QString &extra = {})
{
    return QStringLiteral("<Configuration%1><Equipment Name=\"%2\"/></Configuration>")
        .arg(extra, name);
}

// A welder's monitor without a welder: it keeps the Configuration element it was given
// (a new one is named "New"), refuses one that carries Refuse="1", samples when it
// carries Sampling="1", and collects (DriverState 2) between StartStop calls.
class FakeMonitor : public ConfigurationMonitor
{
public:
    explicit FakeMonitor(QString key)
        : m_key(std::move(key))
    {}

    void Initialize(const qlxLanguage &, int slotIndex) override { initializedAs = slotIndex; }
    bool Load(const QString &xml) override
    {
        QDomDocument document;
        document.setContent(xml.isEmpty() ? welder(QStringLiteral("New")) : xml);
        if (refuseAll || document.documentElement().attribute(QStringLiteral("Refuse")) == u'1')
            return false;
        m_document = document;
        m_state = 1;
        return true;
    }
    QDomElement GetXMLNode() const override { return m_document.documentElement(); }
    bool ShutDown() override { return ++shutDowns, m_state = 0, true; }
    int DriverState() const override { return m_state; }
    QString identifier() const override { return m_key; }
    QString configurationName() const override { return equipment().attribute("Name"); }
    bool SPCSamplingEnabled() const override
    {
        return m_document.documentElement().attribute(QStringLiteral("Sampling")) == u'1';
    }
    WelderCondition condition() const override { return shownCondition; }
    DataSourceState dataSource() const override { return shownSource; }
    void StartStop() override { m_state = m_state == 1 ? 2 : 1; }
    void StartDataCollection() override { m_state = 2; }
    void StopDataCollection() override { m_state = 1; }

    void setName(const QString &name) { equipment().setAttribute(QStringLiteral("Name"), name); }

    bool refuseAll = false;
    int initializedAs = -1;
    int shutDowns = 0;
    WelderCondition shownCondition = WelderCondition::Stopped;
    DataSourceState shownSource;

private:
    QDomElement equipment() const
    {
        return m_document.documentElement().firstChildElement(QStringLiteral("Equipment"));
    }

    QString m_key;
    QDomDocument m_document;
    int m_state = 0;
};
