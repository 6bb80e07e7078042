#include "Desktop/EditorOnDesktop.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Programs whose environment names the session's folder.
QStringList programsUsing(const QString& folder) {
    QStringList found;
    for (const QString& id : QDir(u"/proc"_s).entryList(QDir::Dirs))
        if (id.toInt() > 0 && readFile(u"/proc/%1/environ"_s.arg(id)).contains(folder.toUtf8()))
            found << QString::fromUtf8(readFile(u"/proc/%1/comm"_s.arg(id)));
    return found;
}

/// An editor on a desktop with an accessibility bus, and a user who knows nothing but names and roles.
class AccessibleEditor : public ::testing::Test {
public:
    ~AccessibleEditor() override {
        const QString folder = editor->session.folder();
        editor->program.reset();
        bus->end();
        editor.reset();
        // The launcher has started a bus and a registry of its own.
        EXPECT_TRUE(waitUntil([&] { return programsUsing(folder).isEmpty(); }))
            << programsUsing(folder).join(u' ').toStdString();
    }

protected:
    AccessibleEditor() {
        editor->session.setEnvironment("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        bus = editor->session.start(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
    }

    /// Carries out the steps one by one; what went wrong, or nothing.
    std::string follow(const char* steps) {
        QStringList arguments(QStringLiteral(VISTREL_SOURCE_DIR "/Tests/Desktop/AccessibilityClient.py"));
        arguments += QString::fromUtf8(steps).split(u'\n', Qt::SkipEmptyParts);
        const auto client = editor->session.start(u"/usr/bin/python3"_s, arguments);
        return client->waitForExit(2 * patience) == 0 ? ""
                                                      : client->standardError().toStdString() + "(failed)";
    }

    std::optional<EditorOnDesktop> editor{std::in_place, desktopWithBus()};
    std::unique_ptr<ChildProgram> bus;
};

} // namespace

TEST_F(AccessibleEditor, IsFoundAndUsedByNamesAndRoles) {
    ASSERT_TRUE(editor->edit({300, 120, 600, 440}));
    // What is disabled gives no answer.
    EXPECT_EQ(follow(R"(
expect/radio button/Select/checked
expect/radio button/Pen/enabled
expect/radio button/Line/enabled
expect/radio button/Arrow/enabled
expect/radio button/Ellipse/enabled
expect/radio button/Marker/enabled
expect/radio button/Blur Marker/enabled
expect/radio button/Pixelate/enabled
expect/radio button/Text/enabled
expect/push button/Undo/!enabled
expect/push button/Redo/!enabled
expect/push button/Start Recording/!enabled
expect/push button/Share/enabled
expect/push button/Save/enabled
expect/push button/Drawing color/!enabled
expect/text/Size/!enabled
expect/list/Annotation layers, newest first
press/push button/Start Recording/Press
press/radio button/Rectangle/Press
expect/radio button/Rectangle/checked
press/push button/Increase size/Press
write/text/Size/8
write/text/Size/none
press/push button/Decrease size/Press)"),
              "");
    EXPECT_EQ(editor->steps(4),
              "toolSelected(3,3,0) sizeChanged(3,4,0) sizeChanged(3,8,0) sizeChanged(3,7,0)");
    for (int i = 0; i < 3; ++i)
        editor->drag({340 + 180 * i, 200}, {440 + 180 * i, 400});
    EXPECT_EQ(editor->steps(3), "layerCreated(3,7,1) layerCreated(3,7,2) layerCreated(3,7,3)");
    EXPECT_EQ(follow(R"(
expect/label/Layers · 3
expect/push button/Drag to reorder Rectangle layer
press/list item/Rectangle/Press
expect/list item/Rectangle/selected
press/push button/Delete Rectangle/Press
press/list item/Rectangle/Delete
press/push button/Undo/Press
expect/label/Layers · 2
press/push button/Redo/Press
press/radio button/Pen/Press
press/push button/Drawing color/Press
expect/dialog/Drawing color)"),
              "");
    EXPECT_EQ(editor->steps(6), "layerSelected(3,7,3) layerDeleted(3,7,3) layerDeleted(3,3,2) undo(0,3,2) "
                                "redo(0,3,1) toolSelected(1,3,1)");
    editor->key(Key::escape);
    EXPECT_EQ(follow("press/push button/Copy/Press"), "");
    ASSERT_TRUE(editor->waitFor("captureClosed"));
    EXPECT_EQ(editor->clipboardImage().size(), QSize(600, 440));
}

TEST_F(AccessibleEditor, SettingsPagesAreNamedAndTheHistoryIsSwitchedOffAndCleared) {
    editor->start();
    ASSERT_TRUE(editor->openSettings());
    EXPECT_EQ(follow(R"(
page/Shortcuts
page/Updates
page/Support
page/Appearance
press/push button/Clear History/Press
expect/label/Local diagnostic history cleared.
press/check box/Keep diagnostic history locally/Toggle)"),
              "");
    EXPECT_TRUE(waitUntil([&] { return editor->defaults()[u"localDiagnosticJournalEnabled"] == false; }));
    EXPECT_EQ(editor->story(), "");
    EXPECT_EQ(follow("press/check box/Keep diagnostic history locally/Toggle"), "");
    EXPECT_TRUE(editor->waitFor("launch")) << "a fresh journal begins with a launch";
}
