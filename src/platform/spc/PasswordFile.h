#pragma once

#include <QString>

namespace qlaDatabase6 {

// The password for the plant-wide SPC server. It is never kept in the configurations
// file: it comes from PGPASSWORD, or else from the user's password file (PGPASSFILE, or
// ~/.pgpass; %APPDATA%\postgresql\pgpass.conf on Windows).
//
// The password file holds one entry per line, host:port:database:user:password; "*"
// in any of the first four fields matches everything, "\:" and "\\" stand for a colon
// and a backslash, lines starting with '#' are comments, and the first matching line
// wins. On systems with file permissions a file that others may read is ignored, as
// the server's own tools do, so that a password is not taken from a file anyone could
// have written.
class PasswordFile
{
public:
    static QString defaultPath();

    // PGPASSWORD when set, else the password file's entry; empty when neither has one.
    static QString resolvePassword(const QString &host, quint16 port, const QString &database,
                                   const QString &user);

    // The entry of one password file for a connection; empty when none matches or the
    // file cannot be used.
    static QString lookUp(const QString &path, const QString &host, quint16 port,
                          const QString &database, const QString &user);

    // The entry of a password file's text for a connection (no permission check).
    static QString lookUpInText(const QString &text, const QString &host, quint16 port,
                                const QString &database, const QString &user);
};

} // namespace qlaDatabase6
