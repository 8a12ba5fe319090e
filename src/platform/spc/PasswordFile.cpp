#include "PasswordFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace qlaDatabase6 {

namespace {

// Matches one field of an entry at `position` against a connection value and moves
// `position` past the field and its colon. Returns false when the field does not match
// or the entry ends before the field does.
bool fieldMatches(QStringView line, qsizetype &position, QStringView value)
{
    if (position + 1 < line.size() && line[position] == u'*' && line[position + 1] == u':') {
        position += 2;
        return true;
    }
    qsizetype matched = 0;
    bool equal = true;
    while (position < line.size() && line[position] != u':') {
        if (line[position] == u'\\' && position + 1 < line.size())
            ++position;
        if (matched >= value.size() || line[position] != value[matched])
            equal = false;
        ++matched;
        ++position;
    }
    if (position >= line.size())
        return false;
    ++position;
    return equal && matched == value.size();
}

// The password is the rest of the entry up to the next colon that is not escaped.
QString passwordField(QStringView line, qsizetype position)
{
    QString password;
    for (; position < line.size() && line[position] != u':'; ++position) {
        if (line[position] == u'\\' && position + 1 < line.size())
            ++position;
        password += line[position];
    }
    return password;
}

} // namespace

QString PasswordFile::defaultPath()
{
    const QString fromEnvironment = qEnvironmentVariable("PGPASSFILE");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
#ifdef Q_OS_WIN
    return QDir(qEnvironmentVariable("APPDATA")).filePath(QStringLiteral("postgresql/pgpass.conf"));
#else
    return QDir::home().filePath(QStringLiteral(".pgpass"));
#endif
}

QString PasswordFile::resolvePassword(const QString &host, quint16 port, const QString &database,
                                      const QString &user)
{
    const QString fromEnvironment = qEnvironmentVariable("PGPASSWORD");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return lookUp(defaultPath(), host, port, database, user);
}

QString PasswordFile::lookUp(const QString &path, const QString &host, quint16 port,
                             const QString &database, const QString &user)
{
    const QFileInfo info(path);
    if (!info.isFile())
        return {};
#ifndef Q_OS_WIN
    constexpr QFile::Permissions kOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                           QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    if (info.permissions() & kOthers)
        return {};
#endif
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return lookUpInText(QString::fromUtf8(file.readAll()), host, port, database, user);
}

QString PasswordFile::lookUpInText(const QString &text, const QString &host, quint16 port,
                                   const QString &database, const QString &user)
{
    const QString portText = QString::number(port);
    const QStringList lines = text.split(u'\n');
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        qsizetype position = 0;
        if (fieldMatches(line, position, host) && fieldMatches(line, position, portText) &&
            fieldMatches(line, position, database) && fieldMatches(line, position, user))
            return passwordField(line, position);
    }
    return {};
}

} // namespace qlaDatabase6
