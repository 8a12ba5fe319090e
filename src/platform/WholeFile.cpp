#include "WholeFile.h"

#include "FileErrors.h"

#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_UNIX
ProgramError systemError(int number, const QString &what, const QString &source)
{
    return ProgramError(
        number == ENOSPC ? ProgramError::kDiskFull : ProgramError::kPathFileAccessError,
        what + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(number)), source);
}

// The rename itself lives in the folder: it reaches the disk with the folder.
void syncFolder(const QString &folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}
#endif

} // namespace

void replaceWholeFile(const QString &path, const QByteArray &bytes, const QString &source)
{
    const QFileInfo target(path);
    QTemporaryFile file(target.absoluteFilePath() + QStringLiteral(".saving-XXXXXX"));
    if (!file.open())
        throw fileError(file, source);
    if (file.write(bytes) != bytes.size() || !file.flush())
        throw fileError(file, source);
#ifdef Q_OS_UNIX
    if (::fsync(file.handle()) != 0)
        throw systemError(errno, QStringLiteral("Forcing %1 to the disk").arg(path), source);
#endif
    file.close();
    if (file.error() != QFileDevice::NoError)
        throw fileError(file, source);
    std::error_code failure;
    std::filesystem::rename(std::filesystem::path(file.fileName().toStdU16String()),
                            std::filesystem::path(target.absoluteFilePath().toStdU16String()),
                            failure);
    if (failure) {
        throw ProgramError(
            ProgramError::kPathFileAccessError,
            QStringLiteral("Replacing %1: %2").arg(path, QString::fromLocal8Bit(failure.message())),
            source);
    }
    file.setAutoRemove(false);
#ifdef Q_OS_UNIX
    syncFolder(target.absolutePath());
#endif
}
