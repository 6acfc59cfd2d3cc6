#pragma once

#include <QtCore/QByteArrayView>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Ends the program when @p holds is false, so that the fuzzer stores the input.
inline void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline QByteArrayView view(const uint8_t *data, size_t size)
{
    return {data, qsizetype(size)};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
