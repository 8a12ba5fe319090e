#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>

// A small tmpfs that a test mounts (as root) and fills, as a workstation's disk fills up.
namespace SmallDisk {

inline bool mount(const QString &folder, const QString &size)
{
    return QDir().mkpath(folder) &&
           QProcess::execute("mount", {"-t", "tmpfs", "-o", "size=" + size, "tmpfs", folder}) == 0;
}

inline void unmount(const QString &folder)
{
    QProcess::execute("umount", {folder});
}

// Writes the file until the disk is full.
inline bool fill(const QString &filler)
{
    QFile file(filler);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    while (file.write(QByteArray(4096, 'x')) == 4096 && file.flush()) {
    }
    return true;
}

} // namespace SmallDisk
