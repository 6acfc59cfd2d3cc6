#pragma once

#include "JSON/JSONWriter.h"

#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

class QXTaskSteps;

namespace Quorvix {
class JSONDocument;
} // namespace Quorvix

/// Appends long texts piece by piece, so that nothing as long is needed on the way. Each function returns
/// false once the task is cancelled; the text is incomplete then. Any thread.
namespace QXLongText {

/// Appends pretty-printed JSON. @p steps has the unit of JSONDocument::size().
[[nodiscard]] bool appendJson(QString &text, const Quorvix::JSONDocument &document,
                              Quorvix::JSONWriter::KeyOrder order, QXTaskSteps steps);
[[nodiscard]] bool appendJson(QByteArray &utf8, const Quorvix::JSONDocument &document,
                              Quorvix::JSONWriter::KeyOrder order, QXTaskSteps steps);

/// Appends bytes that are well-formed UTF-8, a byte order mark included. @p steps has the unit byte.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT bool appendUtf8(QString &text, QByteArrayView utf8, QXTaskSteps steps);

enum class Digits { Together, InPairs };

/// Appends two lower-case hexadecimal digits for each byte. Between pairs is a space. @p steps has the unit
/// byte.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT bool appendHex(QString &text, QByteArrayView bytes, Digits digits,
                                                     QXTaskSteps steps);

} // namespace QXLongText
