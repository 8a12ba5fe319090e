#pragma once

#include <QByteArray>
#include <QString>

// Ten subgroups of five energies around 500 J with a spread of about 10 J, of part
// "Housing" and process "Seal weld" on 2026-11-01, as `corvane-spc import -` reads them:
// a baseline to freeze control limits on, far from a welder whose energy moved to 800 J.
inline QByteArray spcBaselineReport()
{
    QByteArray csv = "subgroup,date_time,part_group,part,process_group,process,source_tag,"
                     "value_count,test_item,kind,sample_number,value,text\r\n";
    const int offsets[5] = {-12, -5, 0, 6, 11};
    for (int s = 0; s < 10; ++s)
        for (int i = 0; i < 5; ++i)
            csv += QStringLiteral("%1,2026-11-01T%2:00:00,,Housing,,Seal weld,Corvane,5,Energy,1,"
                                  "%3,%4,\r\n")
                       .arg(s + 1)
                       .arg(s + 8, 2, 10, QLatin1Char('0'))
                       .arg(i + 1)
                       .arg(500 + offsets[(i + s) % 5] + (s % 3))
                       .toUtf8();
    return csv;
}
