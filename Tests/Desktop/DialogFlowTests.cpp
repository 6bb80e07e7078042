#include "Desktop/VistrelOnDesktop.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

const std::vector<MonitorSetup> bothDisplays{{u"L"_s, {0, 0, 1280, 720}}, {u"R"_s, {1280, 0, 1280, 720}}};
constexpr QRect onLeft{150, 150, 300, 200};
constexpr QRect onRight{1430, 150, 300, 200};
const QString savePanel = u"Save Screenshot"_s;

/// A capture of two displays and the dialogs before it.
class DialogFlow : public ::testing::Test {
protected:
    DialogFlow() { vistrel.start(); }

    /// Captures and selects where the dialog shall open.
    bool captureAt(QRect area) {
        vistrel.session.input().movePointer(area.center());
        return vistrel.capture() && vistrel.select(area);
    }
    bool askToSave(const QString& name = {}) {
        vistrel.command('s');
        if (!vistrel.opens(savePanel))
            return false;
        if (!name.isEmpty()) {
            vistrel.command('a');
            vistrel.type(name);
            vistrel.key(Key::returnKey);
        }
        return true;
    }
    bool askToReplace() {
        const QString there = vistrel.session.folder(u"there.png"_s);
        writeFile(there, "old");
        return askToSave(there) && vistrel.opens(u"Replace File"_s);
    }
    bool askForFolder() {
        if (!askToSave())
            return false;
        constexpr QPoint newFolderButton(546, 50);
        vistrel.session.input().click(vistrel.focusedRect().topLeft() + newFolderButton);
        return vistrel.opens(u"New Folder"_s);
    }
    bool failToSave() {
        const int failures = vistrel.count("saveFailed");
        return askToSave(vistrel.session.folder(u"nowhere/a.png"_s)) &&
               vistrel.waitFor("saveFailed", failures + 1) && waitUntil([this] {
                   const QRect alert = vistrel.focusedRect();
                   return !alert.isEmpty() && alert.width() < 1280;
               });
    }
    bool nothingIsLeft() {
        return waitUntil([this] { return vistrel.windows().empty(); });
    }
    /// Every display takes a selection, and Escape leads out from each.
    void expectAnOrdinaryCapture() {
        for (const QRect area : {onLeft, onRight})
            EXPECT_TRUE(captureAt(area) && vistrel.closeCapture()) << area.x();
    }

    VistrelOnDesktop vistrel{{.screenSize = {2560, 720}, .monitors = bothDisplays, .windowManager = true}};
};

} // namespace

TEST_F(DialogFlow, ADisplayThatGoesAndComesTakesTheCaptureAndEveryDialogAlong) {
    const std::pair<const char*, std::function<bool()>> rows[] = {
        {"save panel", [this] { return askToSave(); }},
        {"replace question", [this] { return askToReplace(); }},
        {"new folder", [this] { return askForFolder(); }},
        {"failed save", [this] { return failToSave(); }}};
    for (const auto& [name, open] : rows) {
        SCOPED_TRACE(name);
        const int closed = vistrel.count("captureClosed");
        ASSERT_TRUE(captureAt(onRight) && open());
        vistrel.session.client().removeMonitor(u"R"_s);
        // Long enough for the toolkit to notice, too short for the displays to have settled.
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        vistrel.session.client().setMonitors(bothDisplays);
        ASSERT_TRUE(vistrel.waitFor("captureClosed", closed + 1));
        EXPECT_TRUE(nothingIsLeft());
        expectAnOrdinaryCapture();
    }
}

TEST_F(DialogFlow, ASaveOnTheOtherDisplayGivesUpTheFirst) {
    ASSERT_TRUE(captureAt(onRight) && askToSave() && vistrel.select(onLeft));
    vistrel.command('s');
    ASSERT_TRUE(vistrel.waitFor("saveRequested", 2) && vistrel.opens(savePanel));
    EXPECT_TRUE(QRect(0, 0, 1280, 720).contains(vistrel.focusedRect()));
    vistrel.key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor("saveCancelled", 2) && vistrel.closes(savePanel));
    EXPECT_TRUE(vistrel.select(onRight) && vistrel.closeCapture());
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady selectionCreated saveRequested selectionCleared "
              "selectionCreated saveCancelled saveRequested saveCancelled selectionCleared selectionCreated "
              "captureClosed");
}

TEST_F(DialogFlow, AFailedSavesAlertGoesWithItsCapture) {
    ASSERT_TRUE(captureAt(onRight) && failToSave() && vistrel.select(onLeft) && vistrel.closeCapture());
    EXPECT_TRUE(nothingIsLeft());
    expectAnOrdinaryCapture();
}
