#pragma once

#include "Quorvix/QXBreakpointStore.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

/// The breakpoint rules as a list model, in the store's sorted order. Updates when the store changes. Main
/// thread only.
class QXBreakpointsViewModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT

public:
    enum Role { DisplayTextRole = Qt::UserRole };

    /// Uses the shared store.
    explicit QXBreakpointsViewModel(QObject *parent = nullptr);
    /// Uses @p store, which must outlive the model.
    explicit QXBreakpointsViewModel(QXBreakpointStore &store, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QList<QXBreakpointKey> &items() const noexcept { return m_items; }

    /// Removes the rules of these rows from the store. Rows that do not exist are ignored.
    Q_INVOKABLE void deleteRules(const QList<int> &offsets);
    /// Copies the text of a row to the clipboard. Ignores a row that does not exist.
    Q_INVOKABLE void copy(int row) const;

private:
    void refresh();

    QXBreakpointStore &m_store;
    QList<QXBreakpointKey> m_items;
};
