#pragma once

#include <QString>
#include <QStringList>

// Rows of comma-separated values as spreadsheets read them: each row ends in CR LF; a
// field that holds a comma, a double quote or a line break is put in double quotes,
// with its own double quotes doubled.
class CsvWriter
{
public:
    static QString field(const QString &text);
    static QString row(const QStringList &fields);
};
