#include <QGuiApplication>

#include <gtest/gtest.h>

/// The tests look on from outside: their own pictures and fonts need no screen.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
