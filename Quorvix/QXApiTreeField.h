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

/// One value of a parsed JSON text, and its place in the tree.
///
/// Nodes belong to their tree, and a shared pointer to any of them keeps all of it. They are small, as there
/// may be a million: texts are made when asked for. Immutable but for isExpanded(), and so readable from any
/// thread; isExpanded() is the main thread's.
class QUORVIX_INTERNAL_EXPORT QXApiTreeField final
{
public:
    /// The members or elements of a node, side by side.
    using Children = std::span<QXApiTreeField>;
    /// What the node stands for. An integer that fits 64 bits is exact, one beyond them the nearest double;
    /// Children stand for a map or an array.
    using Value = std::variant<std::nullptr_t, bool, qint64, quint64, double, QString, Children>;

    /// What keeps the nodes of one tree.
    struct Owner : std::enable_shared_from_this<Owner>
    {
    };

    Q_DISABLE_COPY_MOVE(QXApiTreeField)

    /// The member's name, or "[3]" for an element; absent for the root.
    [[nodiscard]] std::optional<QString> key() const;
    /// The names on the way from the root: "users[0].id". The root has none, nor has an element of an array
    /// at the root, so that its members' paths begin with their own names. Linear in the depth.
    [[nodiscard]] std::optional<QString> keyPath() const;
    [[nodiscard]] Value value() const;
    [[nodiscard]] QXApiValueKind kind() const noexcept;
    /// 0 for the root.
    [[nodiscard]] int depth() const noexcept { return m_depth; }
    /// Members ordered by their names, elements by their indexes; none for a scalar.
    [[nodiscard]] Children children() const noexcept;
    /// Null for the root.
    [[nodiscard]] QXApiTreeField *parent() const noexcept { return m_parent; }

    [[nodiscard]] bool isExpanded() const noexcept { return m_isExpanded; }
    void setExpanded(bool expanded) noexcept { m_isExpanded = expanded; }

    /// A pointer that keeps the node, and with it the tree. Linear in the depth.
    [[nodiscard]] std::shared_ptr<QXApiTreeField> share();

    /// The value in few words: "{3 keys}", "[1 item]", a quoted string, a number, "null". Absent for an empty
    /// object or array.
    [[nodiscard]] std::optional<QString> summary() const;
    /// The line that tells a scalar, or an empty container, with its key: "id: 42". Absent for other nodes,
    /// and for those without a key.
    [[nodiscard]] std::optional<QString> rowText() const;

    /// The member's name as it is kept, UTF-8; empty for elements and the root.
    [[nodiscard]] QByteArrayView nameUtf8() const noexcept;
    /// The text of a string as it is kept, UTF-8; empty for other kinds.
    [[nodiscard]] QByteArrayView textUtf8() const noexcept;

private:
    friend class QXApiTree;

    enum class Form : quint8 { Object, Array, String, Int64, UInt64, Double, WideNumber, True, False, Null };

    // One member of each union will do.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    QXApiTreeField() noexcept : m_children(nullptr), m_name(nullptr) {}

    [[nodiscard]] bool isContainer() const noexcept
    {
        return m_form == Form::Object || m_form == Form::Array;
    }

    QXApiTreeField *m_parent = nullptr;
    union {
        QXApiTreeField *m_children;
        const char *m_text;
        qint64 m_int64;
        quint64 m_uint64;
        double m_double;
    };
    union {
        /// Of a member.
        const char *m_name;
        /// Of the root.
        Owner *m_owner;
    };
    /// How many children, or bytes of text.
    quint32 m_size = 0;
    quint32 m_nameSize = 0;
    quint16 m_depth = 0;
    Form m_form = Form::Null;
    bool m_isExpanded = false;
};
