#include "AlarmList.h"

#include "platform/ErrorPassing.h"
#include "platform/qlxLanguage.h"

#include <limits>

using namespace CorvaneUSWSupport;

int AlarmList::AddAlarmItems(qint32 cycleCount, qint32 alarmBits, const AlarmTable &alarmTexts,
                             const qlxLanguage &language)
{
    return passOn("CorvaneUsw.AddAlarmItems", [&] {
        int added = 0;
        for (qint32 bit = 0; bit < 32; ++bit) {
            if ((alarmBits & ConvertBitToLong(bit)) == 0 || alarmTexts[bit].isEmpty())
                continue;
            if (m_totalAlarms == std::numeric_limits<qint32>::max())
                throw ProgramError::overflow(QStringLiteral("CorvaneUsw.AddAlarmItems"));
            ++m_totalAlarms;
            m_lines.push_back({cycleCount, internText(language.Translate(alarmTexts[bit]))});
            ++added;
        }
        return added;
    });
}

void AlarmList::AddTextItem(qint32 cycleCount, const QString &text)
{
    if (m_totalAlarms == std::numeric_limits<qint32>::max())
        throw ProgramError::overflow(QStringLiteral("CorvaneUsw.AddTextItem"));
    ++m_totalAlarms;
    m_lines.push_back({cycleCount, internText(text)});
}

void AlarmList::clear()
{
    m_lines = {};
    m_texts.clear();
    m_textIndex.clear();
    m_totalAlarms = 0;
}

QString AlarmList::line(qsizetype position) const
{
    const Line &entry = m_lines.at(m_lines.size() - 1 - std::size_t(position));
    return QString::number(entry.cycleCount) + QStringLiteral(": ") + m_texts.at(entry.textIndex);
}

QString AlarmList::text() const
{
    QString joined;
    qsizetype length = 0;
    for (const Line &entry : m_lines)
        length += 16 + m_texts.at(entry.textIndex).size();
    joined.reserve(length);
    for (auto it = m_lines.rbegin(); it != m_lines.rend(); ++it) {
        joined += QString::number(it->cycleCount);
        joined += QStringLiteral(": ");
        joined += m_texts.at(it->textIndex);
        joined += QStringLiteral("\r\n");
    }
    return joined;
}

qint32 AlarmList::internText(const QString &text)
{
    const auto found = m_textIndex.constFind(text);
    if (found != m_textIndex.constEnd())
        return found.value();
    const qint32 index = qint32(m_texts.size());
    m_texts.append(text);
    m_textIndex.insert(text, index);
    return index;
}
