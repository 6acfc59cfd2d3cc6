#pragma once

#include <QtCore/QVariant>

#include <optional>

/// An optional record as QML sees it: undefined while it is absent.
template<typename Record>
[[nodiscard]] QVariant asVariant(const std::optional<Record> &record)
{
    return record ? QVariant::fromValue(*record) : QVariant();
}

/// The record that QML assigns; absent for undefined, and for whatever is no such record.
template<typename Record>
[[nodiscard]] std::optional<Record> fromVariant(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Record>() ? std::optional(value.value<Record>())
                                                             : std::nullopt;
}
