#include "RuleSet.h"

#include <QStringList>

namespace spc {

RuleSet RuleSet::defaults()
{
    RuleSet set;
    for (int rule : {1, 2, 3, 5})
        set.insert(rule);
    return set;
}

RuleSet RuleSet::all()
{
    RuleSet set;
    for (int rule = kFirstRule; rule <= kLastRule; ++rule)
        set.insert(rule);
    return set;
}

std::optional<RuleSet> RuleSet::parse(const QString &text)
{
    RuleSet set;
    for (const QString &part : text.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int rule = part.trimmed().toInt(&ok);
        if (!ok || rule < kFirstRule || rule > kLastRule)
            return std::nullopt;
        set.insert(rule);
    }
    return set;
}

QList<int> RuleSet::rules() const
{
    QList<int> list;
    for (int rule = kFirstRule; rule <= kLastRule; ++rule)
        if (contains(rule))
            list.append(rule);
    return list;
}

QString RuleSet::text() const
{
    QStringList numbers;
    for (int rule : rules())
        numbers.append(QString::number(rule));
    return numbers.join(u' ');
}

} // namespace spc
