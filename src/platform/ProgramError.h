#pragma once

#include <QString>

#include <exception>

// The failure that travels from the procedure where it arose up to the event procedure
// that reports it. Every procedure on the way adds "Object.Procedure" to the source, so
// the report shows the whole path a failure took.
class ProgramError : public std::exception
{
public:
    // Number of the failures that the program raises itself (0x80040000).
    static constexpr qint32 kProgramErrorNumber = qint32(0x80040000u);

    // Numbers of the run-time failures that the program meets on its way.
    static constexpr qint32 kOverflow = 6;
    static constexpr qint32 kOutOfMemory = 7;
    static constexpr qint32 kSubscriptOutOfRange = 9;
    static constexpr qint32 kDivisionByZero = 11;
    static constexpr qint32 kTypeMismatch = 13;
    static constexpr qint32 kFileNotFound = 53;
    static constexpr qint32 kDiskFull = 61;
    static constexpr qint32 kPermissionDenied = 70;
    static constexpr qint32 kPathFileAccessError = 75;
    static constexpr qint32 kPathNotFound = 76;

    ProgramError(qint32 number, QString description, QString source);

    // A failure raised by the program itself, numbered kProgramErrorNumber.
    static ProgramError raised(QString description, QString source);

    static ProgramError overflow(QString source);
    static ProgramError subscriptOutOfRange(QString source);
    static ProgramError divisionByZero(QString source);

    qint32 number() const { return m_number; }
    const QString &description() const { return m_description; }
    const QString &source() const { return m_source; }

    // Adds the procedure that passes this failure on to its caller.
    void addSource(const QString &procedure);

    const char *what() const noexcept override;

private:
    qint32 m_number;
    QString m_description;
    QString m_source;
    QByteArray m_what;
};
