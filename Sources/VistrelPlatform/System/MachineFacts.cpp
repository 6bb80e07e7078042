#include "VistrelPlatform/System/MachineFacts.h"

#include "VistrelPlatform/System/Files.h"

#include <QStringList>
#include <QSysInfo>

namespace {
constexpr qint64 longestProductName = 127;
}

MachineFacts MachineFacts::current() {
    MachineFacts facts;
    facts.systemVersion =
        versionTriple(QSysInfo::productVersion())
            .value_or(versionTriple(QSysInfo::kernelVersion()).value_or(QStringLiteral("0.0.0")));
    facts.architecture = QSysInfo::buildCpuArchitecture();
    facts.productName = productNameIn(QStringLiteral("/sys/class/dmi/id/product_name"));
    facts.translated = isTranslated(facts.architecture, QSysInfo::currentCpuArchitecture());
    return facts;
}

std::optional<QString> MachineFacts::versionTriple(const QString& text) {
    constexpr qsizetype longestNumber = 9;
    std::array<int, 3> numbers{};
    qsizetype position = 0;
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        const qsizetype begin = position + (index == 0 ? 0 : 1);
        if (index > 0 && text.mid(position, 1) != u'.')
            break;
        position = begin;
        while (position < text.size() && position < begin + longestNumber && text[position] >= u'0' &&
               text[position] <= u'9')
            ++position;
        if (position == begin && index == 0)
            return std::nullopt;
        numbers[index] = text.mid(begin, position - begin).toInt();
    }
    return QStringLiteral("%1.%2.%3").arg(numbers[0]).arg(numbers[1]).arg(numbers[2]);
}

std::optional<QString> MachineFacts::productNameIn(const QString& file) {
    // Files of this kind report a whole page as their size.
    const Result<QByteArray> bytes = Files::read(file, 65536);
    if (!bytes || bytes->isEmpty() || bytes->size() > longestProductName)
        return std::nullopt;
    const QString name = QString::fromUtf8(bytes->split('\0').first()).trimmed();
    if (name.isEmpty())
        return std::nullopt;
    return name;
}

bool MachineFacts::isTranslated(const QString& built, const QString& kernel) {
    // A 64-bit kernel runs the 32-bit programs of its own family without translation.
    const auto family = [](const QString& processor) {
        if (processor == QLatin1StringView("i386"))
            return QStringLiteral("x86_64");
        if (processor == QLatin1StringView("arm"))
            return QStringLiteral("arm64");
        return processor;
    };
    return family(built) != family(kernel);
}
