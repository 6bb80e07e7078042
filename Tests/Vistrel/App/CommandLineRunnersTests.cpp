#include "Vistrel/App/AppControllerFixture.h"

#include "App/CommandLineRunners.h"
#include "Support/ScopedEnvironment.h"

#include <QFile>

namespace {

class CommandLineRunnersTest : public ::testing::Test, protected AppControllerFixture {
protected:
    QByteArray output;
    QByteArray errors;
    const Console console{[this](const QByteArray& bytes) { output += bytes; },
                          [this](const QByteArray& bytes) { errors += bytes; }};

    static Screen screen(std::optional<std::uint32_t> number, QSize pixels, double scale) {
        return {QStringLiteral("A"), number, QRect(QPoint(), pixels), scale};
    }
};

TEST_F(CommandLineRunnersTest, EnablingLaunchAtLoginPrintsTheStatusAfterwards) {
    loginItem.fault = Error{ErrorDomain::system, 13, QStringLiteral("Permission denied")};
    EXPECT_EQ(CommandLineRunners::enableLaunchAtLogin(login, console), 1);
    EXPECT_EQ(errors, "Launch at login failed: Permission denied\n");
    EXPECT_FALSE(defaults.has(QStringLiteral("launchAtLoginConfigured")));

    loginItem.fault.reset();
    EXPECT_EQ(CommandLineRunners::enableLaunchAtLogin(login, console), 0);
    EXPECT_EQ(output, "Launch at login status: 1\n");
    EXPECT_EQ(defaults.boolean(QStringLiteral("launchAtLoginConfigured")), true);

    output.clear();
    loginItem.now = LoginItemStatus::requiresApproval;
    EXPECT_EQ(CommandLineRunners::enableLaunchAtLogin(login, console), 0);
    EXPECT_EQ(output, "Launch at login status: 2\n") << "registered already";
}

TEST_F(CommandLineRunnersTest, DiagnosticsDescribeTheSession) {
    CommandLineRunners::Diagnosis diagnosis{
        .loginItem = LoginItemStatus::notFound,
        .screenCaptureGranted = true,
        .screens = {screen(70, {3840, 2160}, 2), screen(std::nullopt, {1366, 768}, 1.5),
                    screen(4294967295U, {0, 0}, 1), screen(3, {2560, 1440}, 1.1)},
        .conflictsWithSystem = [](const ScreenshotShortcut& shortcut) -> Result<bool> {
            EXPECT_EQ(shortcut.modifiers, 768U);
            return shortcut.keyCode == 21;
        }};
    EXPECT_EQ(CommandLineRunners::printDiagnostics(diagnosis, console), 0);
    EXPECT_EQ(output, "Capture mode: on demand; no background stream or rewind\n"
                      "Launch at login status: 3\n"
                      "Screen capture permission: true\n"
                      "Preferred shortcut conflicts with macOS: true\n"
                      "Fallback shortcut conflicts with macOS: false\n"
                      "Display 70: 3840 × 2160, scale 2.0\n"
                      "Display 0: 1366 × 768, scale 1.5\n"
                      "Display 4294967295: 1 × 1, scale 1.0\n"
                      "Display 3: 2560 × 1440, scale 1.1\n");

    output.clear();
    diagnosis.conflictsWithSystem = [](const ScreenshotShortcut&) -> Result<bool> {
        return tl::unexpected(Error{ErrorDomain::system, 1, QStringLiteral("unreadable")});
    };
    EXPECT_EQ(CommandLineRunners::printDiagnostics(diagnosis, console), 0);
    EXPECT_EQ(output.count("macOS: unknown\n"), 2);
    EXPECT_EQ(output.count("Display "), 4);
}

} // namespace
