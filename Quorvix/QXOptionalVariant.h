#pragma once

#include <QtCore/QList>
#include <QtCore/QVariant>

#include <optional>

/// Converts an optional record for QML: an absent record becomes undefined.
template<typename Record>
[[nodiscard]] QVariant asVariant(const std::optional<Record> &record)
{
    return record ? QVariant::fromValue(*record) : QVariant();
}

/// Converts records for QML, one by one.
template<typename Record>
[[nodiscard]] QVariantList asVariants(const QList<Record> &records)
{
    QVariantList variants;
    for (const Record &record : records)
        variants.append(QVariant::fromValue(record));
    return variants;
}

/// Converts a value from QML to a record; absent for undefined and for values of another type.
template<typename Record>
[[nodiscard]] std::optional<Record> fromVariant(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Record>() ? std::optional(value.value<Record>())
                                                             : std::nullopt;
}
