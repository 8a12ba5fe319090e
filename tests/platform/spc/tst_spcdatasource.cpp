#include "platform/spc/DataSource.h"
#include "platform/spc/PasswordFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using qlaDatabase6::DataSource;
using qlaDatabase6::PasswordFile;

namespace {

// Sets an environment variable for the life of the object and puts back what was
// there before.
class ScopedEnvironment
{
public:
    ScopedEnvironment(const char *name, const QByteArray &value)
        : m_name(name)
        , m_had(qEnvironmentVariableIsSet(name))
        , m_old(qgetenv(name))
    {
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    ~ScopedEnvironment()
    {
        if (m_had)
            qputenv(m_name, m_old);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    bool m_had;
    QByteArray m_old;
};

void writeFile(const QString &path, const QByteArray &content, QFile::Permissions permissions)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QVERIFY(file.setPermissions(permissions));
}

constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

// The data source name a configuration keeps, and where the server's password comes
// from.
class TestSpcDataSource : public QObject
{
    Q_OBJECT

private slots:
    void readsDataSourceNames_data()
    {
        QTest::addColumn<QString>("dsn");
        QTest::addColumn<bool>("server");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("database");
        QTest::addColumn<QString>("user");

        const QString none;
        QTest::newRow("plain file")
            << "spc.db" << false << "spc.db" << none << 5432 << none << none;
        QTest::newRow("drive letter")
            << "C:/Corvane/spc.db" << false << "C:/Corvane/spc.db" << none << 5432 << none << none;
        QTest::newRow("sqlite prefix") << "sqlite:/tmp/line 3/spc.db" << false
                                       << "/tmp/line 3/spc.db" << none << 5432 << none << none;
        QTest::newRow("server with user and port")
            << "postgresql://spc@db.plant.local:5433/quality" << true << none << "db.plant.local"
            << 5433 << "quality"
            << "spc";
        QTest::newRow("server without user and port")
            << "postgresql://db.plant.local/quality" << true << none << "db.plant.local" << 5432
            << "quality"
            << "operator7";
        QTest::newRow("IPv6 server")
            << "postgresql://[::1]:6000/q" << true << none << "::1" << 6000 << "q"
            << "operator7";
        QTest::newRow("escaped names")
            << "postgresql://u%40x@h/q%20db" << true << none << "h" << 5432 << "q db"
            << "u@x";
    }

    void readsDataSourceNames()
    {
        QFETCH(QString, dsn);
        QFETCH(bool, server);
        const ScopedEnvironment user("PGUSER", "operator7");
        DataSource source;
        QString error;
        QVERIFY2(DataSource::parse(dsn, source, error), qPrintable(error));
        QCOMPARE(source.kind() == DataSource::Kind::PostgreSQL, server);
        QTEST(source.filePath(), "file");
        QTEST(source.host(), "host");
        QTEST(int(source.port()), "port");
        QTEST(source.database(), "database");
        if (server)
            QTEST(source.user(), "user");
    }

    void refusesBadDataSourceNames_data()
    {
        QTest::addColumn<QString>("dsn");
        QTest::addColumn<QString>("reason");
        QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("empty");
        QTest::newRow("sqlite without file")
            << QStringLiteral("sqlite:") << QStringLiteral("names no file");
        QTest::newRow("other server kind")
            << QStringLiteral("mysql://h/db") << QStringLiteral("unsupported");
        QTest::newRow("no host") << QStringLiteral("postgresql:///db")
                                 << QStringLiteral("no server");
        QTest::newRow("no database")
            << QStringLiteral("postgresql://h") << QStringLiteral("DATABASE");
        QTest::newRow("nested path")
            << QStringLiteral("postgresql://h/a/b") << QStringLiteral("DATABASE");
        QTest::newRow("password in name")
            << QStringLiteral("postgresql://u:secret@h/db") << QStringLiteral("password");
        QTest::newRow("port too large")
            << QStringLiteral("postgresql://h:99999/db") << QStringLiteral("not valid");
        QTest::newRow("parameters")
            << QStringLiteral("postgresql://h/db?sslmode=require") << QStringLiteral("parameters");
    }

    void refusesBadDataSourceNames()
    {
        QFETCH(QString, dsn);
        QFETCH(QString, reason);
        DataSource source;
        QString error;
        QVERIFY(!DataSource::parse(dsn, source, error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        // The password must not be repeated in a message that may end up in a log.
        QVERIFY(!error.contains(QLatin1String("secret")));
    }

    void defaultDatabaseIsInDataFolder()
    {
        QCOMPARE(DataSource::defaultName(QStringLiteral("/srv/Corvane")),
                 QStringLiteral("/srv/Corvane/spc.db"));
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
        writeFile(path, "127.0.0.1:5433:corvane:spc:fromfile\n", kOwnerOnly);
        const ScopedEnvironment file("PGPASSFILE", path.toLocal8Bit());
        const auto resolve = [] {
            return PasswordFile::resolvePassword(QStringLiteral("127.0.0.1"), 5433,
                                                 QStringLiteral("corvane"), QStringLiteral("spc"));
        };
        {
            const ScopedEnvironment password("PGPASSWORD", "fromenvironment");
            QCOMPARE(resolve(), QStringLiteral("fromenvironment"));
        }
        {
            const ScopedEnvironment password("PGPASSWORD", QByteArray());
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
