#pragma once

#include "Quorvix/QXRequestTrace.h"

#include "Controls/QXSystemColor.h"

#include <optional>
#include <vector>

/// A label and its text. A value.
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

/// One section of the information about an exchange. A value.
struct QXRequestSection
{
    enum class Kind { Values, Breakpoint, Group, Body };
    /// The groups of values. A group is collapsed until the user expands it.
    enum class Group { RequestCookies, ResponseCookies, ResponseCache };

    Kind kind = Kind::Values;
    QString title;
    /// At most 201: a last one has all that would be behind it as lines of "label: text".
    QList<QXRequestValue> values;
    /// The group, if this section is one.
    std::optional<Group> group;
    /// The body, if this section shows one; shared with the trace.
    QByteArray body;

    /// Whether both show the same. A body is the same only if both share its bytes, so that the cost does not
    /// grow with its size.
    [[nodiscard]] bool showsTheSameAs(const QXRequestSection &other) const;
};

/// Returns the sections of the details screen, from top to bottom. The cookies are read from the shared
/// storage now. Any thread.
[[nodiscard]] std::vector<QXRequestSection> requestSections(const QXRequestTrace &request);
