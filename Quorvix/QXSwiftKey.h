#pragma once

#include "Quorvix/QXSwiftText.h"

#include <QtCore/QByteArrayView>

/// Writes the names that QXSwiftName makes from one key. Most keys are plain ASCII and need no conversion to
/// UTF-16. For one thread.
class QXSwiftKey final
{
public:
    /// The key in UTF-8, which must outlive this object.
    explicit QXSwiftKey(QByteArrayView key) noexcept;

    /// See QXSwiftName::typeName().
    void appendTypeName(QXSwiftText &text) const;
    /// See QXSwiftName::propertyName(). Returns whether the name is another text than the key.
    [[nodiscard]] bool appendPropertyName(QXSwiftText &text) const;
    /// See QXSwiftName::stringLiteral().
    void appendLiteral(QXSwiftText &text) const;

private:
    QByteArrayView m_key;
    /// Whether the key has only characters of ASCII that can be seen and need no escape.
    bool m_isPlain;
};
