#include "App/CommandLineMode.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using namespace CommandLineMode;

const UsageError runsError{u"Expected: --benchmark-capture [runs from 1 to 20]"_s, 2};
const UsageError methodError{u"Expected --capture-method automatic, filtered, or direct"_s, 2};
const UsageError profileError{u"Expected: --profile-buffer width height displays maximumFPS"_s, 1};

const std::tuple<const char*, const char*, Mode> cases[] = {
    {"benchmarkAlone", "--benchmark-capture", BenchmarkCapture{3, CaptureMethod::automatic}},
    {"signedRuns", "--benchmark-capture +5", BenchmarkCapture{5, CaptureMethod::automatic}},
    {"twoSigns", "--benchmark-capture +-3", runsError},
    {"otherDigits", "--benchmark-capture ٣", runsError},
    {"methodInTheRunsPlace", "--benchmark-capture --capture-method direct", runsError},
    {"filtered", "--benchmark-capture 5 --capture-method filtered",
     BenchmarkCapture{5, CaptureMethod::filtered}},
    {"unknownMethod", "--benchmark-capture 5 --capture-method Direct", methodError},
    {"benchmarkWinsOverTiming", "--last-capture-timing --benchmark-capture 2",
     BenchmarkCapture{2, CaptureMethod::automatic}},
    {"timingWinsOverIconset", "--export-iconset a --last-capture-timing", LastCaptureTiming{}},
    {"iconsetTakesAnOptionAsItsPath", "--export-iconset --diagnostics", ExportIconset{u"--diagnostics"_s}},
    {"iconsetWithoutPathFallsThrough", "--diagnostics --export-iconset", PrintDiagnostics{}},
    {"profile", "--profile-buffer 5120 2880 2 60", ProfileBuffer{5120, 2880, 2, 60}},
    {"profileWithThreeValuesFallsThrough", "--diagnostics --profile-buffer 1 2 3", PrintDiagnostics{}},
    {"profileOverflow", "--profile-buffer 9223372036854775808 1 1 1", profileError},
    {"captureComesLast", "--capture --diagnostics", PrintDiagnostics{}},
    {"captureBesideThePreview", "--preview-overlay --capture", Capture{}},
    {"loginWinsOverDiagnostics", "--diagnostics --enable-launch-at-login", EnableLaunchAtLogin{}},
};

TEST(CommandLineModeTest, isTheFirstThatMatches) {
    for (const auto& [name, words, expected] : cases) {
        QStringList arguments{u"/usr/bin/vistrel"_s};
        arguments << QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts);
        EXPECT_TRUE(parse(arguments) == expected) << name;
    }
}

} // namespace
