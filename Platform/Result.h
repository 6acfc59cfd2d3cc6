#pragma once

#include "NSError.h"

#include <utility>
#include <variant>

namespace Quorvix {

/// The result of an operation: a value, or the error that prevented it.
template<typename Value>
class [[nodiscard]] Result
{
public:
    /// A success with this value.
    Result(Value value) : m_outcome(std::in_place_index<0>, std::move(value)) {}
    /// A failure with this error.
    Result(NSError error) : m_outcome(std::in_place_index<1>, std::move(error)) {}

    /// True when there is a value.
    explicit operator bool() const noexcept { return m_outcome.index() == 0; }

    /// Must be called only when there is a value.
    [[nodiscard]] const Value &value() const & { return *std::get_if<0>(&m_outcome); }
    /// Moves the value out of a temporary result.
    [[nodiscard]] Value &&value() && { return std::move(*std::get_if<0>(&m_outcome)); }
    /// Must be called only when there is no value.
    [[nodiscard]] const NSError &error() const { return *std::get_if<1>(&m_outcome); }

private:
    std::variant<Value, NSError> m_outcome;
};

} // namespace Quorvix
