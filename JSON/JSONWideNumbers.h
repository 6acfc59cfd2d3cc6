#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <vector>

namespace Quorvix {

/// A JSON text in which a double replaces each wide number: an integer beyond 64 bits, or a number beyond the
/// range of a double. RFC 8259 allows wide numbers, but a parser for machine numbers refuses them.
///
/// Every other token stays as it is, malformed ones included. Any thread.
struct JSONWideNumbers
{
    struct Number
    {
        /// How many numbers the text has before this one.
        size_t ordinal;
        /// Where its digits end; they begin where those of the number before it end.
        size_t digitsEnd;
    };

    [[nodiscard]] static JSONWideNumbers replacedIn(QByteArrayView original);

    QByteArray text;
    /// The replaced numbers, in the order of the text.
    std::vector<Number> numbers;
    /// The replaced numbers as they are written in the text, without anything between them.
    QByteArray digits;
    /// Whether a value of the text begins like a number but is not a number.
    bool hasMalformedNumber = false;
};

/// The finite double that is nearest to a number. Any thread.
[[nodiscard]] double nearestDouble(QByteArrayView digits);

} // namespace Quorvix
