#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringView>

#include <optional>

/// Names of Swift source code, made from names of elsewhere.
///
/// A made name consists of letters, digits and combining marks, but for the back-quotes around a keyword:
/// whatever a key or a path holds, it cannot bring source of its own along. Pure functions; any thread.
class QUORVIX_INTERNAL_EXPORT QXSwiftName
{
public:
    /// "first_name" gives "FirstName", "2fa" gives "Api2fa", and what has no word gives "ApiResponse".
    [[nodiscard]] static QString typeName(QStringView key);
    /// "First name" gives "firstName", "2fa" gives "value2fa", what has no word gives "value", and a keyword
    /// stands in back-quotes.
    [[nodiscard]] static QString propertyName(QStringView key);

    /// The name without the "Response" that it may end in.
    [[nodiscard]] static QStringView withoutResponse(QStringView typeName);
    /// "Categories" gives "Category", "Users" gives "User". Two endings are all that it knows of English:
    /// "Status" gives "Statu".
    [[nodiscard]] static QString singular(QStringView typeName);

    /// What the type number @p index of a taken name ends in: "A" to "Z", "AA" to "ZZ". Absent from
    /// suffixCount on.
    [[nodiscard]] static std::optional<QString> suffix(int index);
    /// How many types may want a name that is taken.
    static constexpr int suffixCount = 26 * 27;

    /// The expression that yields @p text, which may hold anything, on one line and with nothing invisible.
    [[nodiscard]] static QString stringLiteral(QStringView text);

    /// A name for the outermost type of what a request path answers, which always ends in "Response":
    /// "/v1/users/42" gives "UsersResponse". A path without a telling segment gives "ApiResponse".
    ///
    /// The last segment counts that is neither a version, nor an identifier, nor without a letter.
    [[nodiscard]] static QString rootTypeName(QStringView requestPath);
    /// The file that a model is saved in: "UsersResponse.swift". A name longer than file systems take is cut.
    [[nodiscard]] static QString fileName(QStringView rootTypeName);
};
