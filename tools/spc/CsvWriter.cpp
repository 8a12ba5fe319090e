#include "CsvWriter.h"

QString CsvWriter::field(const QString &text)
{
    const bool quoted =
        text.contains(u',') || text.contains(u'"') || text.contains(u'\n') || text.contains(u'\r');
    if (!quoted)
        return text;
    QString doubled = text;
    doubled.replace(u'"', QLatin1String("\"\""));
    return u'"' + doubled + u'"';
}

QString CsvWriter::row(const QStringList &fields)
{
    QString line;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            line += u',';
        line += field(fields[i]);
    }
    return line + QLatin1String("\r\n");
}
