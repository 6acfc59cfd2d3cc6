#pragma once

#include <QtCore/QByteArray>

#include <optional>

/// Where the floating button stands: its centre's offset from the centre of the safe area, in points.
struct QXOverlayPoint
{
    double x = 0;
    double y = 0;

    /// The JSON object with the keys "x" and "y".
    [[nodiscard]] QByteArray encoded() const;
    /// Absent when the bytes are not such an object.
    [[nodiscard]] static std::optional<QXOverlayPoint> decoded(const QByteArray &json);

    bool operator==(const QXOverlayPoint &) const = default;
};
