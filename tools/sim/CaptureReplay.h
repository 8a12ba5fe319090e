#pragma once

#include "WeldSource.h"

#include <QList>

// A raw capture of a welder link played back frame by frame: each step carries one frame
// together with whatever followed it up to the next frame (its trailing byte, noise,
// broken frames), the first step also what came before the first frame. The bytes go
// out exactly as captured, only cut at frame starts.
class CaptureReplay : public WeldSource
{
public:
    explicit CaptureReplay(const QByteArray &capture);

    std::optional<QByteArray> next() override;

    // The capture cut into its steps; a capture without any frame is one step.
    static QList<QByteArray> steps(const QByteArray &capture);
    // The length of the complete, well-ended frame that starts at pos, or 0 for none.
    static qsizetype frameLengthAt(QByteArrayView bytes, qsizetype pos);

private:
    QList<QByteArray> m_steps;
    qsizetype m_next = 0;
};

// A raw capture played back as a plain byte stream at a steady rate, regardless of where
// its frames begin and end: a slow line delivers frames in pieces.
class PacedCapture : public WeldSource
{
public:
    static constexpr int kStepMs = 10;

    PacedCapture(const QByteArray &capture, qint64 bytesPerSecond);

    std::optional<QByteArray> next() override;
    bool stepsAreWelds() const override { return false; }

private:
    QByteArray m_capture;
    double m_bytesPerStep;
    double m_due = 0; // bytes owed, fractions carried from step to step
    qsizetype m_sent = 0;
};
