#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <vector>

namespace Quorvix {

/// A JSON text whose wide numbers, which RFC 8259 allows and a parser for machine numbers refuses, have made
/// room for doubles near them: integers beyond 64 bits, and what is beyond the range of a double.
///
/// Leaves every other token as it is, malformed ones included. Any thread.
struct JSONWideNumbers
{
    struct Number
    {
        /// How many numbers the text has before this one.
        size_t ordinal;
        /// As it stood in the text.
        QByteArray digits;
    };

    [[nodiscard]] static JSONWideNumbers replacedIn(QByteArrayView original);

    QByteArray text;
    /// What was replaced, in order.
    std::vector<Number> numbers;
    /// Whether a value of the text begins like a number and is none.
    bool hasMalformedNumber = false;
};

/// The finite double next to a number. Any thread.
[[nodiscard]] double nearestDouble(QByteArrayView digits);

} // namespace Quorvix
