#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace spc {

// A set of the eight run rules, numbered 1 to 8 as quality engineers know them.
class RuleSet
{
public:
    static constexpr int kFirstRule = 1;
    static constexpr int kLastRule = 8;

    RuleSet() = default;
    // One point beyond 3σ, nine on one side, six rising or falling, two of three beyond
    // 2σ: the rules a line is watched with unless told otherwise.
    static RuleSet defaults();
    static RuleSet all();
    // "1,2,3,5" (blanks allowed); nothing when a number is not a rule.
    static std::optional<RuleSet> parse(const QString &text);

    bool contains(int rule) const { return (m_bits >> rule) & 1U; }
    void insert(int rule) { m_bits |= quint16(1U << rule); }
    bool isEmpty() const { return m_bits == 0; }
    QList<int> rules() const;
    // The rule numbers separated by blanks: "1 5".
    QString text() const;

    bool operator==(const RuleSet &other) const = default;

private:
    quint16 m_bits = 0;
};

} // namespace spc
