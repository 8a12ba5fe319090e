#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>

class Clock;

// The configurations file on disk: exactly the text of one XML element, with no
// declaration, no byte-order mark and no line end after it. It is read once at start
// and written once at the end; every write that changes it leaves a dated copy of the
// new content beside it, and none of those copies is ever deleted.
//
// Failures pass on to the caller with the main window's procedure names in the source.
class ConfigurationFile
{
public:
    // Told where the original went when a save kept it because it held content that the
    // save drops, and what that content is.
    using UnreadKeptHandler =
        std::function<void(const QString &copyPath, const QStringList &dropped)>;

    ConfigurationFile(QString path, const Clock &clock);

    void setUnreadKeptHandler(UnreadKeptHandler handler) { m_unreadKept = std::move(handler); }

    const QString &path() const { return m_path; }

    // The whole content of the file. A missing file is created empty and reads as the
    // empty text.
    QString ReadConfigurationFile() const;

    // True when text differs from the file's content in anything but letter case: a
    // change of case alone is deliberately not saved.
    bool IsDirty(const QString &text) const;

    // Writes text when IsDirty, then copies it to the dated copy of this moment. The file
    // is replaced as a whole (written, flushed and forced to the disk beside it, then
    // renamed over it), so a crash or a full disk during the save leaves the old content
    // or the new one, never a mixture; a failed save throws and leaves the old file.
    // Before the first save of a run that would drop content of the file (elements and
    // attributes the program does not read, or a file that is not XML at all), the
    // original is kept beside it under unreadCopyPath(), without any password written
    // into an address.
    bool WriteConfigurationFile(const QString &text);

    // The copy of an original whose content a save drops: ".unread-" and the local time
    // as YYMMDDHHNNSS appended to the whole file name.
    QString unreadCopyPath(const QDateTime &time) const;

    // The dated copy's name: "_" and the local time as YYMMDDHHNNSS appended to the whole
    // file name, extension included (App.cfg_261114220509). Two saves within one second
    // share the name; the later one replaces the earlier copy.
    QString datedCopyPath(const QDateTime &time) const;

    // The file's bytes as text: UTF-8 when they are valid UTF-8, otherwise plain 8-bit
    // text (files written by older installations carry the workstation's code page).
    static QString decode(const QByteArray &bytes);

private:
    void keepUnreadOriginal(const QString &text);

    QString m_path;
    const Clock &m_clock;
    UnreadKeptHandler m_unreadKept;
    bool m_unreadChecked = false;
};
