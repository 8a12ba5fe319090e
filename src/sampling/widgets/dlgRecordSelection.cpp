#include "dlgRecordSelection.h"

#include "SamplingCaptions.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>

#include <algorithm>

using namespace SamplingCaptions;
using qlaDatabase6::Record;
using qlaDatabase6::RecordKind;

namespace {

enum Column { kNameColumnIndex, kGroupColumnIndex };

} // namespace

dlgRecordSelection::dlgRecordSelection(RecordKind kind, qlaDatabase6::Database &database,
                                       const qlxLanguage &language,
                                       const SamplingDialogServices &services, QWidget *parent)
    : QDialog(parent)
    , m_kind(kind)
    , m_database(database)
    , m_language(language)
    , m_services(services)
{
    const bool part = kind == RecordKind::Part;
    setObjectName(part ? QStringLiteral("dlgSelectPart") : QStringLiteral("dlgSelectProcess"));
    setModal(true);
    setWindowTitle(translate(part ? kSelectPart : kSelectProcess));

    m_records = new QStandardItemModel(0, 2, this);
    m_records->setHorizontalHeaderLabels({translate(kNameColumn), translate(kGroupColumn)});
    m_shown = new QSortFilterProxyModel(this);
    m_shown->setSourceModel(m_records);
    m_shown->setFilterKeyColumn(kNameColumnIndex);
    m_shown->setFilterCaseSensitivity(Qt::CaseInsensitive);

    m_lblName = new QLabel(translate(kFind), this);
    m_lblName->setObjectName(QStringLiteral("lblName"));
    m_txtName = new QLineEdit(this);
    m_txtName->setObjectName(QStringLiteral("txtName"));
    m_txtName->setPlaceholderText(translate(kFindHint));
    m_txtName->setClearButtonEnabled(true);
    m_txtName->installEventFilter(this);
    m_lblName->setBuddy(m_txtName);

    m_lstRecords = new QTreeView(this);
    m_lstRecords->setObjectName(QStringLiteral("lstRecords"));
    m_lstRecords->setModel(m_shown);
    m_lstRecords->setRootIsDecorated(false);
    m_lstRecords->setUniformRowHeights(true);
    m_lstRecords->setAllColumnsShowFocus(true);
    m_lstRecords->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_lstRecords->setSelectionMode(QAbstractItemView::SingleSelection);
    m_lstRecords->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_lstRecords->header()->setStretchLastSection(true);
    m_lstRecords->header()->setSectionsMovable(false);
    const QFontMetrics metrics(font());
    m_lstRecords->setMinimumSize(metrics.horizontalAdvance(QString(44, u'x')),
                                 metrics.height() * 14);
    m_lstRecords->setColumnWidth(kNameColumnIndex, metrics.horizontalAdvance(QString(26, u'x')));

    m_lblCount = new QLabel(this);
    m_lblCount->setObjectName(QStringLiteral("lblCount"));
    m_bnNew = new QPushButton(translate(part ? kAddPart : kAddProcess), this);
    m_bnNew->setObjectName(QStringLiteral("bnNew"));
    m_bnNew->setAutoDefault(false);

    m_OKButton = new QPushButton(translate(kOK), this);
    m_OKButton->setObjectName(QStringLiteral("OKButton"));
    m_OKButton->setDefault(true);
    m_CancelButton = new QPushButton(translate(kCancel), this);
    m_CancelButton->setObjectName(QStringLiteral("CancelButton"));
    m_CancelButton->setAutoDefault(false);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_OKButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_CancelButton, QDialogButtonBox::RejectRole);

    auto *layout = new QGridLayout(this);
    layout->addWidget(m_lblName, 0, 0);
    layout->addWidget(m_txtName, 0, 1);
    layout->addWidget(m_lstRecords, 1, 0, 1, 2);
    auto *below = new QHBoxLayout;
    below->addWidget(m_lblCount, 1);
    below->addWidget(m_bnNew);
    layout->addLayout(below, 2, 0, 1, 2);
    layout->addWidget(buttons, 3, 0, 1, 2);
    layout->setColumnStretch(1, 1);

    // textEdited, not textChanged: the name of a row the user picks is shown in the
    // field without narrowing the list down to that row.
    connect(m_txtName, &QLineEdit::textEdited, this, &dlgRecordSelection::txtName_Change);
    connect(m_lstRecords, &QTreeView::clicked, this, &dlgRecordSelection::lstRecords_Click);
    connect(m_lstRecords, &QTreeView::doubleClicked, this,
            &dlgRecordSelection::lstRecords_DblClick);
    connect(m_bnNew, &QPushButton::clicked, this, &dlgRecordSelection::bnNew_Click);
    connect(m_OKButton, &QPushButton::clicked, this, &dlgRecordSelection::OKButton_Click);
    connect(m_CancelButton, &QPushButton::clicked, this, &dlgRecordSelection::CancelButton_Click);
}

void dlgRecordSelection::setPreselectedName(const QString &name)
{
    m_preselectedName = name;
}

