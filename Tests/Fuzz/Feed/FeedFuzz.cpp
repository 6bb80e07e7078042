#include "../Require.h"
#include "VistrelPlatform/Update/Appcast.h"
#include "VistrelPlatform/Update/ReleaseNotes.h"

/// Whatever a feed holds, only complete items with secure addresses come out of it, and their notes are
/// clean: cleaning them again changes nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray feed(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const QString notes = ReleaseNotes::html(QString::fromUtf8(feed), true);
    FUZZ_REQUIRE(ReleaseNotes::html(notes, true) == notes);
    const auto items = Appcast::parse(feed);
    if (!items)
        return 0;
    for (const AppcastItem& item : *items) {
        FUZZ_REQUIRE(item.archive.scheme() == QLatin1String("https") && !item.archive.host().isEmpty());
        FUZZ_REQUIRE(item.link.isEmpty() || item.link.scheme() == QLatin1String("https"));
        FUZZ_REQUIRE(item.length > 0 && item.signature.size() == 64);
        FUZZ_REQUIRE(UpdateVersion::parse(item.version.text()) == item.version);
        const QString cleaned = ReleaseNotes::html(item.notes, item.notesAreHtml);
        FUZZ_REQUIRE(!cleaned.contains(QLatin1String("<script"), Qt::CaseInsensitive));
    }
    const auto oldest = UpdateVersion::parse(QStringLiteral("0"));
    const auto best = Appcast::best(*items, {*oldest, std::nullopt, std::nullopt});
    for (const AppcastItem& item : *items)
        FUZZ_REQUIRE(item.version <= *oldest || (best && item.version <= best->version));
    return 0;
}
