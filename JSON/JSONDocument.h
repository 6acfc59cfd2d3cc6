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
    /// For what reads millions of values.
    [[nodiscard]] const JSONTape &tape() const noexcept { return *m_tape; }
    /// A measure of the work that the whole document makes: JSONValue::extent() of each value, and one for
    /// each name. Takes constant time.
    [[nodiscard]] qsizetype size() const noexcept;

    /// Gives up a document but keeps the texts of its strings, names and wide numbers, which are valid as
    /// long as the result. The values must not be used afterwards. Frees memory if there is no other copy.
    [[nodiscard]] static std::shared_ptr<const void> keepTexts(JSONDocument document);

private:
    friend class JSONReader;

    explicit JSONDocument(std::shared_ptr<const JSONTape> tape) noexcept : m_tape(std::move(tape)) {}

    std::shared_ptr<const JSONTape> m_tape;
};

} // namespace Quorvix
