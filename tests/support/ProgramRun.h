#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

// What the suites that run the programs as processes share: files in and out, the
// simulated power supply on a free loopback port, and one run of a command-line tool.
namespace ProgramRun {

QByteArray readFile(const QString &path);
bool writeFile(const QString &path, const QByteArray &content);

// The CR LF lines of a data log; none when there is no file.
QStringList dataLogLines(const QString &path);

// Starts the simulator with --tcp 0 and the given options; the port it announced, 0 when
// it announced none.
quint16 startSimulator(QProcess &sim, const QString &program, const QStringList &options);

// Runs the tool to its end with the input on its standard input; false, with its
// complaint on the test log, unless it ends normally with status 0.
bool runTool(const QString &program, const QStringList &arguments, QByteArray *output = nullptr,
             const QByteArray &input = {});

// Reads comma-separated values the way a spreadsheet does: quoted fields may hold
// commas, line breaks and doubled quotes, and every row ends in CR LF. Returns false on
// text that breaks the rules.
bool parseCsv(const QString &text, QList<QStringList> &rows);

} // namespace ProgramRun
