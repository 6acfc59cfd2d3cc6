#pragma once

#include "Quorvix/QXRequestTrace.h"

#include "Controls/QXSystemColor.h"

/// What the list shows of one trace: derived on demand, holding nothing of its own.
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

    /// Method and path; host and query are left out.
    [[nodiscard]] QString title() const;
    /// The status code, or what stands in for it while there is none.
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] QXSystemColor::Value statusColor() const;
    [[nodiscard]] Tint backgroundColor() const;
};
