#include "VistrelPlatform/Update/UpdateVersion.h"

#include <QRegularExpression>

std::optional<UpdateVersion> UpdateVersion::parse(const QString& text) {
    static const QRegularExpression form(QStringLiteral("\\A[0-9]{1,9}(\\.[0-9]{1,9}){0,7}\\z"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    UpdateVersion version;
    version.written = text;
    for (const QString& number : text.split(QLatin1Char('.')))
        version.numbers.push_back(number.toUInt());
    return version;
}

std::strong_ordering operator<=>(const UpdateVersion& a, const UpdateVersion& b) {
    const std::size_t count = std::max(a.numbers.size(), b.numbers.size());
    for (std::size_t index = 0; index < count; ++index) {
        const std::uint32_t left = index < a.numbers.size() ? a.numbers[index] : 0;
        const std::uint32_t right = index < b.numbers.size() ? b.numbers[index] : 0;
        if (left != right)
            return left <=> right;
    }
    return std::strong_ordering::equal;
}
