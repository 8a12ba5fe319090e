#pragma once

#include "platform/MeasurementSystem.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneParser.h"
#include "protocol/ReceiveBuffer.h"
#include "protocol/RecordFormatter.h"

#include <QStringList>

#include <functional>

class Clock;

// Turns a raw capture of a welder link into what a data log would hold for it. Bytes
// are fed as a receiver gets them; after every piece the buffer is drained as the
// monitor drains it. A frame with a bad end marker is reported and the stream
// resynchronised behind its DLE STX.
class CaptureDecoder
{
public:
    using LineSink = std::function<void(const QString &line)>;

    CaptureDecoder(MeasurementSystem system, const Clock &clock, LineSink records,
                   LineSink problems);

    QString headerLine() const;

    void feed(QByteArrayView piece);
    // End of input: a complete last frame is decoded (no further byte will come); an
    // incomplete frame left over is reported.
    void finish();

    int recordCount() const { return m_recordCount; }
    int problemCount() const { return m_problemCount; }

private:
    // Takes records from the buffer until the parser yields none.
    void drain();
    void report(const QString &problem);

    qlxLanguage m_language;
    RegionalFormat m_format;
    RecordFormatter m_recordText{m_format};
    CorvaneParser m_parser;
    ReceiveBuffer m_buffer;
    CorvaneFUN26 m_record;
    LineSink m_records;
    LineSink m_problems;
    qint64 m_offset = 0; // stream offset of the buffer's first byte
    int m_recordCount = 0;
    int m_problemCount = 0;
};
