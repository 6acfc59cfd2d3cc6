#pragma once

#include "Controls/QXFinder.h"
#include "Quorvix/QXLogTreeViewModel.h"

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>

#include <vector>

/// Finds a text in the keys and values of a tree, also below collapsed rows, which it expands. Main thread
/// only.
class QXLogTreeFinder : public QXFinder
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QXLogTreeViewModel *model READ model WRITE setModel NOTIFY modelChanged REQUIRED)
    /// The row where the user is; negative if there is none.
    Q_PROPERTY(int currentRow MEMBER m_currentRow NOTIFY currentRowChanged)

public:
    explicit QXLogTreeFinder(QObject *parent = nullptr) : QXFinder(parent) {}

    [[nodiscard]] QXLogTreeViewModel *model() const { return m_model; }
    void setModel(QXLogTreeViewModel *model);
    /// The list has the focus of all rows.
    bool focusMatch() override { return false; }

Q_SIGNALS:
    void modelChanged();
    void currentRowChanged();
    /// Requests that the list shows a row as its current one.
    void rowFound(int row);

protected:
    void begin() override;
    [[nodiscard]] bool isComplete() const override { return !m_next; }
    void searchFurther() override;
    [[nodiscard]] qsizetype count() const override { return m_ends.empty() ? 0 : m_ends.back(); }
    [[nodiscard]] qsizetype matchAtCursor() const override;
    [[nodiscard]] bool isSelected(qsizetype match) const override;
    void show(qsizetype match) override;

private:
    [[nodiscard]] QXApiTreeField &fieldOf(qsizetype match) const;
    [[nodiscard]] const QXApiTreeField *currentField() const;

    QPointer<QXLogTreeViewModel> m_model;
    int m_currentRow = -1;
    /// The nodes that match, as each step found them, and their number up to the end of each step.
    std::vector<std::vector<QXApiTreeField *>> m_found;
    std::vector<qsizetype> m_ends;
    /// The node where the next step begins; null at the end.
    QXApiTreeField *m_next = nullptr;
};
