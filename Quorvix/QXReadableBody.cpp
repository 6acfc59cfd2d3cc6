#include "Quorvix/QXReadableBody.h"

#include "Platform/ContentDecoder.h"

#include <QtCore/QBuffer>
#include <QtCore/QDeadlineTimer>

#include <utility>

using namespace Quorvix;

namespace {

constexpr qint64 largestResult = 4'000'000;
/// Of the time of the host's thread.
constexpr int longestTime = 20;

} // namespace

QByteArray QXReadableBody::decoded(const QByteArray &body, const QByteArray &contentEncoding)
{
    if (body.size() > largestResult || !ContentDecoder::canDecode(contentEncoding))
        return body;
    QBuffer coded;
    coded.setData(body);
    coded.open(QIODevice::ReadOnly);
    const QDeadlineTimer deadline(longestTime);
    auto result =
        ContentDecoder::decode(coded, contentEncoding, largestResult, [&] { return deadline.hasExpired(); });
    return result ? std::move(result).value() : body;
}
