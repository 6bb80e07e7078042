#pragma once

#include <cstdlib>

/// A broken promise ends the run; the fuzzer keeps the input.
#define FUZZ_REQUIRE(condition)                                                                              \
    do {                                                                                                     \
        if (!(condition))                                                                                    \
            std::abort();                                                                                    \
    } while (false)
