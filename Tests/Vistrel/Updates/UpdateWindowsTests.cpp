#include "Updates/UpdateOfferDialog.h"
#include "Updates/UpdateProgressDialog.h"
#include "Updates/UpdateWindows.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

UpdateOffer offerOf(bool installable) {
    UpdateOffer offer;
    offer.item.version = *UpdateVersion::parse(u"2.0"_s);
    offer.item.displayVersion = u"2.0 <b>"_s;
    offer.item.notes = u"<p>Text <a href=\"https://example.org/\">link</a>"
                       "<img src=\"file:///etc/hostname\"></p>"_s;
    offer.item.link = QUrl(u"https://example.org/page"_s);
    offer.currentVersion = u"1.0"_s;
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
    EXPECT_TRUE(text.contains(u"package manager"_s));
    EXPECT_TRUE(text.endsWith(u"is at https://example.org/page."_s));
}

TEST_F(UpdateWindowsTests, notesAreShownAsTextAndLinksOpenOutside) {
    windows.showOffer(offerOf(true), {});
    auto* notes = find<QTextBrowser>("releaseNotes");
    ASSERT_NE(notes, nullptr);
    EXPECT_EQ(notes->toPlainText(), u"Text link"_s);
    // The version is text, not markup.
    EXPECT_TRUE(find<QLabel>("updateDescription")->text().contains(u"2.0 <b>"_s));
    EXPECT_EQ(find<QLabel>("updateDescription")->textFormat(), Qt::PlainText);
    QList<QUrl> opened;
    dynamic_cast<UpdateOfferDialog*>(windows.window())->onOpenPage = [&](const QUrl& page) {
        opened << page;
    };
    Q_EMIT notes->anchorClicked(QUrl(u"https://example.org/"_s));
    Q_EMIT notes->anchorClicked(QUrl(u"file:///etc/passwd"_s));
    EXPECT_EQ(opened, QList{QUrl(u"https://example.org/"_s)});
}

TEST_F(UpdateWindowsTests, progressCanBeStoppedUntilInstallationBegins) {
    int cancelled = 0;
    windows.showDownload(u"2.0"_s, [&] { ++cancelled; });
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

} // namespace

TEST_F(UpdateWindowsTests, noneStopsACaptureThatItLiesUnder) {
    const std::function<void()> rows[] = {
        [&] { windows.showCheck({}); }, [&] { windows.showUpToDate(u"1.0"_s); },
        [&] { windows.showOffer(offerOf(true), {}); }, [&] { windows.showInstalled(u"2.0"_s, [](bool) {}); },
        [&] {
            windows.showError({ErrorDomain::system, 1, u"Broken."_s});
        }};
    for (const auto& show : rows) {
        show();
        EXPECT_FALSE(windows.window()->isModal()) << windows.window()->windowTitle().toStdString();
    }
}
