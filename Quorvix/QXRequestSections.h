#pragma once

#include "Quorvix/QXRequestTrace.h"

#include "Controls/QXSystemColor.h"

#include <optional>
#include <vector>

/// A label and what it labels. A value.
struct QXRequestValue
{
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(int color MEMBER color)

public:
    QString label;
    QString text;
    /// A QXSystemColor::Value; clear stands for the primary text colour.
    int color = QXSystemColor::Clear;

    bool operator==(const QXRequestValue &) const = default;
};

/// One section of what is known about an exchange. A value.
struct QXRequestSection
{
    enum class Kind { Values, Breakpoint, Group, Body };
    /// A group that is folded away until it is asked for.
    enum class Group { RequestCookies, ResponseCookies, ResponseCache };

    Kind kind = Kind::Values;
    QString title;
    QList<QXRequestValue> values;
    /// Of a group: which it is.
    std::optional<Group> group;
    /// Of a body: shared with the trace.
    QByteArray body;
};

/// The sections of the details screen, from top to bottom; the cookies are those of the shared storage as it
/// stands. Any thread.
[[nodiscard]] std::vector<QXRequestSection> requestSections(const QXRequestTrace &request);
