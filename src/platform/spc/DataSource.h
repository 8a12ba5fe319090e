#pragma once

#include <QString>

namespace qlaDatabase6 {

// Where an SPC database lives, as the one line of text (the data source name) that a
// monitor's configuration keeps:
//   a file path, or "sqlite:" followed by a path          a local SQLite file;
//   postgresql://[user@]host[:port]/database               the plant-wide server.
// The configuration never carries a password: the server's password comes from the
// environment or the user's password file when the connection is made.
class DataSource
{
public:
    enum class Kind { SQLite, PostgreSQL };

    static constexpr quint16 kDefaultPostgreSQLPort = 5432;

    // Reads a data source name; returns false with the reason in errorText when it is
    // not one of the forms above.
    static bool parse(const QString &dsn, DataSource &result, QString &errorText);

    // A server address without the password written into it, so that it can be kept,
    // shown and logged; passwordFound tells whether there was one. Other names come back
    // as they are.
    static QString withoutPassword(const QString &dsn, bool *passwordFound = nullptr);
    // The name with its password (if any) replaced by asterisks, for a message.
    static QString masked(const QString &dsn);

    // The SPC database a workstation uses unless told otherwise: spc.db in the data
    // folder.
    static QString defaultName(const QString &dataFolder);

    Kind kind() const { return m_kind; }
    const QString &filePath() const { return m_filePath; }
    const QString &host() const { return m_host; }
    quint16 port() const { return m_port; }
    const QString &database() const { return m_database; }
    // The user given in the name, else PGUSER, else the login name (as the server's
    // own client library would choose).
    const QString &user() const { return m_user; }
    bool userGiven() const { return m_userGiven; }

private:
    static bool parseServer(const QString &dsn, DataSource &result, QString &errorText);

    Kind m_kind = Kind::SQLite;
    QString m_filePath;
    QString m_host;
    quint16 m_port = kDefaultPostgreSQLPort;
    QString m_database;
    QString m_user;
    bool m_userGiven = false;
};

} // namespace qlaDatabase6
