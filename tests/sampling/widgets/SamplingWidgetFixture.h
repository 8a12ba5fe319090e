#pragma once

#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"
#include "TestSuites.h"

#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/SqlDatabase.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/SamplingProperties.h"
#include "sampling/widgets/SamplingDialogServices.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

// The child of a window by its object name, failing the test when it is missing.
template <typename Widget> Widget *control(QWidget *window, const char *name)
{
    auto *widget = window->findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("no control %s in %s", name, qPrintable(window->objectName()));
    return widget;
}

inline void click(QWidget *window, const char *button)
{
    QTest::mouseClick(control<QWidget>(window, button), Qt::LeftButton);
}

// Clicks a check box or option button on its box, at the left end, where a wide one still
// reacts.
inline void tick(QWidget *window, const char *box)
{
    QWidget *widget = control<QWidget>(window, box);
    QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(6, widget->height() / 2));
}

// Replaces the text of a field as a user does: select all, then type.
inline void retype(QWidget *window, const char *field, const QString &text)
{
    QWidget *widget = control<QWidget>(window, field);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    QTest::keyClicks(widget, text);
}

// Answers the next modal dialog with the given object name once it is on the screen;
// a dialog that the answer leaves open is cancelled, so a test never hangs on it. The
// watch ends with the object, so one that expects no dialog cannot answer the next
// case's.
class ModalAnswer
{
public:
    ModalAnswer(QString objectName, std::function<void(QDialog *)> answer)
        : m_objectName(std::move(objectName))
        , m_answer(std::move(answer))
    {
        m_poll.setInterval(10);
        QObject::connect(&m_poll, &QTimer::timeout, [this] { poll(); });
        m_poll.start();
    }
    ModalAnswer(const ModalAnswer &) = delete;
    ModalAnswer &operator=(const ModalAnswer &) = delete;

    bool seen() const { return m_seen; }

private:
    void poll()
    {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible() || dialog->objectName() != m_objectName)
            return;
        m_poll.stop();
        m_seen = true;
        m_answer(dialog);
        if (dialog->isVisible())
            dialog->reject();
    }

    QString m_objectName;
    std::function<void(QDialog *)> m_answer;
    QTimer m_poll;
    bool m_seen = false;
};

// The services of the sampling dialogs in a test: reports and messages that are kept for
// inspection, a database library whose presence the test decides, and a data folder of
// its own with an SPC database file in it, filled through the database's own operations.
struct SamplingWidgetFixture
{
    SamplingWidgetFixture()
        : files(folder.path())
        , support(
              errors, files, [this] { return libraryInstalled; }, libraryFlag,
              [](const DatabaseSupport::ViewerCommand &) { return true; })
    {}

    SamplingDialogServices services()
    {
        return SamplingDialogServices{
            .errors = errors, .messages = messages, .chooseDatabaseFile = {}};
    }

    // A monitor's sampling object; its database starts on the data folder's spc.db.
    std::unique_ptr<SamplingProperties> makeSampling(PartSelector *selector = nullptr)
    {
        return std::make_unique<SamplingProperties>(SamplingServices{
            .errors = errors,
            .clock = clock,
            .support = support,
            .messageBoxes = messages,
            .dataFolder = folder.path(),
            .makeDatabase = {},
            .partSelector = selector,
        });
    }

    QString databasePath() const { return QDir(folder.path()).filePath(QStringLiteral("spc.db")); }

    // Parts BRK-100 and BRK-200 (group Brackets) and HSG-7 (no group); processes
    // Staking and Welding (group Assembly).
    static bool fillDatabase(const QString &dsn)
    {
        using qlaDatabase6::RecordKind;
        qlaDatabase6::SqlDatabase database;
        database.setDataSourceName(dsn);
        if (!database.openConnection())
            return false;
        const std::tuple<RecordKind, const char *, const char *> records[] = {
            {RecordKind::Group, "Brackets", ""},
            {RecordKind::Group, "Assembly", ""},
            {RecordKind::Part, "BRK-200", "Brackets"},
            {RecordKind::Part, "BRK-100", "Brackets"},
            {RecordKind::Part, "HSG-7", ""},
            {RecordKind::Process, "Welding", "Assembly"},
            {RecordKind::Process, "Staking", "Assembly"}};
        for (const auto &[kind, name, group] : records)
            database.createRecord(kind, QLatin1String(name), QLatin1String(group));
        database.closeConnection();
        return true;
    }

    // The names of a kind as a fresh connection sees them.
    static QStringList names(const QString &dsn, qlaDatabase6::RecordKind kind)
    {
        qlaDatabase6::SqlDatabase database;
        database.setDataSourceName(dsn);
        QStringList result;
        if (!database.openConnection())
            return {QStringLiteral("<no connection>")};
        for (const qlaDatabase6::Record &record : database.listRecords(kind))
            result.append(record.name());
        return result;
    }

    QTemporaryDir folder;
    RecordingErrorReport errors;
    RecordingMessageBoxes messages;
    ManualClock clock;
    qlxLanguage language;
    ProgramFiles files;
    bool libraryInstalled = true;
    DatabaseSupport::LibraryFlag libraryFlag;
    DatabaseSupport support;
};
