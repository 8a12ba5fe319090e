#include "FileSupply.h"

FileSupply::FileSupply(const QString &path, std::unique_ptr<WeldSource> source, int intervalMs,
                       std::optional<qint64> count, QObject *parent)
    : Supply(std::move(source), intervalMs, count, parent)
    , m_file(path)
{}

bool FileSupply::open(QString *errorText)
{
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return true;
    *errorText = QStringLiteral("cannot write %1: %2").arg(m_file.fileName(), m_file.errorString());
    return false;
}

QString FileSupply::startLine() const
{
    return QStringLiteral("file %1").arg(m_file.fileName());
}

void FileSupply::send(const QByteArray &bytes)
{
    if (m_file.write(bytes) != bytes.size() || !m_file.flush())
        fail(QStringLiteral("cannot write %1: %2").arg(m_file.fileName(), m_file.errorString()));
}

void FileSupply::drain()
{
    closeNow();
    markFinished();
}

void FileSupply::closeNow()
{
    if (!m_file.isOpen())
        return;
    m_file.flush();
    m_file.close();
}
