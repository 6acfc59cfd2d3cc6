#pragma once

#include "JSON/JSONValue.h"

#include <memory>

namespace Quorvix {

/// A parsed JSON text. Copies share it; it owns what its values point into, not the text it was made from.
class QUORVIX_INTERNAL_EXPORT JSONDocument
{
public:
    /// The deepest nesting that is read.
    static constexpr int maximumDepth = 1024;

    [[nodiscard]] JSONValue root() const noexcept;

private:
    friend class JSONReader;

    explicit JSONDocument(std::shared_ptr<const void> storage) noexcept : m_storage(std::move(storage)) {}

    std::shared_ptr<const void> m_storage;
};

} // namespace Quorvix
