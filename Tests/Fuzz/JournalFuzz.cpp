#include "Diagnostics/JournalLine.h"
#include "Require.h"

/// Lines that are understood are written again and then mean the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray content(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    for (const QByteArray& line : content.split('\n')) {
        const auto event = JournalLine::decode(line);
        if (!event)
            continue;
        const auto written = JournalLine::encode(*event);
        FUZZ_REQUIRE(written && written->endsWith('\n') && written->count('\n') == 1);
        FUZZ_REQUIRE(JournalLine::decode(written->chopped(1)) == event);
    }
    return 0;
}
