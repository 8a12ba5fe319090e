#include "WholeFile.h"

#include "FileErrors.h"

#include <QFileInfo>
#include <QFile>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_WIN
#include <QDir>
#include <qt_windows.h>
#endif
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
    // A plain file beside the target rather than a temporary-file object: on Windows the
    // latter keeps a handle on its file after close, and the move below then fails.
    QFile file(target.absoluteFilePath() + QStringLiteral(".saving"));
    const auto discard = [&file] { file.close(); file.remove(); };
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw fileError(file, source);
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const ProgramError error = fileError(file, source);
        discard();
        throw error;
    }
#ifdef Q_OS_UNIX
    if (::fsync(file.handle()) != 0) {
        const int number = errno;
        discard();
        throw systemError(number, QStringLiteral("Forcing %1 to the disk").arg(path), source);
    }
#endif
    file.close();
    if (file.error() != QFileDevice::NoError) {
        const ProgramError error = fileError(file, source);
        file.remove();
        throw error;
    }
#ifdef Q_OS_WIN
    // Windows refuses to rename onto a file that exists; MoveFileEx replaces it in one
    // step and returns once the move has reached the disk.
    const QString from = QDir::toNativeSeparators(file.fileName());
    const QString to = QDir::toNativeSeparators(target.absoluteFilePath());
    if (!MoveFileExW(reinterpret_cast<const wchar_t *>(from.utf16()),
                     reinterpret_cast<const wchar_t *>(to.utf16()),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        const QString reason = qt_error_string(static_cast<int>(GetLastError()));
        file.remove();
        throw ProgramError(ProgramError::kPathFileAccessError,
                           QStringLiteral("Replacing %1: %2").arg(path, reason), source);
    }
#else
    std::error_code failure;
    std::filesystem::rename(std::filesystem::path(file.fileName().toStdU16String()),
                            std::filesystem::path(target.absoluteFilePath().toStdU16String()),
                            failure);
    if (failure) {
        file.remove();
        throw ProgramError(
            ProgramError::kPathFileAccessError,
            QStringLiteral("Replacing %1: %2").arg(path, QString::fromLocal8Bit(failure.message())),
            source);
    }
#endif
#ifdef Q_OS_UNIX
    syncFolder(target.absolutePath());
#endif
}
