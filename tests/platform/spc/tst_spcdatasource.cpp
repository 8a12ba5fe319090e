#include "platform/spc/DataSource.h"
#include "platform/spc/PasswordFile.h"

#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

using qlaDatabase6::DataSource;
using qlaDatabase6::PasswordFile;

namespace {

// Sets an environment variable, or unsets it for a null value, until the returned guard
// puts back what was there before.
[[nodiscard]] auto scopedEnvironment(const char *name, const QByteArray &value)
{
    auto restore = [name, had = qEnvironmentVariableIsSet(name), old = qgetenv(name)] {
        had ? qputenv(name, old) : qunsetenv(name);
    };
    value.isNull() ? qunsetenv(name) : qputenv(name, value);
    return qScopeGuard(restore);
}

constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

// The data source name a configuration keeps, and where the server's password comes
// from.
class TestSpcDataSource : public QObject
{
    Q_OBJECT

private slots:
    void dataSourceNames_data()
    {
        // What a name reads as: the SQLite file, the server's user@host:port/database, or
        // a refusal whose message holds the given words.
        QTest::addColumn<QString>("dsn");
        QTest::addColumn<QString>("reading");
        QTest::newRow("plain file") << "spc.db"
                                    << "file spc.db";
        QTest::newRow("drive letter") << "C:/Corvane/spc.db"
                                      << "file C:/Corvane/spc.db";
        QTest::newRow("sqlite prefix") << "sqlite:/tmp/line 3/spc.db"
                                       << "file /tmp/line 3/spc.db";
        QTest::newRow("server with user and port") << "postgresql://spc@db.plant.local:5433/quality"
                                                   << "server spc@db.plant.local:5433/quality";
        QTest::newRow("server without user and port")
            << "postgresql://db.plant.local/quality"
            << "server operator7@db.plant.local:5432/quality";
        QTest::newRow("IPv6 server") << "postgresql://[::1]:6000/q"
                                     << "server operator7@::1:6000/q";
        QTest::newRow("escaped names") << "postgresql://u%40x@h/q%20db"
                                       << "server u@x@h:5432/q db";
        QTest::newRow("empty") << ""
                               << "refused empty";
        QTest::newRow("sqlite without file") << "sqlite:"
                                             << "refused names no file";
        QTest::newRow("other server kind") << "mysql://h/db"
                                           << "refused unsupported";
        QTest::newRow("no host") << "postgresql:///db"
                                 << "refused no server";
        QTest::newRow("no database") << "postgresql://h"
                                     << "refused DATABASE";
        QTest::newRow("nested path") << "postgresql://h/a/b"
                                     << "refused DATABASE";
        QTest::newRow("password in name") << "postgresql://u:secret@h/db"
                                          << "refused password";
        QTest::newRow("port too large") << "postgresql://h:99999/db"
                                        << "refused not valid";
        QTest::newRow("parameters") << "postgresql://h/db?sslmode=require"
                                    << "refused parameters";
    }
    void dataSourceNames()
    {
        QFETCH(QString, dsn);
        QFETCH(QString, reading);
        const auto user = scopedEnvironment("PGUSER", "operator7");
        DataSource source;
        QString error;
        if (!DataSource::parse(dsn, source, error)) {
            QVERIFY2(reading.startsWith(QLatin1String("refused ")), qPrintable(error));
            QVERIFY2(error.contains(reading.mid(8)), qPrintable(error));
            // The password must not be repeated in a message that may end up in a log.
            QVERIFY(!error.contains(QLatin1String("secret")));
        } else if (source.kind() == DataSource::Kind::SQLite) {
            QCOMPARE(QStringLiteral("file ") + source.filePath(), reading);
        } else {
            QCOMPARE(QStringLiteral("server %1@%2:%3/%4")
                         .arg(source.user(), source.host())
                         .arg(source.port())
                         .arg(source.database()),
                     reading);
        }
    }

    void passwordFileEntries_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("password");
        const QByteArray other = "db.plant.local:5432:quality:spc:other\n";
        QTest::newRow("exact entry")
            << QByteArray("127.0.0.1:5433:corvane:spc:s3cret\n") << "s3cret";
        QTest::newRow("wildcards") << QByteArray("*:*:*:spc:wild\n") << "wild";
        QTest::newRow("first match wins")
            << QByteArray("127.0.0.1:*:corvane:*:first\n*:*:*:*:second\n") << "first";
        QTest::newRow("other entries skipped") << other + "127.0.0.1:5433:*:spc:mine\n"
                                               << "mine";
        QTest::newRow("comment skipped")
            << QByteArray("# 127.0.0.1:5433:corvane:spc:commented\n*:5433:*:*:live\n") << "live";
        QTest::newRow("escaped colon and backslash")
            << QByteArray("*:*:*:spc:a\\:b\\\\c\n") << "a:b\\c";
        QTest::newRow("password ends at colon") << QByteArray("*:*:*:spc:abc:rest\n") << "abc";
        QTest::newRow("wrong port") << QByteArray("127.0.0.1:5432:corvane:spc:no\n") << "";
        QTest::newRow("user is a prefix") << QByteArray("*:*:*:sp:no\n") << "";
        QTest::newRow("star is literal when not alone") << QByteArray("*x:*:*:*:no\n") << "";
        QTest::newRow("empty password") << QByteArray("*:*:*:*:\n") << "";
    }

    void passwordFileEntries()
    {
        QFETCH(QByteArray, file);
        QTEST(PasswordFile::lookUpInText(QString::fromUtf8(file), QStringLiteral("127.0.0.1"), 5433,
                                         QStringLiteral("corvane"), QStringLiteral("spc")),
              "password");
    }

    void passwordSources()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("pgpass"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("127.0.0.1:5433:corvane:spc:fromfile\n");
        file.close();
        QVERIFY(file.setPermissions(kOwnerOnly));
        const auto passFile = scopedEnvironment("PGPASSFILE", path.toLocal8Bit());
        const auto resolve = [] {
            return PasswordFile::resolvePassword(QStringLiteral("127.0.0.1"), 5433,
                                                 QStringLiteral("corvane"), QStringLiteral("spc"));
        };
        {
            const auto password = scopedEnvironment("PGPASSWORD", "fromenvironment");
            QCOMPARE(resolve(), QStringLiteral("fromenvironment"));
        }
        {
            const auto password = scopedEnvironment("PGPASSWORD", QByteArray());
            QCOMPARE(PasswordFile::defaultPath(), path);
            QCOMPARE(resolve(), QStringLiteral("fromfile"));
            // A file that others may read is not trusted.
            QVERIFY(QFile::setPermissions(path, kOwnerOnly | QFile::ReadGroup | QFile::ReadOther));
#ifndef Q_OS_WIN
            QCOMPARE(resolve(), QString());
#endif
            QVERIFY(QFile::remove(path));
            QCOMPARE(resolve(), QString());
        }
    }
};

QTEST_GUILESS_MAIN(TestSpcDataSource)
#include "tst_spcdatasource.moc"
