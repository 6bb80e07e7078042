#include "Updates/UpdateOfferDialog.h"
#include "Updates/UpdateProgressDialog.h"
#include "Updates/UpdateWindows.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

namespace {

UpdateOffer offerOf(bool installable) {
    UpdateOffer offer;
    offer.item.version = *UpdateVersion::parse(QStringLiteral("2.0"));
    offer.item.displayVersion = QStringLiteral("2.0 <b>");
    offer.item.notes = QStringLiteral("<p>Text <a href=\"https://example.org/\">link</a>"
                                      "<img src=\"file:///etc/hostname\"></p>");
    offer.item.link = QUrl(QStringLiteral("https://example.org/page"));
    offer.currentVersion = QStringLiteral("1.0");
    offer.installable = installable;
    return offer;
}

class UpdateWindowsTests : public ::testing::Test {
protected:
    template<class T>
    T* find(const char* name) const {
        return windows.window()->findChild<T*>(QLatin1String(name));
    }

    UpdateWindows windows;
};

TEST_F(UpdateWindowsTests, theChoiceIsReportedOnce) {
    for (const auto& [button, choice] : {std::pair("updateInstall", UpdateChoice::install),
                                         {"updateLater", UpdateChoice::remindLater},
                                         {"updateSkip", UpdateChoice::skip},
                                         {"", UpdateChoice::remindLater}}) {
        std::vector<UpdateChoice> choices;
        windows.showOffer(offerOf(true), [&](UpdateChoice chosen) { choices.push_back(chosen); });
        if (*button != '\0')
            QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
        else
            QTest::keyClick(windows.window(), Qt::Key_Escape);
        windows.dismiss();
        EXPECT_EQ(choices, std::vector{choice}) << button;
    }
}

TEST_F(UpdateWindowsTests, whatCannotBeInstalledLeadsToThePackageManagerOrThePage) {
    windows.showOffer(offerOf(false), {});
    EXPECT_EQ(find<QPushButton>("updateInstall"), nullptr);
    const QString text = find<QLabel>("updateDescription")->text();
    EXPECT_TRUE(text.contains(QStringLiteral("package manager")));
    EXPECT_TRUE(text.endsWith(QStringLiteral("is at https://example.org/page.")));
    QUrl opened;
    dynamic_cast<UpdateOfferDialog*>(windows.window())->onOpenPage = [&](const QUrl& page) { opened = page; };
    QTest::mouseClick(find<QPushButton>("updateOpenPage"), Qt::LeftButton);
    EXPECT_EQ(opened, QUrl(QStringLiteral("https://example.org/page")));
}

TEST_F(UpdateWindowsTests, notesAreShownAsTextAndLinksOpenOutside) {
    windows.showOffer(offerOf(true), {});
    auto* notes = find<QTextBrowser>("releaseNotes");
    ASSERT_NE(notes, nullptr);
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("Text link"));
    // The version is text, not markup.
    EXPECT_TRUE(find<QLabel>("updateDescription")->text().contains(QStringLiteral("2.0 <b>")));
    EXPECT_EQ(find<QLabel>("updateDescription")->textFormat(), Qt::PlainText);
    QList<QUrl> opened;
    dynamic_cast<UpdateOfferDialog*>(windows.window())->onOpenPage = [&](const QUrl& page) {
        opened << page;
    };
    Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("https://example.org/")));
    Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("file:///etc/passwd")));
    EXPECT_EQ(opened, QList{QUrl(QStringLiteral("https://example.org/"))});
}

TEST_F(UpdateWindowsTests, progressCanBeStoppedUntilInstallationBegins) {
    int cancelled = 0;
    windows.showDownload(QStringLiteral("2.0"), [&] { ++cancelled; });
    QDialog* dialog = windows.window();
    windows.showDownloadProgress(1 << 20, 4 << 20);
    EXPECT_EQ(find<QProgressBar>("updateProgressBar")->value(), 250);
    windows.showInstalling();
    EXPECT_EQ(windows.window(), dialog);
    EXPECT_FALSE(find<QPushButton>("updateCancel")->isEnabled());
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(cancelled, 0);

    windows.showCheck([&] { ++cancelled; });
    QTest::mouseClick(find<QPushButton>("updateCancel"), Qt::LeftButton);
    EXPECT_EQ(cancelled, 1);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(UpdateWindowsTests, relaunchMayWaitAndErrorsAreTold) {
    std::vector<bool> answers;
    windows.showInstalled(QStringLiteral("2.0"), [&](bool relaunch) { answers.push_back(relaunch); });
    QTest::keyClick(windows.window(), Qt::Key_Escape);
    EXPECT_EQ(answers, std::vector{false});
    windows.showError({QString(), 1, QStringLiteral("It failed.")});
    EXPECT_EQ(dynamic_cast<QMessageBox*>(windows.window())->informativeText(), QStringLiteral("It failed."));
    windows.showUpToDate(QStringLiteral("1.0"));
    EXPECT_FALSE(windows.window()->accessibleName().isEmpty());
}

} // namespace
