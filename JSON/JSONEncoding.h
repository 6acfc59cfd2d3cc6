#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <optional>

/// Reads the encodings of JSON texts beside UTF-8. Stateless; any thread.
namespace Quorvix::JSONEncoding {

/// Whether the bytes begin with the byte order mark of UTF-16 or of UTF-32.
[[nodiscard]] bool isMarked(QByteArrayView bytes) noexcept;

/// The text of marked bytes as UTF-8, without the mark. Absent if the bytes are not well-formed: a unit is
/// cut, a surrogate is alone, or a number is no character.
[[nodiscard]] std::optional<QByteArray> toUtf8(QByteArrayView marked);

} // namespace Quorvix::JSONEncoding
