#pragma once

#include "Supply.h"

#include <QFile>

// A power supply recorded straight into a capture file, as a line tap would record it.
// Every weld is flushed at once, so the file can be followed while it grows.
class FileSupply : public Supply
{
    Q_OBJECT

public:
    FileSupply(const QString &path, std::unique_ptr<WeldSource> source, int intervalMs,
               std::optional<qint64> count, QObject *parent = nullptr);

    bool open(QString *errorText) override;
    QString startLine() const override;

protected:
    bool canSend() override { return m_file.isOpen(); }
    void send(const QByteArray &bytes) override;
    void drain() override;
    void closeNow() override;

private:
    QFile m_file;
};
