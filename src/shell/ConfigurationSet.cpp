#include "ConfigurationSet.h"

#include "XmlText.h"

#include "platform/ErrorPassing.h"
#include "platform/ProgramError.h"

#include <QDomDocument>

ConfigurationSet::ConfigurationSet(QString configurationsPath, const Clock &clock,
                                   const qlxLanguage &language, MonitorFactory makeMonitor,
                                   QObject *parent)
    : QObject(parent)
    , m_file(std::move(configurationsPath), clock)
    , m_language(language)
    , m_makeMonitor(std::move(makeMonitor))
{
    m_file.setUnreadKeptHandler([this](const QString &copyPath, const QStringList &dropped) {
        emit unreadContentKept(copyPath, dropped);
    });
}

ConfigurationSet::~ConfigurationSet() = default;

bool ConfigurationSet::LoadConfigurationFile()
{
    return passOn("dlgMain.LoadConfigurationFile",
                  [&] { return BuildConfigurations(ReadConfigurationFile()); });
}

QString ConfigurationSet::ReadConfigurationFile() const
{
    return m_file.ReadConfigurationFile();
}

bool ConfigurationSet::BuildConfigurations(const QString &text)
{
    return passOn("dlgMain.BuildConfigurations", [&] {
        CloseConfigurations();
        const QString content = text.isEmpty() ? QStringLiteral("<Configurations/>") : text;
        QDomDocument document;
        QString message;
        int line = 0;
        int column = 0;
        if (!document.setContent(content, &message, &line, &column)) {
            throw ProgramError::raised(
                QStringLiteral("The configurations file is not well-formed XML: %1 "
                               "(line %2, column %3)")
                    .arg(message)
                    .arg(line)
                    .arg(column),
                QStringLiteral("dlgMain.BuildConfigurations"));
        }
        const QDomElement root = document.documentElement();
        if (root.tagName() != QLatin1String("Configurations")) {
            throw ProgramError::raised(
                QStringLiteral("The configurations file has no Configurations element"),
                QStringLiteral("dlgMain.BuildConfigurations"));
        }
        for (QDomElement child = root.firstChildElement(QStringLiteral("Configuration"));
             !child.isNull(); child = child.nextSiblingElement(QStringLiteral("Configuration")))
            AddConfiguration(xmlText(child));
        return true;
    });
}

int ConfigurationSet::freeSlot() const
{
    for (int i = 0; i < slotCount(); ++i) {
        if (m_slots[size_t(i)]->DriverState() == 0)
            return i;
    }
    return -1;
}

QString ConfigurationSet::AddConfiguration(const QString &text)
{
    return passOn("dlgMain.AddConfiguration", [&] {
        int index = freeSlot();
        if (index < 0) {
            index = slotCount();
            m_slots.push_back(m_makeMonitor(index));
        }
        ConfigurationMonitor &slot = *m_slots[size_t(index)];
        slot.Initialize(m_language, index);
        if (!slot.Load(text)) {
            // Whatever the refused text left behind, the slot must read as free again.
            slot.ShutDown();
            return QString();
        }
        m_tabs.append({slot.identifier(), slot.configurationName()});
        const int tab = int(m_tabs.size()) - 1;
        emit tabAdded(tab);
        // A tab strip selects the first tab that it is given.
        if (m_currentTab < 0)
            setCurrentTab(tab);
        return slot.identifier();
    });
}

void ConfigurationSet::CloseConfigurations()
{
    passOn("dlgMain.CloseConfigurations", [&] {
        while (!m_tabs.isEmpty()) {
            m_tabs.removeLast();
            emit tabRemoved(int(m_tabs.size()));
        }
        if (m_currentTab != -1) {
            m_currentTab = -1;
            emit currentTabChanged(-1);
        }
        for (const auto &slot : m_slots)
            slot->ShutDown();
    });
}

QDomElement ConfigurationSet::GetXMLNode() const
{
    return passOn("dlgMain.GetXMLNode", [&] {
        QDomDocument document;
        QDomElement root = document.createElement(QStringLiteral("Configurations"));
        document.appendChild(root);
        if (configurationsPath().isEmpty())
            return root;
        for (const auto &slot : m_slots) {
            if (slot->DriverState() != 0)
                root.appendChild(document.importNode(slot->GetXMLNode(), true));
        }
        return root;
    });
}

bool ConfigurationSet::IsDirty(const QString &text) const
{
    return m_file.IsDirty(text);
}

bool ConfigurationSet::WriteConfigurationFile(const QString &text)
{
    return m_file.WriteConfigurationFile(text);
}

int ConfigurationSet::GetConfigurationIndex(const QString &key) const
{
    return passOn("dlgMain.GetConfigurationIndex", [&] {
        QString wanted = key;
        if (wanted.isEmpty() && m_currentTab >= 0)
            wanted = m_tabs[m_currentTab].key;
        if (wanted.isEmpty())
            return -1;
        for (int i = 0; i < slotCount(); ++i) {
            if (m_slots[size_t(i)]->identifier() == wanted)
                return i;
        }
        return -1;
    });
}

const ConfigurationTab *ConfigurationSet::GetTab(const QString &key) const
{
    if (key.isEmpty())
        return m_currentTab >= 0 ? &m_tabs[m_currentTab] : nullptr;
    for (const ConfigurationTab &tab : m_tabs) {
        if (tab.key == key)
            return &tab;
    }
    return nullptr;
}

void ConfigurationSet::ActivateConfiguration(const QString &key)
{
    for (int i = 0; i < ConfigurationCount(); ++i) {
        if (m_tabs[i].key == key)
            setCurrentTab(i);
    }
}

ConfigurationMonitor &ConfigurationSet::monitor(int slotIndex) const
{
    if (slotIndex < 0 || slotIndex >= slotCount())
        throw ProgramError::subscriptOutOfRange(QStringLiteral("dlgMain.CorvaneUsw1"));
    return *m_slots[size_t(slotIndex)];
}

void ConfigurationSet::setCurrentTab(int index)
{
    if (index < -1 || index >= ConfigurationCount())
        throw ProgramError::subscriptOutOfRange(QStringLiteral("dlgMain.TabStrip1"));
    if (index == m_currentTab)
        return;
    m_currentTab = index;
    emit currentTabChanged(index);
}

void ConfigurationSet::removeTab(int index)
{
    if (index < 0 || index >= ConfigurationCount())
        throw ProgramError::subscriptOutOfRange(QStringLiteral("dlgMain.TabStrip1"));
    const bool wasCurrent = index == m_currentTab;
    m_tabs.removeAt(index);
    emit tabRemoved(index);
    if (wasCurrent) {
        m_currentTab = m_tabs.isEmpty() ? -1 : qMin(index, ConfigurationCount() - 1);
        emit currentTabChanged(m_currentTab);
    } else if (m_currentTab > index) {
        --m_currentTab;
        emit currentTabChanged(m_currentTab);
    }
}

void ConfigurationSet::setTabCaption(int index, const QString &caption)
{
    if (index < 0 || index >= ConfigurationCount())
        throw ProgramError::subscriptOutOfRange(QStringLiteral("dlgMain.TabStrip1"));
    m_tabs[index].caption = caption;
    emit tabCaptionChanged(index);
}
