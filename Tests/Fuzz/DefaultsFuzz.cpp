#include "Require.h"
#include "VistrelPlatform/System/DefaultsFormat.h"

#include <QBuffer>

/// What was read survives being written, whether its values are of a known type or not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    QByteArray content(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    QSettings::SettingsMap map;
    if (!DefaultsFormat::read(device, map))
        return 0;
    for (const QVariant& value : map) {
        if (const auto data = DefaultsFormat::decodedData(value.toJsonValue()))
            FUZZ_REQUIRE(DefaultsFormat::decodedData(DefaultsFormat::encodedData(*data)) == data);
    }
    QBuffer written;
    written.open(QIODevice::ReadWrite);
    FUZZ_REQUIRE(DefaultsFormat::write(written, map));
    written.seek(0);
    QSettings::SettingsMap again;
    FUZZ_REQUIRE(DefaultsFormat::read(written, again));
    FUZZ_REQUIRE(again == map);
    return 0;
}
