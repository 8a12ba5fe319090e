#pragma once

#include <QByteArrayView>
#include <QString>

struct CorvaneFUN26;
class RegionalFormat;
class qlxLanguage;

// The entries the communications test console appends to its sample box. Each entry
// ends with CR LF, as the engineer copies it into a report or a mail.
namespace ConsoleText {

// "Length: " and the byte count, CR LF, then every byte as two upper-case hexadecimal
// digits separated by one blank; trimmed, then ended by CR LF.
QString hexEntry(QByteArrayView bytes);

// A line of 32 "-", then one line per weld record field: four blanks, the translated
// caption and the value in its general text form.
QString recordEntry(const CorvaneFUN26 &record, const qlxLanguage &language,
                    const RegionalFormat &format);

} // namespace ConsoleText
