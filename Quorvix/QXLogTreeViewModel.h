#pragma once

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXLogTreeRows.h"
#include "Quorvix/QXPresentingModel.h"
#include "Quorvix/QXUnfoldedValues.h"

#include "Text/QXTextContent.h"

#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>
#include <vector>

/// One JSON body as a tree. The rows are the visible nodes, that is, those without a collapsed ancestor.
/// Each row comes before the rows of its children. Main thread only. A large text is parsed by a task, and
/// the rows follow later.
///
/// toggle() changes only the row itself and the rows that it shows or hides, and its cost depends on their
/// number. The nodes store whether they are expanded.
class QXLogTreeViewModel : public QXPresentingModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made from a body")
    /// The reason why there is no tree; undefined if there is one.
    Q_PROPERTY(QVariant parseError READ parseErrorValue NOTIFY parseErrorChanged)

public:
    using Fields = QXApiTreeParser::Fields;

    /// Keys and summaries are shortened to the length of a line.
    enum Role {
        KeyRole = Qt::UserRole,
        SummaryRole,
        KindRole,
        KindNameRole,
        DepthRole,
        IsExpandedRole,
        HasChildrenRole,
        /// The whole value of a row that is unfolded; empty for other rows, and if it has a document.
        WholeValueRole,
        /// The whole value of a row that is unfolded, as a document if it is too long for a text item; or
        /// null.
        DocumentRole
    };

    explicit QXLogTreeViewModel(const QXTextContent &json, QObject *parent = nullptr);
    explicit QXLogTreeViewModel(const QString &json, QObject *parent = nullptr);
    ~QXLogTreeViewModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const Fields &rootFields() const noexcept { return m_rootFields; }
    /// The node of a row, which must exist.
    [[nodiscard]] QXApiTreeField &field(int row) const { return *m_rows.at(size_t(row)); }
    /// The nodes of all rows; valid until another text is loaded.
    [[nodiscard]] std::vector<const QXApiTreeField *> visibleFields() const;

    /// The length of the text, in UTF-16 units.
    [[nodiscard]] qsizetype textSize() const noexcept { return m_textSize; }

    [[nodiscard]] const std::optional<QString> &parseError() const noexcept { return m_parseError; }

    /// Shows the tree of another text, of a large one later. If the text is not JSON, sets the parse error
    /// and changes nothing else.
    void load(const QXTextContent &json);
    void load(const QString &json) { load(QXTextContent(json)); }
    void load(QStringView json) { load(json.toString()); }

    /// Expands or collapses a row; does nothing if it has no children. This function and the functions below
    /// ignore a row that does not exist.
    Q_INVOKABLE void toggle(int row);
    /// Expands a row, or selects its first child if it is already expanded. Returns the row that gets
    /// keyboard focus.
    Q_INVOKABLE int expand(int row);
    /// Collapses a row, or selects its parent if there is nothing to collapse. Returns the row that gets
    /// keyboard focus.
    Q_INVOKABLE int collapse(int row);

    /// Unfolds a row without children, so that its whole value can be read, or folds it. A large value
    /// follows later. Has no effect on rows with children.
    Q_INVOKABLE void toggleValue(int row);
    /// Expands all nodes above a node of this tree, and returns its row.
    int reveal(const QXApiTreeField &revealed);

    /// The text of a row for the clipboard: "key: value", or only the value if there is no key. It is never
    /// shortened.
    [[nodiscard]] QString copyText(int row) const;
    /// Copies the text of a row to the clipboard, a large one later, unless the text is empty.
    Q_INVOKABLE void copy(int row) const;

    /// Whether a row is a string that contains encoded text. For a large string this is false at first, and
    /// decodableChanged() is emitted if it changes.
    [[nodiscard]] Q_INVOKABLE bool canDecodeBase64(int row);
    /// Sets decodedPayload to the decoded string of a row; absent if there is nothing to decode. Does
    /// nothing for rows of another kind.
    Q_INVOKABLE void decodeBase64(int row);

    /// Sets shareItem to Swift source code that decodes this body, with types named after the request path.
    /// Shows the alert if there is no tree or the source cannot be generated.
    Q_INVOKABLE void shareSwiftModel(const QString &requestPath);

Q_SIGNALS:
    void parseErrorChanged();
    /// Emitted when canDecodeBase64() changes for a row.
    void decodableChanged();

private:
    [[nodiscard]] bool hasRow(int row) const { return row >= 0 && size_t(row) < m_rows.size(); }
    [[nodiscard]] QVariant parseErrorValue() const;

    void show(Fields fields);
    void insertDescendants(int row);
    void removeDescendants(int row);
    void checkDecodable(QXApiTreeField &checked);

    Fields m_rootFields;
    QXLogTreeRows m_rows;
    std::optional<QString> m_parseError;
    qsizetype m_textSize = 0;
    QXUnfoldedValues m_unfolded{this};
    /// The large string that was checked last.
    const QXApiTreeField *m_checked = nullptr;
    bool m_isCheckedDecodable = false;
    /// Shared with the work that checks it, and cancelled when the answer is of no use any more.
    std::shared_ptr<QXTaskProgress> m_check = std::make_shared<QXTaskProgress>();
};
