#pragma once

#include "NSError.h"

#include <utility>
#include <variant>

namespace Quorvix {

/// What an operation yields: a value, or the error that kept it from one.
template<typename Value>
class [[nodiscard]] Result
{
public:
    Result(Value value) : m_outcome(std::in_place_index<0>, std::move(value)) {}
    Result(NSError error) : m_outcome(std::in_place_index<1>, std::move(error)) {}

    /// True when there is a value.
    explicit operator bool() const noexcept { return m_outcome.index() == 0; }

    /// To be asked only when there is a value.
    [[nodiscard]] const Value &value() const & { return *std::get_if<0>(&m_outcome); }
    [[nodiscard]] Value &&value() && { return std::move(*std::get_if<0>(&m_outcome)); }
    /// To be asked only when there is none.
    [[nodiscard]] const NSError &error() const { return *std::get_if<1>(&m_outcome); }

private:
    std::variant<Value, NSError> m_outcome;
};

} // namespace Quorvix
