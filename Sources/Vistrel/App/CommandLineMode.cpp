#include "App/CommandLineMode.h"

#include <array>
#include <charconv>
#include <optional>

namespace CommandLineMode {
namespace {

constexpr std::int64_t mostRuns = 20;

/// Digits with an optional sign, nothing else; absent when it does not fit.
std::optional<std::int64_t> decimal(const QString& argument) {
    const QByteArray utf8 = argument.toUtf8();
    const char* first = utf8.constData();
    const char* const last = first + utf8.size();
    if (first != last && *first == '+') {
        ++first;
        if (first != last && *first == '-')
            return std::nullopt;
    }
    std::int64_t value = 0;
    const auto [end, fault] = std::from_chars(first, last, value);
    if (fault != std::errc() || end != last)
        return std::nullopt;
    return value;
}

/// The argument after the first `option`; absent when the option is missing or the last one.
std::optional<QString> valueAfter(const QStringList& arguments, const QString& option) {
    const qsizetype index = arguments.indexOf(option);
    if (index < 0 || index + 1 >= arguments.size())
        return std::nullopt;
    return arguments[index + 1];
}

Mode parseBenchmark(const QStringList& arguments, const QString& option) {
    BenchmarkCapture mode;
    if (const auto text = valueAfter(arguments, option)) {
        const auto runs = decimal(*text);
        if (!runs || *runs < 1 || *runs > mostRuns)
            return UsageError{QStringLiteral("Expected: --benchmark-capture [runs from 1 to 20]"), 2};
        mode.runs = static_cast<int>(*runs);
    }
    const QString methodOption = QStringLiteral("--capture-method");
    if (arguments.contains(methodOption)) {
        const auto method = captureMethodNamed(valueAfter(arguments, methodOption).value_or(QString()));
        if (!method)
            return UsageError{QStringLiteral("Expected --capture-method automatic, filtered, or direct"), 2};
        mode.method = *method;
    }
    return mode;
}

Mode parseProfile(const QStringList& arguments, qsizetype index) {
    std::array<std::int64_t, 4> values{};
    for (qsizetype offset = 0; offset < 4; ++offset) {
        const auto value = decimal(arguments[index + 1 + offset]);
        if (!value)
            return UsageError{QStringLiteral("Expected: --profile-buffer width height displays maximumFPS"),
                              1};
        values[static_cast<std::size_t>(offset)] = *value;
    }
    return ProfileBuffer{values[0], values[1], values[2], values[3]};
}

} // namespace

Mode parse(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--check-update-feed")))
        return CheckUpdateFeed{};
    const QString benchmark = QStringLiteral("--benchmark-capture");
    if (arguments.contains(benchmark))
        return parseBenchmark(arguments, benchmark);
    if (arguments.contains(QStringLiteral("--last-capture-timing")))
        return LastCaptureTiming{};
    // An option without its values is not this mode, and the later ones still have their turn.
    if (const auto directory = valueAfter(arguments, QStringLiteral("--export-iconset")))
        return ExportIconset{*directory};
    const qsizetype profile = arguments.indexOf(QStringLiteral("--profile-buffer"));
    if (profile >= 0 && profile + 4 < arguments.size())
        return parseProfile(arguments, profile);
    if (arguments.contains(QStringLiteral("--enable-launch-at-login")))
        return EnableLaunchAtLogin{};
    if (arguments.contains(QStringLiteral("--diagnostics")))
        return PrintDiagnostics{};
    if (arguments.contains(QStringLiteral("--capture")))
        return Capture{};
    return Resident{};
}

} // namespace CommandLineMode
