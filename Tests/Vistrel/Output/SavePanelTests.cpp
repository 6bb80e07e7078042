#include "Output/SavePanel.h"
#include "Support/TestFiles.h"

#include <QAbstractButton>
#include <QAbstractFileIconProvider>
#include <QAbstractItemView>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QDateTime moment = QDateTime(QDate(2026, 11, 16), QTime(10, 15), Qt::UTC);

class SavePanelTest : public testing::Test {
protected:
    void SetUp() override {
        panel.prepareDialog = [this](QWidget& shown) {
            EXPECT_FALSE(shown.isVisible());
            prepared.append(shown.objectName());
        };
        overlay.resize(800, 600);
        overlay.show();
    }

    void open(ScreenshotSaveFormat format = ScreenshotSaveFormat::png) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        panel.open(overlay, format, moment,
                   [this](const std::optional<QString>& path) { answers.append(path); });
        dialog()->setDirectory(folder.path());
    }
    QFileDialog* dialog() { return overlay.findChild<QFileDialog*>(u"savePanel"_s); }
    QLineEdit* nameField() { return dialog()->findChild<QLineEdit*>(u"fileNameEdit"_s); }
    void typeName(const QString& name) {
        nameField()->setText(name);
        QTest::keyClick(nameField(), Qt::Key_Return);
    }
    QMessageBox* question() { return dialog()->findChild<QMessageBox*>(u"replaceFile"_s); }

    QTemporaryDir folder;
    QWidget overlay;
    SavePanel panel;
    QStringList prepared;
    QList<std::optional<QString>> answers;
};

} // namespace

TEST(SuggestedFileName, IsTheMomentInUTCWithoutColons) {
    EXPECT_EQ(suggestedFileName(ScreenshotSaveFormat::png, moment), u"Vistrel-2026-11-16T10-15-00Z.png"_s);
    const QDateTime elsewhere(QDate(2026, 3, 1), QTime(1, 2, 3, 999), QTimeZone(3600));
    EXPECT_EQ(suggestedFileName(ScreenshotSaveFormat::jpg, elsewhere), u"Vistrel-2026-03-01T00-02-03Z.jpg"_s);
}

TEST_F(SavePanelTest, ConfirmedNamesEndInTheFormatsSuffix) {
    const std::tuple<ScreenshotSaveFormat, const char*, const char*> rows[] = {
        {ScreenshotSaveFormat::png, "shot", "shot.png"},
        {ScreenshotSaveFormat::png, "shot.PNG", "shot.PNG"},
        {ScreenshotSaveFormat::png, "v1.2", "v1.2.png"},
        {ScreenshotSaveFormat::png, "shot.jpg", "shot.png"},
        {ScreenshotSaveFormat::jpg, "pic.png", "pic.jpg"},
        {ScreenshotSaveFormat::jpg, "shot.jpeg", "shot.jpeg"}};
    for (const auto& [format, typed, saved] : rows) {
        open(format);
        typeName(QString::fromLatin1(typed));
        ASSERT_EQ(answers.size(), 1) << typed;
        EXPECT_EQ(answers.takeFirst(), folder.filePath(QString::fromLatin1(saved))) << typed;
        EXPECT_FALSE(panel.isOpen()) << typed;
    }
}

TEST_F(SavePanelTest, ReplacingIsAskedAndCancelKeepsThePanelOpen) {
    writeFile(folder.filePath(u"there.png"_s), "old");
    open();
    typeName(u"there"_s);
    EXPECT_TRUE(answers.isEmpty());
    QMessageBox* const box = question();
    ASSERT_TRUE(box && box->isVisible());
    EXPECT_EQ(prepared.last(), u"replaceFile"_s);
    // The harmless answer is the one that Return gives.
    EXPECT_TRUE(box->defaultButton() == box->button(QMessageBox::Cancel));
    box->button(QMessageBox::Cancel)->click();
    EXPECT_TRUE(answers.isEmpty());
    EXPECT_TRUE(dialog()->isVisible());

    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    typeName(u"there"_s);
    question()->findChild<QAbstractButton*>(u"replace"_s)->click();
    ASSERT_EQ(answers.size(), 1);
    EXPECT_EQ(answers.first(), folder.filePath(u"there.png"_s));
}

TEST_F(SavePanelTest, ItMayBeTakenAwayAtAnyTime) {
    open();
    panel.cancel();
    EXPECT_FALSE(panel.isOpen());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(answers.isEmpty()) << "cancelled from outside it says nothing";

    auto owned = std::make_unique<SavePanel>();
    bool called = false;
    owned->open(overlay, ScreenshotSaveFormat::png, moment, [&](auto) {
        owned.reset();
        called = true;
    });
    dialog()->reject();
    EXPECT_TRUE(called);
}

TEST_F(SavePanelTest, NeitherLooksIntoFilesNorRunsALoopOfItsOwn) {
    const QString file = folder.filePath(u"unnamed"_s);
    QImage(1, 1, QImage::Format_RGB32).save(file, "PNG");
    open();
    EXPECT_FALSE(dialog()->iconProvider()->type(QFileInfo(file)).contains(u"PNG"_s));
    for (const auto* view : dialog()->findChildren<QAbstractItemView*>())
        EXPECT_TRUE(view->contextMenuPolicy() == Qt::NoContextMenu && !view->dragEnabled())
            << view->objectName().toStdString();
}

TEST_F(SavePanelTest, LeavesNoTraceInTheToolkitsSettings) {
    const QString file = QSettings(QSettings::NativeFormat, QSettings::UserScope, u"QtProject"_s).fileName();
    QFile::remove(file);
    open();
    typeName(u"secret-project"_s);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(QFile::exists(file));
}
