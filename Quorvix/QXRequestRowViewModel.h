#pragma once

#include "Quorvix/QXRequestTrace.h"

#include "Controls/QXSystemColor.h"

/// The texts and colours that the list shows for one trace. They are computed on demand; nothing is stored.
struct QXRequestRowViewModel
{
    /// A named colour at an opacity from 0 to 1.
    struct Tint
    {
        QXSystemColor::Value color;
        double opacity;

        bool operator==(const Tint &) const = default;
    };

    const QXRequestTrace &request;

    /// The method and the path, without host and query.
    [[nodiscard]] QString title() const;
    /// The status code, or a text that replaces it while there is none.
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QXSystemColor::Value statusColor() const;
    [[nodiscard]] Tint backgroundColor() const;
};
