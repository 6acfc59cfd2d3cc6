#pragma once

#include <QtCore/QtGlobal>

#include <optional>

/// The three pieces of a JSON Web Token's compact form (RFC 7515, section 7.1), still encoded. They are not
/// validated, and each may be empty. A view of bytes or of UTF-16.
template<typename View>
struct QXJWTPieces
{
    View header;
    View body;
    View signature;

    /// Splits a token at its dots. Absent unless there are exactly two dots.
    [[nodiscard]] static std::optional<QXJWTPieces> split(View token) noexcept
    {
        constexpr typename View::storage_type dot = '.';
        const qsizetype first = token.indexOf(dot);
        const qsizetype second = first < 0 ? -1 : token.indexOf(dot, first + 1);
        if (second < 0 || token.indexOf(dot, second + 1) >= 0)
            return std::nullopt;
        return QXJWTPieces{token.first(first), token.sliced(first + 1, second - first - 1),
                           token.sliced(second + 1)};
    }
};
