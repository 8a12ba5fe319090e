#include "AlarmLinesView.h"

#include <QAbstractItemModel>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr int kPadding = 2;

} // namespace

AlarmLinesView::AlarmLinesView(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    verticalScrollBar()->setSingleStep(1);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(),
            qOverload<>(&QWidget::update));
}

void AlarmLinesView::setModel(QAbstractItemModel *model)
{
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    if (m_model) {
        connect(m_model, &QAbstractItemModel::rowsInserted, this, &AlarmLinesView::rowsInserted);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, &AlarmLinesView::rowsRemoved);
        connect(m_model, &QAbstractItemModel::modelReset, this, &AlarmLinesView::modelReset);
        connect(m_model, &QAbstractItemModel::dataChanged, viewport(),
                qOverload<>(&QWidget::update));
    }
    modelReset();
}

int AlarmLinesView::rowCount() const
{
    return m_model ? m_model->rowCount() : 0;
}

int AlarmLinesView::lineHeight() const
{
    return fontMetrics().height() + 2 * kPadding;
}

int AlarmLinesView::visibleRows() const
{
    return std::max(1, viewport()->height() / lineHeight());
}

int AlarmLinesView::firstVisibleRow() const
{
    return verticalScrollBar()->value();
}

void AlarmLinesView::updateScrollRange()
{
    QScrollBar *bar = verticalScrollBar();
    bar->setPageStep(visibleRows());
    bar->setRange(0, std::max(0, rowCount() - visibleRows()));
}

void AlarmLinesView::rowsInserted(const QModelIndex &parent, int first, int last)
{
    if (parent.isValid())
        return;
    const int added = last - first + 1;
    if (m_currentRow >= first)
        m_currentRow += added;
    updateScrollRange();
    // Someone reading further down keeps the same lines in sight.
    if (firstVisibleRow() > 0 && first <= firstVisibleRow())
        verticalScrollBar()->setValue(firstVisibleRow() + added);
    viewport()->update();
}

void AlarmLinesView::rowsRemoved(const QModelIndex &parent, int first, int last)
{
    if (parent.isValid())
        return;
    if (m_currentRow > last)
        m_currentRow -= last - first + 1;
    else if (m_currentRow >= first)
        m_currentRow = -1;
    updateScrollRange();
    viewport()->update();
}

void AlarmLinesView::modelReset()
{
    m_currentRow = -1;
    updateScrollRange();
    verticalScrollBar()->setValue(0);
    viewport()->update();
}

void AlarmLinesView::setCurrentRow(int row)
{
    m_currentRow = row >= 0 && row < rowCount() ? row : -1;
    if (m_currentRow >= 0)
        ensureVisible(m_currentRow);
    viewport()->update();
}

void AlarmLinesView::ensureVisible(int row)
{
    QScrollBar *bar = verticalScrollBar();
    if (row < bar->value())
        bar->setValue(row);
    else if (row >= bar->value() + visibleRows())
        bar->setValue(row - visibleRows() + 1);
}

void AlarmLinesView::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    if (!m_model)
        return;
    const int height = lineHeight();
    const int first = firstVisibleRow();
    const int last = std::min(rowCount() - 1, first + viewport()->height() / height + 1);
    const QPalette &colours = palette();
    QRect line(0, 0, viewport()->width(), height);
    for (int row = first; row <= last; ++row, line.translate(0, height)) {
        const bool current = row == m_currentRow;
        if (current)
            painter.fillRect(line, colours.color(hasFocus() ? QPalette::Active : QPalette::Inactive,
                                                 QPalette::Highlight));
        else if (row % 2 == 1)
            painter.fillRect(line, colours.color(QPalette::AlternateBase));
        painter.setPen(colours.color(current ? QPalette::HighlightedText : QPalette::Text));
        const QString text = m_model->index(row, 0).data().toString();
        painter.drawText(
            line.adjusted(2 * kPadding, 0, -2 * kPadding, 0),
            Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
            fontMetrics().elidedText(text, Qt::ElideRight, line.width() - 4 * kPadding));
    }
}

void AlarmLinesView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollRange();
}

void AlarmLinesView::mousePressEvent(QMouseEvent *event)
{
    const int row = firstVisibleRow() + int(event->position().y()) / lineHeight();
    setCurrentRow(row < rowCount() ? row : -1);
    QAbstractScrollArea::mousePressEvent(event);
}

void AlarmLinesView::keyPressEvent(QKeyEvent *event)
{
    const int rows = rowCount();
    if (rows == 0) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        if (m_currentRow >= 0)
            QGuiApplication::clipboard()->setText(
                m_model->index(m_currentRow, 0).data().toString());
        return;
    }
    const int current = std::max(m_currentRow, 0);
    int next = -1;
    switch (event->key()) {
    case Qt::Key_Up:
        next = m_currentRow < 0 ? 0 : current - 1;
        break;
    case Qt::Key_Down:
        next = m_currentRow < 0 ? 0 : current + 1;
        break;
    case Qt::Key_PageUp:
        next = current - visibleRows();
        break;
    case Qt::Key_PageDown:
        next = current + visibleRows();
        break;
    case Qt::Key_Home:
        next = 0;
        break;
    case Qt::Key_End:
        next = rows - 1;
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    setCurrentRow(std::clamp(next, 0, rows - 1));
}

void AlarmLinesView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        updateScrollRange();
    QAbstractScrollArea::changeEvent(event);
}

QSize AlarmLinesView::sizeHint() const
{
    const int frame = 2 * frameWidth();
    return QSize(20 * fontMetrics().averageCharWidth() + frame, 6 * lineHeight() + frame);
}

QSize AlarmLinesView::minimumSizeHint() const
{
    const int frame = 2 * frameWidth();
    return QSize(10 * fontMetrics().averageCharWidth() + frame, 2 * lineHeight() + frame);
}
