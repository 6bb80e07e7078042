#include "VistrelPlatform/System/ProcessFootprint.h"

#include <QFile>

std::int64_t ProcessFootprint::bytes() {
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return parse(file.readAll()).value_or(0);
}

std::optional<std::int64_t> ProcessFootprint::parse(const QByteArray& smapsRollup) {
    constexpr std::int64_t bytesPerUnit = 1024;
    for (const QByteArray& line : smapsRollup.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() != 3 || words[0] != "Pss:" || words[2] != "kB")
            continue;
        bool ok = false;
        const qlonglong value = words[1].toLongLong(&ok);
        if (ok && value >= 0)
            return value * bytesPerUnit;
    }
    return std::nullopt;
}
