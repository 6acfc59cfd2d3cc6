#include "Quorvix/QXBreakpointsViewModel.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

QXBreakpointsViewModel::QXBreakpointsViewModel(QObject *parent)
    : QXBreakpointsViewModel(QXBreakpointStore::shared(), parent)
{
}

QXBreakpointsViewModel::QXBreakpointsViewModel(QXBreakpointStore &store, QObject *parent)
    : QAbstractListModel(parent), m_store(store), m_items(store.sortedRules())
{
    connect(&m_store, &QXBreakpointStore::rulesChanged, this, &QXBreakpointsViewModel::refresh);
}

int QXBreakpointsViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_items.size());
}

QVariant QXBreakpointsViewModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    if (role != Qt::DisplayRole && role != DisplayTextRole)
        return {};
    return m_items[index.row()].displayText();
}

QHash<int, QByteArray> QXBreakpointsViewModel::roleNames() const
{
    return {{DisplayTextRole, "displayText"}};
}

void QXBreakpointsViewModel::deleteRules(const QList<int> &offsets)
{
    QXBreakpointStore::Rules rules = m_store.rules();
    for (const int offset : offsets) {
        if (offset >= 0 && offset < m_items.size())
            rules.remove(m_items[offset]);
    }
    m_store.setRules(rules);
}

void QXBreakpointsViewModel::copy(int row) const
{
    if (row >= 0 && row < m_items.size())
        QGuiApplication::clipboard()->setText(m_items[row].displayText());
}

/// Both lists have the same order, so unchanged rows never move.
void QXBreakpointsViewModel::refresh()
{
    const QXBreakpointStore::Rules rules = m_store.rules();
    for (int row = int(m_items.size()) - 1; row >= 0; --row) {
        if (rules.contains(m_items[row]))
            continue;
        beginRemoveRows({}, row, row);
        m_items.removeAt(row);
        endRemoveRows();
    }
    const QList<QXBreakpointKey> sorted = m_store.sortedRules();
    for (int row = 0; row < sorted.size(); ++row) {
        if (row < m_items.size() && m_items[row] == sorted[row])
            continue;
        beginInsertRows({}, row, row);
        m_items.insert(row, sorted[row]);
        endInsertRows();
    }
}
