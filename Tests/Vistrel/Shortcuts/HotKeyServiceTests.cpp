#include "Shortcuts/HotKeyService.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace {

const ScreenshotShortcut nine{25, 768, u"9"_s};
const ScreenshotShortcut bracket{25, 768, u"("_s};
const ScreenshotShortcut p{35, 768, u"P"_s};
const ScreenshotShortcut f{3, 4096, u"F"_s};

class RecordingBackend : public HotKeyBackend {
public:
    HotKeyStatus registerHotKey(KeyCode key, ModifierMask modifiers, HotKeyId id) override {
        EXPECT_TRUE(seen.insert(id).second) << "an identifier came back";
        if (const auto refused = refusals.find(key); refused != refusals.end())
            return refused->second;
        for (const auto& [other, chord] : live)
            EXPECT_NE(chord, std::pair(key, modifiers)) << "registered twice";
        live[id] = {key, modifiers};
        return hotKeyRegistered;
    }
    void unregisterHotKey(HotKeyId id) override { live.erase(id); }

    std::vector<KeyCode> keys() const {
        std::vector<KeyCode> result;
        for (const auto& [id, chord] : live)
            result.push_back(chord.first);
        return result;
    }

    std::map<KeyCode, HotKeyStatus> refusals;
    std::map<HotKeyId, std::pair<KeyCode, ModifierMask>> live;
    std::set<HotKeyId> seen;
};

class DesktopTable : public SystemShortcuts {
public:
    Result<std::vector<SystemShortcut>> read() const override { return table; }
    Result<std::vector<SystemShortcut>> table;
};

class HotKeyServiceTest : public testing::Test {
protected:
    QString failureOf(const std::vector<ScreenshotShortcut>& shortcuts) {
        const auto outcome = service.registerShortcuts(shortcuts);
        EXPECT_FALSE(outcome);
        return outcome ? QString() : outcome.error().description;
    }

    RecordingBackend backend;
    DesktopTable desktop;
    HotKeyService service{backend, desktop};
};

} // namespace

TEST_F(HotKeyServiceTest, OnlyWhatChangesIsRegisteredAndReleased) {
    ASSERT_TRUE(service.registerShortcuts({nine, bracket, p}));
    EXPECT_EQ(service.shortcuts(), (std::vector{nine, p})) << "one chord is registered once";
    const auto before = backend.live;
    ASSERT_TRUE(service.registerShortcuts({bracket, p}));
    EXPECT_EQ(backend.live, before) << "only the name has changed";
    EXPECT_EQ(service.shortcuts(), (std::vector{bracket, p}));
    ASSERT_TRUE(service.registerShortcuts({f, p}));
    EXPECT_EQ(service.shortcuts(), (std::vector{f, p}));
    EXPECT_EQ(backend.live.size(), 2U);
}

TEST_F(HotKeyServiceTest, WhatCannotBeRegisteredIsNamedAndLeavesTheEarlierSet) {
    ASSERT_TRUE(service.registerShortcuts({nine}));
    backend.refusals[3] = hotKeyExists;
    EXPECT_EQ(failureOf({nine, p, f}),
              u"⌃F is already registered by another application. Open that app's Settings or "
              "Preferences → Shortcuts / Hotkeys, change or disable this combination, then try "
              "again. You can also quit that app or choose another shortcut in Vistrel."_s);
    EXPECT_EQ(service.shortcuts(), std::vector{nine});
    EXPECT_EQ(backend.keys(), std::vector<KeyCode>{25});
    backend.refusals[3] = -11;
    EXPECT_EQ(failureOf({f}),
              u"⌃F could not be registered (macOS error -11). It may be in use by another app. "
              "Choose another shortcut or try again."_s);
    desktop.table = tl::unexpected(Error{ErrorDomain::system, 5, u"bus gone"_s});
    EXPECT_EQ(failureOf({p, nine}), u"⇧⌘P: Vistrel couldn't check macOS shortcuts. Please try again."_s);
    EXPECT_EQ(service.shortcuts(), std::vector{nine});
}

TEST_F(HotKeyServiceTest, PausedChordsAreFreeAndComeBack) {
    ASSERT_TRUE(service.registerShortcuts({nine, p}));
    service.setPaused(true);
    EXPECT_TRUE(backend.live.empty());
    EXPECT_EQ(service.shortcuts(), (std::vector{nine, p}));
    ASSERT_TRUE(service.registerShortcuts({nine, p, f}));
    EXPECT_TRUE(backend.live.empty());
    backend.refusals[35] = hotKeyExists;
    service.setPaused(false);
    EXPECT_EQ(service.shortcuts(), (std::vector{nine, f}));
    EXPECT_EQ(backend.live.size(), 2U);
}
