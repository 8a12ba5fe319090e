#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Reads comma-separated values as CsvWriter writes them and spreadsheets save them:
// rows end in CR LF or LF (the last one may end without), a field in double quotes may
// hold commas, line breaks and doubled double quotes.
class CsvReader
{
public:
    // The rows of the text; false with the reason (and its line) on broken quoting.
    static bool parse(const QString &text, QList<QStringList> &rows, QString &errorText);
};
