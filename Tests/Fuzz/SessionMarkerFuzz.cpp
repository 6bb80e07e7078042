#include "Diagnostics/SessionMarker.h"
#include "Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray content(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    if (const auto marker = SessionMarker::decode(content))
        FUZZ_REQUIRE(SessionMarker::decode(marker->encoded()) == marker);
    return 0;
}
