#pragma once

#include <QtCore/QByteArray>

#include <optional>

/// The position of the floating button: the offset of its centre from the centre of the safe area, in
/// points.
struct QXOverlayPoint
{
    double x = 0;
    double y = 0;

    /// Returns a JSON object with the keys "x" and "y".
    [[nodiscard]] QByteArray encoded() const;
    /// Reads such an object; absent if @p json is not one.
    [[nodiscard]] static std::optional<QXOverlayPoint> decoded(const QByteArray &json);

    bool operator==(const QXOverlayPoint &) const = default;
};
