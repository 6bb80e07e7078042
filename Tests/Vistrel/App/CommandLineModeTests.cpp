#include "App/CommandLineMode.h"

#include <gtest/gtest.h>

namespace {

using namespace CommandLineMode;

const UsageError runsError{QStringLiteral("Expected: --benchmark-capture [runs from 1 to 20]"), 2};
const UsageError methodError{QStringLiteral("Expected --capture-method automatic, filtered, or direct"), 2};
const UsageError profileError{QStringLiteral("Expected: --profile-buffer width height displays maximumFPS"),
                              1};

struct ModeCase {
    const char* name;
    const char* arguments; // separated by blanks, "_" stands for an empty argument
    Mode expected;
};

void PrintTo(const ModeCase& row, std::ostream* stream) {
    *stream << row.name;
}

class CommandLineModeTest : public ::testing::TestWithParam<ModeCase> {};

TEST_P(CommandLineModeTest, isTheFirstThatMatches) {
    QStringList arguments{QStringLiteral("/usr/bin/vistrel")};
    for (const QString& word : QString::fromUtf8(GetParam().arguments).split(u' ', Qt::SkipEmptyParts))
        arguments << (word == QLatin1StringView("_") ? QString() : word);
    EXPECT_TRUE(parse(arguments) == GetParam().expected);
}

const ModeCase cases[] = {
    {"nothing", "", Resident{}},
    {"unknownArguments", "--help -v file.png", Resident{}},
    {"previewIsTheResidentProgram", "--preview-overlay", Resident{}},
    {"optionsAreCaseSensitive", "--Diagnostics", Resident{}},
    {"benchmarkAlone", "--benchmark-capture", BenchmarkCapture{3, CaptureMethod::automatic}},
    {"mostRuns", "--benchmark-capture 20", BenchmarkCapture{20, CaptureMethod::automatic}},
    {"signedRuns", "--benchmark-capture +5", BenchmarkCapture{5, CaptureMethod::automatic}},
    {"leadingZeros", "--benchmark-capture 007", BenchmarkCapture{7, CaptureMethod::automatic}},
    {"noRuns", "--benchmark-capture 0", runsError},
    {"tooManyRuns", "--benchmark-capture 21", runsError},
    {"negativeRuns", "--benchmark-capture -1", runsError},
    {"wordRuns", "--benchmark-capture x", runsError},
    {"twoSigns", "--benchmark-capture +-3", runsError},
    {"signAlone", "--benchmark-capture +", runsError},
    {"emptyRuns", "--benchmark-capture _", runsError},
    {"trailingText", "--benchmark-capture 3x", runsError},
    {"hexadecimalRuns", "--benchmark-capture 0x3", runsError},
    {"otherDigits", "--benchmark-capture ٣", runsError},
    {"overflowingRuns", "--benchmark-capture 18446744073709551619", runsError},
    {"methodInTheRunsPlace", "--benchmark-capture --capture-method direct", runsError},
    {"secondBenchmarkIsNotLookedAt", "--benchmark-capture 4 --benchmark-capture 99",
     BenchmarkCapture{4, CaptureMethod::automatic}},
    {"filtered", "--benchmark-capture 5 --capture-method filtered",
     BenchmarkCapture{5, CaptureMethod::filtered}},
    {"methodBefore", "--capture-method direct --benchmark-capture",
     BenchmarkCapture{3, CaptureMethod::direct}},
    {"methodWithoutValue", "--benchmark-capture 5 --capture-method", methodError},
    {"unknownMethod", "--benchmark-capture 5 --capture-method Direct", methodError},
    {"runsAreReadBeforeTheMethod", "--benchmark-capture 0 --capture-method", runsError},
    {"methodWithoutBenchmark", "--capture-method direct", Resident{}},
    {"feedWinsOverEarlierBenchmark", "--benchmark-capture x --check-update-feed", CheckUpdateFeed{}},
    {"benchmarkWinsOverTiming", "--last-capture-timing --benchmark-capture 2",
     BenchmarkCapture{2, CaptureMethod::automatic}},
    {"timingWinsOverIconset", "--export-iconset a --last-capture-timing", LastCaptureTiming{}},
    {"iconset", "--export-iconset a/b", ExportIconset{QStringLiteral("a/b")}},
    {"iconsetTakesAnOptionAsItsPath", "--export-iconset --diagnostics",
     ExportIconset{QStringLiteral("--diagnostics")}},
    {"iconsetWithoutPathFallsThrough", "--diagnostics --export-iconset", PrintDiagnostics{}},
    {"onlyTheFirstIconsetCounts", "--export-iconset x --export-iconset y",
     ExportIconset{QStringLiteral("x")}},
    {"profile", "--profile-buffer 5120 2880 2 60", ProfileBuffer{5120, 2880, 2, 60}},
    {"profileIsNotRangeChecked", "--profile-buffer -1 0 9223372036854775807 0",
     ProfileBuffer{-1, 0, 9223372036854775807, 0}},
    {"profileIgnoresTheRest", "--profile-buffer 1 2 3 4 5", ProfileBuffer{1, 2, 3, 4}},
    {"profileWithThreeValuesFallsThrough", "--diagnostics --profile-buffer 1 2 3", PrintDiagnostics{}},
    {"profileWithAWord", "--profile-buffer 1 2 3 sixty", profileError},
    {"profileOverflow", "--profile-buffer 9223372036854775808 1 1 1", profileError},
    {"loginWinsOverDiagnostics", "--diagnostics --enable-launch-at-login", EnableLaunchAtLogin{}},
};

INSTANTIATE_TEST_SUITE_P(Table, CommandLineModeTest, ::testing::ValuesIn(cases),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
