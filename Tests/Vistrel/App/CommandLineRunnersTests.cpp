#include "App/CommandLineRunners.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(CommandLineRunnersTest, DiagnosticsDescribeTheSession) {
    QByteArray output;
    const Console console{[&](const QByteArray& bytes) { output += bytes; }, {}};
    const auto screen = [](std::optional<std::uint32_t> number, QSize pixels, double scale) {
        return Screen{u"A"_s, number, QRect(QPoint(), pixels), scale};
    };
    const CommandLineRunners::Diagnosis diagnosis{
        .loginItem = LoginItemStatus::notFound,
        .screenCaptureGranted = true,
        .screens = {screen(std::nullopt, {1366, 768}, 1.5), screen(4294967295U, {0, 0}, 1),
                    screen(3, {2560, 1440}, 1.1)},
        .conflictsWithSystem = [](const ScreenshotShortcut& shortcut) -> Result<bool> {
            if (shortcut.keyCode == 21)
                return true;
            return tl::unexpected(Error{ErrorDomain::system, 1, u"unreadable"_s});
        }};
    EXPECT_EQ(CommandLineRunners::printDiagnostics(diagnosis, console), 0);
    EXPECT_EQ(output, "Capture mode: on demand; no background stream or rewind\n"
                      "Launch at login status: 3\n"
                      "Screen capture permission: true\n"
                      "Preferred shortcut conflicts with macOS: true\n"
                      "Fallback shortcut conflicts with macOS: unknown\n"
                      "Display 0: 1366 × 768, scale 1.5\n"
                      "Display 4294967295: 1 × 1, scale 1.0\n"
                      "Display 3: 2560 × 1440, scale 1.1\n");
}