void dlgRecordSelection::showEvent(QShowEvent *event)
{
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void dlgRecordSelection::Form_Load()
{
    m_loaded = true;
    reportFailures(m_services.errors, "dlgRecordSelection.Form_Load", [this] {
        LoadRecords();
        const QModelIndex current = findExact(m_preselectedName);
        if (current.isValid())
            choose(current);
        else
            m_txtName->setText(m_preselectedName);
        m_txtName->selectAll();
        m_txtName->setFocus();
        updateState();
    });
}

void dlgRecordSelection::LoadRecords()
{
    passOn("dlgRecordSelection.LoadRecords", [this] {
        const QList<Record> records = m_database.listRecords(m_kind);
        m_records->removeRows(0, m_records->rowCount());
        for (const Record &record : records) {
            auto *name = new QStandardItem(record.name());
            auto *group = new QStandardItem(record.groupName());
            m_records->appendRow({name, group});
        }
        m_shown->setFilterFixedString(QString());
    });
}

QModelIndex dlgRecordSelection::findExact(const QString &name) const
{
    const QString wanted = name.trimmed();
    if (wanted.isEmpty())
        return {};
    for (int row = 0; row < m_records->rowCount(); ++row) {
        const QModelIndex index = m_records->index(row, kNameColumnIndex);
        if (index.data().toString().compare(wanted, Qt::CaseInsensitive) == 0)
            return index;
    }
    return {};
}

void dlgRecordSelection::choose(const QModelIndex &sourceIndex)
{
    const QModelIndex shown = m_shown->mapFromSource(sourceIndex);
    if (!shown.isValid())
        return;
    m_lstRecords->setCurrentIndex(shown);
    m_lstRecords->scrollTo(shown, QAbstractItemView::PositionAtCenter);
    m_txtName->setText(sourceIndex.data().toString());
}

QString dlgRecordSelection::selectedName() const
{
    const QModelIndexList selected = m_lstRecords->selectionModel()->selectedRows();
    return selected.isEmpty() ? QString() : selected.first().data().toString();
}

void dlgRecordSelection::txtName_Change()
{
    reportFailures(m_services.errors, "dlgRecordSelection.txtName_Change", [this] {
        m_shown->setFilterFixedString(m_txtName->text().trimmed());
        m_lstRecords->clearSelection();
        m_lstRecords->setCurrentIndex(QModelIndex());
        const QModelIndex exact = findExact(m_txtName->text());
        if (exact.isValid()) {
            const QModelIndex shown = m_shown->mapFromSource(exact);
            m_lstRecords->setCurrentIndex(shown);
            m_lstRecords->scrollTo(shown);
        }
        updateState();
    });
}

void dlgRecordSelection::lstRecords_Click()
{
    reportFailures(m_services.errors, "dlgRecordSelection.lstRecords_Click", [this] {
        const QString name = selectedName();
        if (!name.isEmpty())
            m_txtName->setText(name);
        updateState();
    });
}

void dlgRecordSelection::lstRecords_DblClick()
{
    lstRecords_Click();
    OKButton_Click();
}

bool dlgRecordSelection::eventFilter(QObject *watched, QEvent *event)
{
    // Up and Down in the name field walk the list, so that the keyboard alone can go
    // from a few typed letters to the part wanted.
    if (watched == m_txtName && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if ((key == Qt::Key_Down || key == Qt::Key_Up) && m_shown->rowCount() > 0) {
            const QModelIndex current = m_lstRecords->currentIndex();
            int row = current.isValid() ? current.row() + (key == Qt::Key_Down ? 1 : -1) : 0;
            row = std::clamp(row, 0, m_shown->rowCount() - 1);
            m_lstRecords->setCurrentIndex(m_shown->index(row, kNameColumnIndex));
            lstRecords_Click();
            m_txtName->selectAll();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void dlgRecordSelection::updateState()
{
    const QString typed = m_txtName->text().trimmed();
    m_bnNew->setEnabled(!typed.isEmpty() && !findExact(typed).isValid());
    m_OKButton->setEnabled(!typed.isEmpty());
    m_lblCount->setText(translate(kRecordCount).arg(shownCount()).arg(recordCount()));
}

bool dlgRecordSelection::createTypedRecord()
{
    return passOn("dlgRecordSelection.createTypedRecord", [this] {
        const QString name = m_txtName->text().trimmed();
        const QString question =
            translate(m_kind == RecordKind::Part ? kCreatePart : kCreateProcess).arg(name);
        if (!m_services.messages.question(windowTitle(), question))
            return false;
        const Record created = m_database.createRecord(m_kind, name);
        LoadRecords();
        choose(findExact(created.name()));
        updateState();
        return true;
    });
}

void dlgRecordSelection::bnNew_Click()
{
    reportFailures(m_services.errors, "dlgRecordSelection.bnNew_Click", [this] {
        const QString typed = m_txtName->text().trimmed();
        if (typed.isEmpty() || findExact(typed).isValid()) {
            m_services.messages.beep();
            return;
        }
        createTypedRecord();
    });
}

void dlgRecordSelection::OKButton_Click()
{
    reportFailures(m_services.errors, "dlgRecordSelection.OKButton_Click", [this] {
        const QString typed = m_txtName->text().trimmed();
        if (typed.isEmpty()) {
            m_services.messages.beep();
            return;
        }
        QModelIndex exact = findExact(typed);
        if (!exact.isValid()) {
            if (!createTypedRecord())
                return;
            exact = findExact(typed);
        }
        // The name as the database spells it, whatever case was typed.
        if (exact.isValid())
            finish(exact.data().toString());
    });
}

void dlgRecordSelection::finish(const QString &name)
{
    m_chosenName = name;
    accept();
}

void dlgRecordSelection::CancelButton_Click()
{
    reportFailures(m_services.errors, "dlgRecordSelection.CancelButton_Click",
                   [this] { reject(); });
}

int dlgRecordSelection::shownCount() const
{
    return m_shown->rowCount();
}

int dlgRecordSelection::recordCount() const
{
    return m_records->rowCount();
}

QString dlgRecordSelection::translate(QStringView token) const
{
    return m_language.Translate(token);
}
