#include "FileErrors.h"

#include <QDir>
#include <QFileDevice>
#include <QFileInfo>

ProgramError fileError(const QFileDevice &file, const QString &source)
{
    const QFileInfo info(file.fileName());
    qint32 number = ProgramError::kPathFileAccessError;
    switch (file.error()) {
    case QFileDevice::OpenError:
        if (!info.dir().exists())
            number = ProgramError::kPathNotFound;
        else if (info.exists() && !info.isWritable())
            number = ProgramError::kPermissionDenied;
        break;
    case QFileDevice::ResourceError:
    case QFileDevice::WriteError:
        number = ProgramError::kDiskFull;
        break;
    case QFileDevice::PermissionsError:
        number = ProgramError::kPermissionDenied;
        break;
    default:
        break;
    }
    QString description = file.errorString();
    if (description.isEmpty())
        description = QStringLiteral("Path/File access error");
    return ProgramError(number, description, source);
}
