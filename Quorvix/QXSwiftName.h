#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringView>

#include <optional>

/// Makes names for Swift source code from keys and paths.
///
/// A name consists of letters, digits and combining marks only, except the backquotes around a keyword. So a
/// key or a path cannot inject code into the source. Pure functions; any thread.
class QUORVIX_INTERNAL_EXPORT QXSwiftName
{
public:
    /// "first_name" gives "FirstName", "2fa" gives "Api2fa", and a key without a word gives "ApiResponse".
    [[nodiscard]] static QString typeName(QStringView key);
    /// "First name" gives "firstName", "2fa" gives "value2fa", a key without a word gives "value", and a
    /// keyword gets backquotes.
    [[nodiscard]] static QString propertyName(QStringView key);

    /// Whether a property name needs backquotes.
    [[nodiscard]] static bool isKeyword(QLatin1StringView name);

    /// The ending that makes a used name unique, by @p index: "A" to "Z", "AA" to "ZZ". Absent from
    /// suffixCount on.
    [[nodiscard]] static std::optional<QString> suffix(int index);
    /// The number of suffixes for one name.
    static constexpr int suffixCount = 26 * 27;

    /// The string literal for @p text, which can be any text. It has one line and no invisible characters.
    [[nodiscard]] static QString stringLiteral(QStringView text);

    /// A name for the outermost type of a response, made from the request path. It always ends in
    /// "Response": "/v1/users/42" gives "UsersResponse". A path without a suitable segment gives
    /// "ApiResponse".
    ///
    /// The name comes from the last segment that has a letter and is neither a version nor an identifier.
    [[nodiscard]] static QString rootTypeName(QStringView requestPath);
    /// The name of the model's file: "UsersResponse.swift". A name that is too long for file systems is cut.
    [[nodiscard]] static QString fileName(QStringView rootTypeName);
};
