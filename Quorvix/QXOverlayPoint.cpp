#include "Quorvix/QXOverlayPoint.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <algorithm>
#include <cmath>

using namespace Quorvix;

namespace {

std::optional<double> finiteNumber(const JSONValue &object, QByteArrayView name)
{
    const auto member = object.member(name);
    if (!member || member->kind() != JSONValue::Kind::Number || !std::isfinite(member->toDouble()))
        return std::nullopt;
    return member->toDouble();
}

/// Limits the offset to both bounds; the upper bound is stronger.
double limited(double offset, double extent, double margin)
{
    const double bound = extent / 2 - margin;
    return std::min(std::max(offset, -bound), bound);
}

} // namespace

QByteArray QXOverlayPoint::encoded() const
{
    JSONWriter writer(JSONWriter::Format::Compact);
    writer.beginObject();
    writer.key(QLatin1StringView("x"));
    writer.number(x);
    writer.key(QLatin1StringView("y"));
    writer.number(y);
    writer.endObject();
    return writer.takeBuffer();
}

std::optional<QXOverlayPoint> QXOverlayPoint::decoded(const QByteArray &json)
{
    if (json.isEmpty())
        return std::nullopt;
    const auto document = JSONReader::parse(json);
    if (!document)
        return std::nullopt;
    const auto x = finiteNumber(document.value().root(), "x");
    const auto y = finiteNumber(document.value().root(), "y");
    return x && y ? std::optional(QXOverlayPoint{*x, *y}) : std::nullopt;
}

QXOverlayPoint QXOverlayPoint::within(const QSizeF &size, double margin) const
{
    return {limited(x, size.width(), margin), limited(y, size.height(), margin)};
}
