#pragma once

#include "Quorvix/QXApiValueKind.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <variant>

class QXApiTree;

/// One value of a parsed JSON text, and its position in the tree.
///
/// The tree owns its nodes, and a shared pointer to any node keeps the whole tree alive. Nodes are small
/// because there can be a million of them; their texts are created on request. Everything except
/// isExpanded() is immutable and can be read from any thread. isExpanded() is for the main thread only.
class QUORVIX_INTERNAL_EXPORT QXApiTreeField final
{
public:
    /// The members or elements of a node, contiguous in memory.
    using Children = std::span<QXApiTreeField>;
    /// The value of a node. An integer that fits into 64 bits is exact, a larger one becomes the nearest
    /// double. Children represent an object or an array.
    using Value = std::variant<std::nullptr_t, bool, qint64, quint64, double, QString, Children>;

    /// The owner of the nodes of one tree.
    struct Owner : std::enable_shared_from_this<Owner>
    {
        qsizetype nodeCount = 1;
    };

    Q_DISABLE_COPY_MOVE(QXApiTreeField)

    /// The member's name, or "[3]" for an element; absent for the root.
    [[nodiscard]] std::optional<QString> key() const;
    /// The path from the root: "users[0].id". The root has none. If the root is an array, its elements have
    /// none either, and the paths of their members begin with the member's name. Linear in the depth.
    [[nodiscard]] std::optional<QString> keyPath() const;
    [[nodiscard]] Value value() const;
    [[nodiscard]] QXApiValueKind kind() const noexcept;
    /// 0 for the root.
    [[nodiscard]] int depth() const noexcept { return m_depth; }
    /// The members ordered by name, or the elements ordered by index; empty for a scalar.
    [[nodiscard]] Children children() const noexcept;
    /// Null for the root.
    [[nodiscard]] QXApiTreeField *parent() const noexcept { return m_parent; }

    [[nodiscard]] bool isExpanded() const noexcept { return m_isExpanded; }
    void setExpanded(bool expanded) noexcept { m_isExpanded = expanded; }

    /// The number of nodes in the whole tree. Linear in the depth.
    [[nodiscard]] qsizetype treeSize() const noexcept { return owner().nodeCount; }

    /// A shared pointer to this node, which keeps the whole tree alive. Linear in the depth.
    [[nodiscard]] std::shared_ptr<QXApiTreeField> share();

    /// A short text for the value: "{3 keys}", "[1 item]", a quoted string, a number, "null". Absent for an
    /// empty object or array.
    [[nodiscard]] std::optional<QString> summary() const;
    /// One line with the key and the value: "id: 42". Only for a scalar or an empty container; absent for
    /// other nodes and for nodes without a key.
    [[nodiscard]] std::optional<QString> rowText() const;

    /// The member's name as stored, in UTF-8; empty for elements and the root.
    [[nodiscard]] QByteArrayView nameUtf8() const noexcept;
    /// The text of a string as stored, in UTF-8; empty for other kinds.
    [[nodiscard]] QByteArrayView textUtf8() const noexcept;

private:
    friend class QXApiTree;

    enum class Form : quint8 { Object, Array, String, Int64, UInt64, Double, WideNumber, True, False, Null };

    // The constructor initialises one member of each union; that is enough.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    QXApiTreeField() noexcept : m_children(nullptr), m_name(nullptr) {}

    [[nodiscard]] Owner &owner() const noexcept;
    [[nodiscard]] bool isContainer() const noexcept
    {
        return m_form == Form::Object || m_form == Form::Array;
    }

    QXApiTreeField *m_parent = nullptr;
    union {
        QXApiTreeField *m_children;
        /// For a string, a text of the tape, whose size is kept before it.
        const char *m_text;
        qint64 m_int64;
        quint64 m_uint64;
        double m_double;
    };
    union {
        /// The name, if the parent is an object: a text of the tape.
        const char *m_name;
        /// The owner, if this is the root.
        Owner *m_owner;
    };
    /// The number of children, or of characters of a wide number.
    quint32 m_size = 0;
    quint16 m_depth = 0;
    Form m_form = Form::Null;
    bool m_isExpanded = false;
};
