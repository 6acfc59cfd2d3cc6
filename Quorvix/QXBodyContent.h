#pragma once

#include "Text/QXTextContent.h"

class QXTaskProgress;
class QXTaskSteps;

/// What the screens show of a body, and the whole text of it. Any thread.
///
/// The current stage of @p progress covers the work. A task that is cancelled gives something of no use.
namespace QXBodyContent {

/// The text of QXBodyText::text(). Bytes that are no text are shared, and so is a body that is shown
/// unchanged and is ASCII.
[[nodiscard]] QXTextContent of(const QByteArray &body, QXTaskProgress *progress = nullptr);

/// QXTextContent::text(), which a task can cancel while it makes the digits of bytes. @p steps has the unit
/// byte.
[[nodiscard]] QString text(const QXTextContent &content, QXTaskSteps steps);

} // namespace QXBodyContent
