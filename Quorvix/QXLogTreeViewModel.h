#pragma once

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXLogTreeRows.h"
#include "Quorvix/QXPresentingModel.h"

#include <QtQml/qqmlregistration.h>

#include <optional>
#include <vector>

/// One JSON body as a tree to be walked through: the rows are the nodes that no collapsed one hides, each
/// before its children. Main thread only; parsing blocks it.
///
/// A toggle touches the row itself and those that it shows or hides, and costs what they cost. Which nodes
/// are expanded is told by the nodes.
class QXLogTreeViewModel : public QXPresentingModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made from a body")
    /// Why there is no tree, else undefined.
    Q_PROPERTY(QVariant parseError READ parseErrorValue NOTIFY parseErrorChanged)

public:
    using Fields = QXApiTreeParser::Fields;

    /// Keys and summaries are cut to what a line can show.
    enum Role {
        KeyRole = Qt::UserRole,
        SummaryRole,
        KindRole,
        KindNameRole,
        DepthRole,
        IsExpandedRole,
        HasChildrenRole
    };

    explicit QXLogTreeViewModel(const QString &json, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const Fields &rootFields() const noexcept { return m_rootFields; }
    /// The node of a row, which must exist.
    [[nodiscard]] QXApiTreeField &field(int row) const { return *m_rows.at(size_t(row)); }
    /// The nodes of all rows; valid until another text is loaded.
    [[nodiscard]] std::vector<const QXApiTreeField *> visibleFields() const;

    [[nodiscard]] const std::optional<QString> &parseError() const noexcept { return m_parseError; }

    /// Shows the tree of another text. One that is not JSON sets the parse error and changes nothing else.
    void load(QStringView json);

    /// Expands or collapses a row; does nothing where there are no children. Here and below, a row that does
    /// not exist is passed over.
    Q_INVOKABLE void toggle(int row);
    /// Expands a row, or goes to its first child when it is expanded. The row that has the keyboard then.
    Q_INVOKABLE int expand(int row);
    /// Collapses a row, or goes to its parent when there is nothing to collapse. The row that has the
    /// keyboard then.
    Q_INVOKABLE int collapse(int row);

    /// What the clipboard gets of a row: "key: value", or the value alone where there is no key. Whole,
    /// however little of it is shown.
    [[nodiscard]] QString copyText(int row) const;
    /// Puts the text of a row on the clipboard, unless it is empty.
    Q_INVOKABLE void copy(int row) const;

    /// Whether a row is a string with something in it to decode. Linear in its length.
    [[nodiscard]] Q_INVOKABLE bool canDecodeBase64(int row) const;
    /// Publishes what the string of a row decodes to; nothing when it does not. Other kinds change nothing.
    Q_INVOKABLE void decodeBase64(int row);

    /// Publishes source code that decodes such a body, with its types named after a request path; shows the
    /// alert when there is no tree.
    Q_INVOKABLE void shareSwiftModel(const QString &requestPath);

Q_SIGNALS:
    void parseErrorChanged();

private:
    [[nodiscard]] bool hasRow(int row) const { return row >= 0 && size_t(row) < m_rows.size(); }
    [[nodiscard]] QVariant parseErrorValue() const;

    void showBelow(int row);
    void hideBelow(int row);

    Fields m_rootFields;
    QXLogTreeRows m_rows;
    std::optional<QString> m_parseError;
};
