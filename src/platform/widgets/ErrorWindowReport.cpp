#include "ErrorWindowReport.h"

#include "platform/qlxLanguage.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWidget>

namespace {

enum Column { When, Repeats, Location, Number, Description, Source, ColumnCount };

} // namespace

ErrorWindowReport::ErrorWindowReport(ErrorReport &log, QString windowTitle,
                                     const qlxLanguage &language)
    : m_log(log)
    , m_windowTitle(std::move(windowTitle))
    , m_language(language)
{}

ErrorWindowReport::~ErrorWindowReport()
{
    delete m_window;
}

void ErrorWindowReport::Show(const QString &location, qint32 number, const QString &description,
                             const QString &source)
{
    m_log.Show(location, number, description, source);
    if (!m_window)
        createWindow();

    const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
    QTreeWidgetItem *line = nullptr;
    for (int i = 0; i < m_list->topLevelItemCount() && !line; ++i) {
        QTreeWidgetItem *item = m_list->topLevelItem(i);
        if (item->text(Location) == location && item->text(Number) == QString::number(number) &&
            item->text(Description) == description)
            line = item;
    }
    if (line) {
        line->setText(Repeats, QString::number(line->text(Repeats).toInt() + 1));
    } else {
        line = new QTreeWidgetItem;
        line->setText(Repeats, QStringLiteral("1"));
        line->setText(Location, location);
        line->setText(Number, QString::number(number));
        line->setText(Description, description);
        m_list->insertTopLevelItem(0, line);
    }
    line->setText(When, now);
    line->setText(Source, source);

    m_window->show();
    m_window->raise();
}

QWidget *ErrorWindowReport::window() const
{
    return m_window;
}

int ErrorWindowReport::lineCount() const
{
    return m_list ? m_list->topLevelItemCount() : 0;
}

void ErrorWindowReport::createWindow()
{
    m_window = new QWidget(nullptr, Qt::Window);
    m_window->setObjectName(QStringLiteral("dlgErrors"));
    m_window->setWindowTitle(m_windowTitle);
    m_window->setAttribute(Qt::WA_ShowWithoutActivating);

    m_list = new QTreeWidget(m_window);
    m_list->setObjectName(QStringLiteral("lstErrors"));
    m_list->setColumnCount(ColumnCount);
    QStringList headers;
    for (QStringView token : {u"24|Time", u"1899|Count", u"7500|Location", u"7501|Number",
                              u"7502|Description", u"7503|Source"})
        headers.append(m_language.Translate(token));
    m_list->setHeaderLabels(headers);
    m_list->setRootIsDecorated(false);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);

    auto *buttons = new QDialogButtonBox(m_window);
    QPushButton *clear =
        buttons->addButton(m_language.Translate(u"7112|C&lear"), QDialogButtonBox::ResetRole);
    clear->setObjectName(QStringLiteral("bnClear"));
    QPushButton *close =
        buttons->addButton(m_language.Translate(u"7400|&Close"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("bnClose"));
    QObject::connect(clear, &QPushButton::clicked, m_list, &QTreeWidget::clear);
    QObject::connect(close, &QPushButton::clicked, m_window, &QWidget::hide);

    auto *layout = new QVBoxLayout(m_window);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    m_window->resize(760, 260);
}
