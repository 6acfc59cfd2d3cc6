#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <optional>

namespace Quorvix {

/// A copy of a JSON text in which \ufffd replaces every escape of a lone surrogate, as in "\ud83d". Servers
/// write such an escape when they cut a text within an emoji; a parser refuses it, because no UTF-8 stands
/// for it. Absent if the text has none.
///
/// Everything else stays as it is, and no byte changes its place. Takes linear time. Any thread.
[[nodiscard]] std::optional<QByteArray> withLoneSurrogatesReplaced(QByteArrayView json);

} // namespace Quorvix
