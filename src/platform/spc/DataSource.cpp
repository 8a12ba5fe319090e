#include "DataSource.h"

#include <QDir>
#include <QRegularExpression>
#include <QUrl>

namespace qlaDatabase6 {

namespace {

QString loginName()
{
    for (const char *variable : {"PGUSER", "USER", "USERNAME", "LOGNAME"}) {
        const QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty())
            return name;
    }
    return {};
}

} // namespace

bool DataSource::parse(const QString &dsn, DataSource &result, QString &errorText)
{
    result = DataSource();
    const QString text = dsn.trimmed();
    if (text.isEmpty()) {
        errorText = QStringLiteral("The data source name is empty");
        return false;
    }
    if (text.startsWith(QLatin1String("sqlite:"), Qt::CaseInsensitive)) {
        result.m_filePath = text.mid(7);
        if (result.m_filePath.isEmpty()) {
            errorText = QStringLiteral("The data source name \"%1\" names no file").arg(text);
            return false;
        }
        return true;
    }
    // Anything that looks like "scheme://" is a server address; everything else,
    // drive letters included ("C:/Corvane/spc.db"), is a file.
    static const QRegularExpression schemePattern(QStringLiteral("^([A-Za-z][A-Za-z0-9+.-]*)://"));
    const QRegularExpressionMatch scheme = schemePattern.match(text);
    if (!scheme.hasMatch()) {
        result.m_filePath = text;
        return true;
    }
    const QString schemeName = scheme.captured(1).toLower();
    if (schemeName != QLatin1String("postgresql") && schemeName != QLatin1String("postgres")) {
        errorText = QStringLiteral("The data source name \"%1\" names an unsupported kind of "
                                   "database (%2)")
                        .arg(text, schemeName);
        return false;
    }
    return parseServer(text, result, errorText);
}

bool DataSource::parseServer(const QString &dsn, DataSource &result, QString &errorText)
{
    const QUrl url(dsn, QUrl::StrictMode);
    // A message may end up in a log: it never repeats a password.
    const QString shown = masked(dsn);
    const auto refuse = [&](const QString &why) {
        errorText = QStringLiteral("The data source name \"%1\" is not valid: %2").arg(shown, why);
        return false;
    };
    if (!url.isValid())
        return refuse(url.errorString());
    if (!url.password().isEmpty() || url.userInfo().contains(u':'))
        return refuse(QStringLiteral("a password does not belong in it; use PGPASSWORD or the "
                                     "password file"));
    if (url.hasQuery() || url.hasFragment())
        return refuse(QStringLiteral("it carries parameters"));
    if (url.host().isEmpty())
        return refuse(QStringLiteral("no server is given"));
    QString database = url.path(QUrl::FullyDecoded);
    if (database.startsWith(u'/'))
        database.remove(0, 1);
    if (database.isEmpty() || database.contains(u'/'))
        return refuse(QStringLiteral("it must end in /DATABASE"));
    if (url.port() == 0)
        return refuse(QStringLiteral("port 0"));

    result.m_kind = Kind::PostgreSQL;
    result.m_host = url.host(QUrl::FullyDecoded);
    result.m_port = url.port() > 0 ? quint16(url.port()) : kDefaultPostgreSQLPort;
    result.m_database = database;
    result.m_userGiven = !url.userName().isEmpty();
    result.m_user = result.m_userGiven ? url.userName(QUrl::FullyDecoded) : loginName();
    return true;
}

namespace {

// The "user:password@" part of a server address: the password is everything between
// the first ':' after "//" and the last '@' before the path.
struct PasswordSpan
{
    qsizetype start = -1;
    qsizetype length = 0;
};

PasswordSpan passwordSpan(const QString &dsn)
{
    const qsizetype scheme = dsn.indexOf(QLatin1String("://"));
    if (scheme < 0)
        return {};
    const qsizetype authorityStart = scheme + 3;
    qsizetype authorityEnd = dsn.indexOf(u'/', authorityStart);
    if (authorityEnd < 0)
        authorityEnd = dsn.size();
    const qsizetype at = dsn.lastIndexOf(u'@', authorityEnd - 1);
    if (at < authorityStart)
        return {};
    const qsizetype colon = dsn.indexOf(u':', authorityStart);
    if (colon < 0 || colon > at)
        return {};
    return {colon, at - colon};
}

} // namespace

QString DataSource::withoutPassword(const QString &dsn, bool *passwordFound)
{
    const PasswordSpan span = passwordSpan(dsn);
    if (passwordFound)
        *passwordFound = span.start >= 0;
    return span.start < 0 ? dsn : QString(dsn).remove(span.start, span.length);
}

QString DataSource::masked(const QString &dsn)
{
    const PasswordSpan span = passwordSpan(dsn);
    return span.start < 0
               ? dsn
               : QString(dsn).replace(span.start + 1, span.length - 1, QStringLiteral("*****"));
}

QString DataSource::defaultName(const QString &dataFolder)
{
    return QDir(dataFolder).filePath(QStringLiteral("spc.db"));
}

} // namespace qlaDatabase6
