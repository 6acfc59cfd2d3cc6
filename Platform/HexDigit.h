#pragma once

namespace Quorvix {

/// The hexadecimal digit of a number below 16, in lower case.
[[nodiscard]] constexpr char hexDigit(unsigned number) noexcept
{
    return "0123456789abcdef"[number];
}

} // namespace Quorvix
