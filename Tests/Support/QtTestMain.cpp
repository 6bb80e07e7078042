#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

/// Tests never touch the user's own files: every test that writes gets a temporary folder of its own.
int main(int argc, char** argv) {
    // No display is needed, not even when the tests are only listed.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // After the application: tables of rows may hold icons and pictures.
    ::testing::InitGoogleTest(&argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QStandardPaths::setTestModeEnabled(true);
    return RUN_ALL_TESTS();
}
