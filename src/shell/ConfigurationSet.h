#pragma once

#include "ConfigurationFile.h"
#include "ConfigurationMonitor.h"

#include <QDomElement>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class Clock;
class qlxLanguage;

// One tab of the main window: the configuration's key and its name as caption.
struct ConfigurationTab
{
    QString key;
    QString caption;

    friend bool operator==(const ConfigurationTab &, const ConfigurationTab &) = default;
};

// The configurations the program watches, one per welder: the configurations file, the
// monitor slots and the tabs. The main window holds one and mirrors its tabs; the
// headless runner drives it alone. Monitors are created through the factory into slots
// numbered from 0 and are never destroyed while the set lives: a slot whose monitor was
// shut down is reused by the next addition before a new slot is made.
//
// The operations pass their failures on to the caller ("dlgMain.<Procedure>" in the
// source); the event procedure that called them reports.
class ConfigurationSet : public QObject
{
    Q_OBJECT

public:
    using MonitorFactory = std::function<std::unique_ptr<ConfigurationMonitor>(int slotIndex)>;

    ConfigurationSet(QString configurationsPath, const Clock &clock, const qlxLanguage &language,
                     MonitorFactory makeMonitor, QObject *parent = nullptr);
    ~ConfigurationSet() override;

    const QString &configurationsPath() const { return m_file.path(); }

    // ReadConfigurationFile, then BuildConfigurations with its text.
    bool LoadConfigurationFile();
    QString ReadConfigurationFile() const;
    // Replaces all configurations by the Configuration children of the text's
    // Configurations element, in file order; other children are ignored, and the empty
    // text stands for "<Configurations/>". Text that is not well-formed XML or has
    // another root fails after the old configurations were closed, leaving none.
    bool BuildConfigurations(const QString &text);
    // Loads one Configuration element's text into the lowest free slot (or a new one)
    // and adds its tab at the end. Returns the configuration's key, or the empty text
    // when the monitor refused the text; its slot then stays free.
    QString AddConfiguration(const QString &text);
    // Removes every tab and shuts every monitor down; the monitors stay for reuse.
    void CloseConfigurations();
    // A fresh Configurations element holding the element of every monitor in use, in
    // slot order; empty when the set has no configurations path.
    QDomElement GetXMLNode() const;
    bool IsDirty(const QString &text) const;
    bool WriteConfigurationFile(const QString &text);
    // The first slot whose monitor's key equals key exactly, free slots included. The
    // empty key stands for the selected tab's key; -1 when nothing matches.
    int GetConfigurationIndex(const QString &key) const;
    // The tab with this key, or the selected tab for the empty key; null when none.
    const ConfigurationTab *GetTab(const QString &key) const;
    // Selects the tab whose key equals key exactly.
    void ActivateConfiguration(const QString &key);
    int ConfigurationCount() const { return int(m_tabs.size()); }

    // The monitor slots.
    int slotCount() const { return int(m_slots.size()); }
    ConfigurationMonitor &monitor(int slotIndex) const;

    // The tabs, in strip order, and the selected one (-1 when none is).
    const QList<ConfigurationTab> &tabs() const { return m_tabs; }
    int currentTab() const { return m_currentTab; }
    void setCurrentTab(int index);
    // Removes a tab; when it was selected, the tab now at its position is selected, or
    // the last tab when it was the last one.
    void removeTab(int index);
    void setTabCaption(int index, const QString &caption);

signals:
    void tabAdded(int index);
    void tabRemoved(int index);
    void tabCaptionChanged(int index);
    void currentTabChanged(int index);
    // A save kept the original file at copyPath, because it held content (dropped) that
    // this program does not read and the save drops.
    void unreadContentKept(const QString &copyPath, const QStringList &dropped);

private:
    int freeSlot() const;

    ConfigurationFile m_file;
    const qlxLanguage &m_language;
    MonitorFactory m_makeMonitor;
    std::vector<std::unique_ptr<ConfigurationMonitor>> m_slots;
    QList<ConfigurationTab> m_tabs;
    int m_currentTab = -1;
};
