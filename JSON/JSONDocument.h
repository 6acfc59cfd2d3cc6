#pragma once

#include "JSON/JSONValue.h"

#include <memory>

namespace Quorvix {

/// A parsed JSON text. Copies share the parsed data, which the values point into. The document does not keep
/// the text that it was parsed from.
class QUORVIX_INTERNAL_EXPORT JSONDocument
{
public:
    /// The parser refuses a text that is nested deeper than this.
    static constexpr int maximumDepth = 1024;

    [[nodiscard]] JSONValue root() const noexcept;
    /// A measure of the work that the whole document makes: JSONValue::extent() of each value, and one for
    /// each name. Takes constant time.
    [[nodiscard]] qsizetype size() const noexcept;

    /// Gives up a document but keeps the texts of its strings, names and wide numbers, which are valid as
    /// long as the result. The values must not be used afterwards. Frees memory if there is no other copy.
    [[nodiscard]] static std::shared_ptr<const void> keepTexts(JSONDocument document);

private:
    friend class JSONReader;

    explicit JSONDocument(std::shared_ptr<const void> storage) noexcept : m_storage(std::move(storage)) {}

    std::shared_ptr<const void> m_storage;
};

} // namespace Quorvix
