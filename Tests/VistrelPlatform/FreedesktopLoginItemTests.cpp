#include "Support/ReadOnlyFolder.h"
#include "Support/ScopedEnvironment.h"
#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"
#include "VistrelPlatform/Freedesktop/DesktopSettingsPages.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <QDir>

#include <gtest/gtest.h>

#include <gio/gdesktopappinfo.h>

namespace {

/// A program that notes its own path and its arguments.
QString makeProgram(const QString& path, const QString& log) {
    QDir().mkpath(QFileInfo(path).path());
    ShareTestBus::writeFile(path, QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$0\" \"$@\" > '%1.new'\n"
                                                 "mv '%1.new' '%1'\n")
                                      .arg(log));
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

QString contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class LoginItemTest : public testing::Test {
protected:
    QString path(const QString& name) const { return folder.filePath(name); }
    QString entry() const { return path(QStringLiteral("config/autostart/com.orvane.Vistrel.desktop")); }
    void writeEntry(const QString& text) const {
        QDir().mkpath(QFileInfo(entry()).path());
        ShareTestBus::writeFile(entry(), text);
    }
    AutostartLoginItem itemFor(const QString& executable, bool installed = true) const {
        return AutostartLoginItem({installed, executable, {QStringLiteral("GNOME")}});
    }

    QTemporaryDir folder;
    ScopedEnvironment config{"XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config")))};
    QString log = path(QStringLiteral("log"));
    QString program = makeProgram(path(QStringLiteral("bin/vistrel")), log);
};

struct EntryCase {
    const char* name;
    const char* lines;
    LoginItemStatus status;
};

} // namespace

TEST_F(LoginItemTest, EnrolsAndWithdraws) {
    AutostartLoginItem item = itemFor(program);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    ASSERT_TRUE(item.withdraw());
    ASSERT_TRUE(item.enroll());
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    ASSERT_TRUE(item.enroll());
    ASSERT_TRUE(item.withdraw());
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
}

TEST_F(LoginItemTest, EveryDesktopsWayToSwitchItOffIsRead) {
    using Status = LoginItemStatus;
    const EntryCase rows[] = {
        {"plain", "", Status::enabled},
        {"hidden", "Hidden=true\n", Status::requiresApproval},
        {"switchedOff", "X-GNOME-Autostart-enabled=false\n", Status::requiresApproval},
        {"switchedOffInMATE", "X-MATE-Autostart-enabled=false\n", Status::requiresApproval},
        {"forAnotherDesktop", "OnlyShowIn=KDE;XFCE;\n", Status::requiresApproval},
        {"forThisDesktop", "OnlyShowIn=KDE;GNOME;\n", Status::enabled},
        {"notForThisDesktop", "NotShowIn=GNOME;\n", Status::requiresApproval},
        {"notForAnother", "NotShowIn=KDE;\nHidden=false\n", Status::enabled},
    };
    const AutostartLoginItem item = itemFor(program);
    for (const EntryCase& row : rows) {
        writeEntry(QStringLiteral("[Desktop Entry]\nType=Application\nName=Vistrel\nExec=%1\n%2")
                       .arg(program, QString::fromLatin1(row.lines)));
        EXPECT_EQ(item.status(), row.status) << row.name;
    }
}

TEST_F(LoginItemTest, WhatCannotBeStartedIsNotFoundAndCanBeEnrolledAgain) {
    AutostartLoginItem item = itemFor(program);
    for (const char* text :
         {"", "no entry at all", "[Desktop Entry]\nName=Vistrel\n",
          "[Desktop Entry]\nExec=/nowhere/vistrel\n", "[Desktop Entry]\nExec=\"unclosed\n"}) {
        writeEntry(QString::fromLatin1(text));
        EXPECT_EQ(item.status(), LoginItemStatus::notFound) << text;
        ASSERT_TRUE(item.enroll());
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << text;
    }
}

