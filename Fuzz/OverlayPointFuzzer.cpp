// Checks that a saved position of the button, whatever the settings hold, is refused or lies in every window.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Quorvix/QXOverlayPoint.h"

#include "JSON/JSONReader.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cmath>

namespace {

constexpr double margin = 38;

void checkWithin(const QXOverlayPoint &point, const QSizeF &size)
{
    const QXOverlayPoint shown = point.within(size, margin);
    check(std::isfinite(shown.x) && std::isfinite(shown.y), "a position is finite");
    const auto isInside = [](double offset, double extent) {
        return extent < 2 * margin || (std::abs(offset) <= extent / 2 - margin);
    };
    check(isInside(shown.x, size.width()) && isInside(shown.y, size.height()), "the button is in the window");
    check(shown.within(size, margin) == shown, "a limited position stays");
    const bool wasInside =
        std::abs(point.x) <= size.width() / 2 - margin && std::abs(point.y) <= size.height() / 2 - margin;
    check(!wasInside || shown == point, "a position in the window stays");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzParts parts(view(data, size));
    const QSizeF window(parts.take().toUShort(), parts.take().toUShort());
    const QByteArray saved = parts.takeRest();
    const auto point = QXOverlayPoint::decoded(saved);
    const QJsonObject object = QJsonDocument::fromJson(saved).object();
    const auto x = object[QLatin1StringView("x")];
    const auto y = object[QLatin1StringView("y")];
    check(point || !x.isDouble() || !y.isDouble() || !Quorvix::JSONReader::parse(saved),
          "a point is not refused");
    if (!point)
        return 0;
    check(std::isfinite(point->x) && std::isfinite(point->y), "a saved position is finite");
    check(QXOverlayPoint::decoded(point->encoded()) == point, "a position is saved as it is");
    checkWithin(*point, window);
    checkWithin(*point, QSizeF());
    return 0;
}
