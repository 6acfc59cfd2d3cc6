#pragma once

#include "Quorvix/QXApiTreeField.h"

#include "Platform/Result.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QStringView>

#include <memory>

class QXTaskProgress;

/// Turns JSON texts (RFC 8259) into trees, and trees into source code. Stateless; any thread.
///
/// A task that is cancelled through @p progress fails with NSCocoaErrorDomain / NSUserCancelledError.
class QUORVIX_INTERNAL_EXPORT QXApiTreeParser
{
public:
    /// The nodes at the top of the tree: its root, which may be a scalar.
    using Fields = QList<std::shared_ptr<QXApiTreeField>>;

    /// Parses a text.
    ///
    /// The members of an object are sorted by the code points of their names. If several members have the
    /// same name, the last one is used. Fails with the domain "LogTreeParser" and code -1 if the text has a
    /// lone surrogate. Fails with the error of JSONReader if the text is not JSON or is nested deeper than
    /// JSONReader::maximumDepth.
    static Quorvix::Result<Fields> parse(QStringView text, QXTaskProgress *progress = nullptr);
    /// Parses the bytes of a text without a conversion to UTF-16. Bytes that are not UTF-8 give the
    /// "LogTreeParser" error.
    static Quorvix::Result<Fields> parse(QByteArrayView utf8, QXTaskProgress *progress = nullptr);

    /// Returns the source of Swift types that decode the JSON text of this tree. The outermost type has the
    /// name @p rootName.
    ///
    /// Types and properties are named after the keys; a key cannot inject code into the source. Fails with
    /// QXExportError::swiftModelNotGenerated if too many types need the same name.
    static Quorvix::Result<QString> swiftModel(const QXApiTreeField &root, const QString &rootName,
                                               QXTaskProgress *progress = nullptr);
};
