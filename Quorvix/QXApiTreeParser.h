#pragma once

#include "Quorvix/QXApiTreeField.h"

#include "Platform/Result.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QStringView>

#include <memory>

/// Turns JSON texts (RFC 8259) into trees, and trees into source code. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXApiTreeParser
{
public:
    /// The nodes at the top of the tree: its root, which may be a scalar.
    using Fields = QList<std::shared_ptr<QXApiTreeField>>;

    /// Parses a text.
    ///
    /// An object's members are sorted by the code points of their names; of several with one name the last
    /// counts. Fails with the domain "LogTreeParser" and code -1 when the text has a lone surrogate, and with
    /// the error of JSONReader when it is not JSON or nested deeper than JSONReader::maximumDepth.
    static Quorvix::Result<Fields> parse(QStringView text);
    /// Parses the bytes of a text, which spares the detour over UTF-16. Bytes that are not UTF-8 are the
    /// "LogTreeParser" error.
    static Quorvix::Result<Fields> parse(QByteArrayView utf8);

    /// The source of Swift types that decode what the tree was made from; the outermost is @p rootName.
    ///
    /// Types and properties are named after the keys; a key cannot bring source of its own along. Fails with
    /// QXExportError::swiftModelNotGenerated when there are more types of one name than names can be made.
    static Quorvix::Result<QString> swiftModel(const QXApiTreeField &root, const QString &rootName);
};
