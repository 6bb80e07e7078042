#include "Desktop/EditorOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

using Editor = EditorOnDesktop;

/// Programs whose environment names the session's folder.
QStringList programsUsing(const QString& folder) {
    QStringList found;
    for (const QString& id : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile environment(QStringLiteral("/proc/%1/environ").arg(id));
        if (id.toInt() > 0 && environment.open(QIODevice::ReadOnly) &&
            environment.readAll().contains(folder.toUtf8())) {
            QFile name(QStringLiteral("/proc/%1/comm").arg(id));
            if (name.open(QIODevice::ReadOnly))
                found << QString::fromUtf8(name.readAll().trimmed());
        }
    }
    return found;
}

/// An editor on a desktop with an accessibility bus, and a user who knows nothing but names and roles.
class AccessibleEditor : public ::testing::Test {
protected:
    AccessibleEditor() {
        DesktopSession& session = editor->session;
        session.setEnvironment("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        bus = session.start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"),
                            {QStringLiteral("--launch-immediately")});
    }

    ~AccessibleEditor() override {
        const QString folder = editor->session.folder();
        editor->program.reset();
        bus->end();
        editor.reset();
        // The launcher has started a bus and a registry of its own.
        EXPECT_TRUE(waitUntil([&] { return programsUsing(folder).isEmpty(); }))
            << programsUsing(folder).join(u' ').toStdString();
    }

    /// Carries out the steps one by one; what went wrong, or nothing.
    std::string follow(const QStringList& steps) {
        const auto client = editor->session.start(
            QStringLiteral("/usr/bin/python3"),
            QStringList(QStringLiteral(VISTREL_SOURCE_DIR "/Tests/Desktop/AccessibilityClient.py")) + steps);
        const std::optional<int> status = client->waitForExit(2 * patience);
        return status == 0 ? std::string() : client->standardError().toStdString() + " (no success)";
    }

    std::optional<Editor> editor{
        std::in_place,
        DesktopSession::Options{.screenSize = {1280, 720}, .windowManager = true, .sessionBus = true}};
    std::unique_ptr<ChildProgram> bus;
};

} // namespace

TEST_F(AccessibleEditor, IsFoundAndUsedByNamesAndRoles) {
    ASSERT_TRUE(editor->edit({300, 120, 600, 440}));
    QStringList everything;
    for (const char* tool : {"Select", "Pen", "Line", "Arrow", "Rectangle", "Ellipse", "Marker",
                             "Blur Marker", "Pixelate", "Text"})
        everything << QStringLiteral("expect/radio button/%1/enabled").arg(QLatin1StringView(tool));
    everything << QStringLiteral("expect/radio button/Select/checked")
               << QStringLiteral("expect/push button/Undo/!enabled")
               << QStringLiteral("expect/push button/Redo/!enabled")
               << QStringLiteral("expect/push button/Start Recording/!enabled")
               << QStringLiteral("expect/push button/Share/enabled")
               << QStringLiteral("expect/push button/Save/enabled")
               << QStringLiteral("expect/push button/Copy/enabled")
               << QStringLiteral("expect/push button/Drawing color/!enabled")
               << QStringLiteral("expect/text/Size/!enabled")
               << QStringLiteral("expect/list/Annotation layers, newest first")
               // Disabled, and so without an answer.
               << QStringLiteral("press/push button/Start Recording/Press")
               << QStringLiteral("press/radio button/Rectangle/Press")
               << QStringLiteral("expect/radio button/Rectangle/checked")
               << QStringLiteral("press/push button/Increase size/Press")
               << QStringLiteral("write/text/Size/8") << QStringLiteral("write/text/Size/none")
               << QStringLiteral("press/push button/Decrease size/Press");
    EXPECT_EQ(follow(everything), "");
    EXPECT_EQ(editor->steps(4),
              "toolSelected(3,3,0) sizeChanged(3,4,0) sizeChanged(3,8,0) sizeChanged(3,7,0)");

    for (int i = 0; i < 3; ++i)
        editor->drag({340 + 180 * i, 200}, {440 + 180 * i, 400});
    editor->layers = 3;
    EXPECT_EQ(editor->steps(3), "layerCreated(3,7,1) layerCreated(3,7,2) layerCreated(3,7,3)");
    EXPECT_EQ(
        follow({QStringLiteral("expect/label/Layers · 3"),
                QStringLiteral("expect/push button/Drag to reorder Rectangle layer"),
                QStringLiteral("press/list item/Rectangle/Press"),
                QStringLiteral("expect/list item/Rectangle/selected"),
                QStringLiteral("press/push button/Delete Rectangle/Press"),
                QStringLiteral("press/list item/Rectangle/Delete"),
                QStringLiteral("press/push button/Undo/Press"), QStringLiteral("expect/label/Layers · 2"),
                QStringLiteral("press/push button/Redo/Press"),
                QStringLiteral("press/radio button/Pen/Press"),
                QStringLiteral("press/push button/Drawing color/Press"),
                QStringLiteral("expect/dialog/Drawing color")}),
        "");
    EXPECT_EQ(editor->steps(6), "layerSelected(3,7,3) layerDeleted(3,7,3) layerDeleted(3,3,2) undo(0,3,2) "
                                "redo(0,3,1) toolSelected(1,3,1)");
    editor->session.input().key(Key::escape);
    EXPECT_EQ(follow({QStringLiteral("press/push button/Copy/Press")}), "");
    ASSERT_TRUE(editor->waitFor(QStringLiteral("captureClosed")));
    EXPECT_EQ(editor->clipboardImage().size(), QSize(600, 440));
}
