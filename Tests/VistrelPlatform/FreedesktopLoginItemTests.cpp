#include "Support/ScopedEnvironment.h"
#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"
#include "VistrelPlatform/Freedesktop/DesktopSettingsPages.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <gtest/gtest.h>

#include <gio/gdesktopappinfo.h>

using namespace Qt::StringLiterals;
using Status = LoginItemStatus;

namespace {

class LoginItemTest : public testing::Test {
protected:
    QString path(const QString& name) const { return folder.filePath(name); }
    /// A program that notes its own path and its arguments.
    QString makeProgram(const QString& name) const {
        writeFile(
            path(name),
            u"#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" > '%1.new'\nmv '%1.new' '%1'\n"_s.arg(log).toUtf8(),
            true);
        return path(name);
    }
    /// What the program noted, once it has run.
    QString noted() const {
        EXPECT_TRUE(waitUntil([this] { return QFile::exists(log); }));
        QString text = QString::fromUtf8(readFile(log));
        QFile::remove(log);
        return text;
    }
    AutostartLoginItem itemFor(const QString& executable, bool installed = true) const {
        return AutostartLoginItem({installed, executable, {u"GNOME"_s}});
    }

    QTemporaryDir folder;
    ScopedEnvironment config{"XDG_CONFIG_HOME", QFile::encodeName(path(u"config"_s))};
    const QString log = path(u"log"_s);
    const QString entry = path(u"config/autostart/com.orvane.Vistrel.desktop"_s);
    const QString program = makeProgram(u"bin/vistrel"_s);
    AutostartLoginItem item = itemFor(program);
};

} // namespace

TEST_F(LoginItemTest, EveryDesktopsWayToSwitchItOffIsRead) {
    const std::tuple<const char*, const char*, Status> rows[] = {
        {"plain", "", Status::enabled},
        {"hidden", "Hidden=true\n", Status::requiresApproval},
        {"switchedOff", "X-GNOME-Autostart-enabled=false\n", Status::requiresApproval},
        {"switchedOffInMATE", "X-MATE-Autostart-enabled=false\n", Status::requiresApproval},
        {"forAnotherDesktop", "OnlyShowIn=KDE;XFCE;\n", Status::requiresApproval},
        {"forThisDesktop", "OnlyShowIn=KDE;GNOME;\n", Status::enabled},
        {"notForThisDesktop", "NotShowIn=GNOME;\n", Status::requiresApproval},
        {"notForAnother", "NotShowIn=KDE;\nHidden=false\n", Status::enabled},
    };
    for (const auto& [name, lines, status] : rows) {
        writeFile(entry,
                  "[Desktop Entry]\nType=Application\nName=Vistrel\nExec=" + program.toUtf8() + '\n' + lines);
        EXPECT_EQ(item.status(), status) << name;
    }
    ASSERT_TRUE(item.withdraw());
    EXPECT_EQ(item.status(), Status::notRegistered);
    ASSERT_TRUE(item.withdraw()) << "nothing to withdraw";
}

TEST_F(LoginItemTest, WhatCannotBeStartedIsNotFoundAndCanBeEnrolledAgain) {
    for (const char* text :
         {"", "no entry at all", "[Desktop Entry]\nName=Vistrel\n",
          "[Desktop Entry]\nExec=/nowhere/vistrel\n", "[Desktop Entry]\nExec=\"unclosed\n"}) {
        writeFile(entry, text);
        EXPECT_EQ(item.status(), Status::notFound) << text;
        ASSERT_TRUE(item.enroll());
        EXPECT_EQ(item.status(), Status::enabled) << text;
    }
    QFile::remove(entry);
    AutostartLoginItem bare = itemFor(program, false);
    AutostartLoginItem gone = itemFor(path(u"gone"_s));
    for (AutostartLoginItem* none : {&bare, &gone}) {
        EXPECT_EQ(none->status(), Status::notFound);
        EXPECT_FALSE(none->enroll());
    }
    EXPECT_FALSE(QFile::exists(entry));
}

TEST_F(LoginItemTest, TheDesktopStartsProgramsWithAnyPath) {
    for (const QString& name : {u"with space"_s, u"a\"b$HOME`c\\d"_s, u"quote's;&|<>()#~*?"_s, u"Tür"_s}) {
        const QString executable = makeProgram(name + u"/vistrel"_s);
        ASSERT_TRUE(itemFor(executable).enroll());
        EXPECT_EQ(itemFor(executable).status(), Status::enabled) << qPrintable(name);
        GDesktopAppInfo* started = g_desktop_app_info_new_from_filename(QFile::encodeName(entry).constData());
        ASSERT_NE(started, nullptr) << qPrintable(name);
        EXPECT_TRUE(g_app_info_launch(G_APP_INFO(started), nullptr, nullptr, nullptr)) << qPrintable(name);
        g_object_unref(started);
        EXPECT_EQ(noted(), executable + u'\n');
    }
    // Not every desktop's library undoes the doubling.
    EXPECT_EQ(desktopEntryArgument(u"/a%f"_s), u"/a%%f"_s);
}

TEST_F(LoginItemTest, SettingsPagesAreTriedInOrder) {
    const ScopedEnvironment programs("PATH", QFile::encodeName(path(u"bin"_s)) + ":/bin:/usr/bin");
    for (const Desktop desktop : {Desktop::unknown, Desktop::xfce})
        EXPECT_FALSE(DesktopSettingsPages(desktop).has(SettingsPage::keyboardShortcuts) ||
                     DesktopSettingsPages(desktop).open(SettingsPage::keyboardShortcuts));
    makeProgram(u"bin/systemsettings5"_s);
    EXPECT_TRUE(DesktopSettingsPages(Desktop::kde).has(SettingsPage::keyboardShortcuts));
    EXPECT_TRUE(DesktopSettingsPages(Desktop::kde).open(SettingsPage::keyboardShortcuts));
    EXPECT_EQ(noted(), path(u"bin/systemsettings5\nkcm_keys\n"_s));
    makeProgram(u"bin/systemsettings"_s);
    EXPECT_TRUE(DesktopSettingsPages(Desktop::kde).open(SettingsPage::loginItems));
    EXPECT_EQ(noted(), path(u"bin/systemsettings\nkcm_autostart\n"_s));
}