TEST_F(LoginItemTest, ABareOrVanishedProgramIsNotFound) {
    AutostartLoginItem bare = itemFor(program, false);
    EXPECT_EQ(bare.status(), LoginItemStatus::notFound);
    EXPECT_FALSE(bare.enroll());
    AutostartLoginItem gone = itemFor(path(QStringLiteral("gone")));
    EXPECT_EQ(gone.status(), LoginItemStatus::notFound);
    EXPECT_FALSE(gone.enroll());
    EXPECT_FALSE(QFile::exists(entry()));
}

TEST_F(LoginItemTest, TheDesktopStartsProgramsWithAnyPath) {
    for (const QString& name :
         {QStringLiteral("plain"), QStringLiteral("with space"), QStringLiteral("a\"b$HOME`c\\d"),
          QStringLiteral("quote's;&|<>()#~*?"), QStringLiteral("Tür")}) {
        QFile::remove(log);
        const QString executable = makeProgram(path(name + QStringLiteral("/vistrel")), log);
        AutostartLoginItem item = itemFor(executable);
        ASSERT_TRUE(item.enroll());
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << qPrintable(name);
        GDesktopAppInfo* started =
            g_desktop_app_info_new_from_filename(QFile::encodeName(entry()).constData());
        ASSERT_NE(started, nullptr) << qPrintable(name);
        EXPECT_TRUE(g_app_info_launch(G_APP_INFO(started), nullptr, nullptr, nullptr)) << qPrintable(name);
        g_object_unref(started);
        EXPECT_TRUE(waitUntil([&] { return QFile::exists(log); })) << qPrintable(name);
        EXPECT_EQ(contents(log), executable + u'\n');
    }
}

TEST_F(LoginItemTest, APercentSignIsDoubled) {
    EXPECT_EQ(desktopEntryArgument(QStringLiteral("/a%f")), QStringLiteral("/a%%f"));
    const QString executable = makeProgram(path(QStringLiteral("100%f/vistrel")), log);
    AutostartLoginItem item = itemFor(executable);
    ASSERT_TRUE(item.enroll());
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, AFolderThatCannotBeWrittenIsAnError) {
    QDir().mkpath(path(QStringLiteral("config")));
    AutostartLoginItem item = itemFor(program);
    {
        const ReadOnlyFolder readOnly(folder.path(), QStringLiteral("config"));
        ASSERT_TRUE(readOnly.inForce());
        const Result<void> outcome = item.enroll();
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error().code, EACCES);
    }
    const ScopedEnvironment file("XDG_CONFIG_HOME", QFile::encodeName(program));
    EXPECT_EQ(item.status(), LoginItemStatus::notFound);
    EXPECT_FALSE(item.enroll());
}

TEST_F(LoginItemTest, SettingsPagesAreTriedInOrder) {
    const ScopedEnvironment programs("PATH",
                                     QFile::encodeName(path(QStringLiteral("bin"))) + ":/bin:/usr/bin");
    EXPECT_FALSE(DesktopSettingsPages(Desktop::unknown).open(SettingsPage::keyboardShortcuts));
    EXPECT_FALSE(DesktopSettingsPages(Desktop::xfce).open(SettingsPage::keyboardShortcuts));
    makeProgram(path(QStringLiteral("bin/systemsettings5")), log);
    EXPECT_TRUE(DesktopSettingsPages(Desktop::kde).open(SettingsPage::keyboardShortcuts));
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(log); }));
    EXPECT_EQ(contents(log), path(QStringLiteral("bin/systemsettings5\nkcm_keys\n")));
    QFile::remove(log);
    makeProgram(path(QStringLiteral("bin/systemsettings")), log);
    EXPECT_TRUE(DesktopSettingsPages(Desktop::kde).open(SettingsPage::loginItems));
    EXPECT_TRUE(waitUntil([&] { return QFile::exists(log); }));
    EXPECT_EQ(contents(log), path(QStringLiteral("bin/systemsettings\nkcm_autostart\n")));
}
