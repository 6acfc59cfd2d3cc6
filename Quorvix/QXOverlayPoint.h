#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSizeF>

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

    /// The nearest position whose distance from each edge of an area of this size is at least @p margin. If
    /// there is too little room, the right and the lower edge apply.
    [[nodiscard]] QXOverlayPoint within(const QSizeF &size, double margin) const;

    bool operator==(const QXOverlayPoint &) const = default;
};
