#pragma once

#include <QtCore/QByteArray>

/// Bodies that people can read, of hosts that ask for coded ones and decode them themselves.
namespace QXReadableBody {

/// Undoes the content codings that the value of the header @p contentEncoding names. Returns @p body itself
/// if it knows no decoder for one of them, if the body breaks their rules, and if the result is so large that
/// the host would wait noticeably: more than 4 MB, or more than 20 ms. Any thread.
[[nodiscard]] QByteArray decoded(const QByteArray &body, const QByteArray &contentEncoding);

} // namespace QXReadableBody
