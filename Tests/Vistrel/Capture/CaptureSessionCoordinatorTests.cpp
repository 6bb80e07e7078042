#include "Capture/CaptureError.h"
#include "Capture/CaptureSessionCoordinator.h"
#include "Capture/DialogKeys.h"
#include "Support/EmptyDefaults.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPromise>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class FixedScreens : public ScreenList {
public:
    std::vector<Screen> screens() const override { return {{u"L"_s, 1, {0, 0, 320, 240}, 1}}; }
    QPoint pointerPosition() const override { return {}; }
    QScreen* toolkitScreen(const Screen&) const override { return nullptr; }
};

class NoOverlayWindows : public OverlayWindows {
public:
    Qt::WindowFlags windowFlags() const override { return Qt::FramelessWindowHint; }
    void prepare(QWidget&, const Screen&) override {}
    void setFrozenPicture(QWidget&, std::shared_ptr<FrozenPicture>) override {}
    void show(const std::vector<QWidget*>&) override { ADD_FAILURE() << "nothing was captured"; }
    void hide(QWidget& window) override { window.hide(); }
    void setLevel(QWidget&, OverlayLevel) override {}
    void takeFocus(QWidget&) override {}
    bool hasKeyboardFocus(const QWidget&) const override { return false; }
    void prepareDialog(QWidget&) override {}
};

class NoClipboard : public ImageClipboard {
public:
    bool copyPNG(const QByteArray&) override { return false; }
};

/// Answers when the test says so.
class PendingScreenshots : public ScreenshotCapturing {
public:
    QFuture<Result<void>> prepare(std::vector<Screen>) override {
        return QtFuture::makeReadyFuture(Result<void>());
    }
    using Outcome = Result<std::vector<FrozenDisplay>>;

    QFuture<Outcome> capture(std::vector<Screen>, std::shared_ptr<CaptureTiming>, std::stop_token) override {
        promise = std::make_unique<QPromise<Outcome>>();
        promise->start();
        return promise->future();
    }
    void invalidatePreparation() override {}

    void answer(Outcome result) {
        promise->addResult(std::move(result));
        promise->finish();
        QCoreApplication::processEvents();
    }

    std::unique_ptr<QPromise<Outcome>> promise;
};

class CoordinatorTests : public ::testing::Test {
protected:
    void begin() { coordinator.begin(CaptureTime::now(), nullptr); }

    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    FixedScreens screens;
    NoOverlayWindows overlays;
    NoClipboard clipboard;
    PendingScreenshots screenshots;
    std::vector<CaptureTiming::Report> saved;
    CaptureSessionCoordinator coordinator{
        {.screenshots = screenshots,
         .screens = screens,
         .overlayWindows = overlays,
         .preferences = preferences,
         .clipboard = clipboard,
         .diagnostics = nullptr,
         .share = nullptr,
         .hasPermission = [] { return true; },
         .resetCursor = {},
         .saveMeasurement = [this](const CaptureTiming::Report& report) { saved.push_back(report); }}};
};

} // namespace

TEST_F(CoordinatorTests, ErrorsCloseTheCaptureAndReachTheUser) {
    const Error gone{ErrorDomain::windowSystem, 9, u"The display is gone."_s};
    const std::pair<PendingScreenshots::Outcome, Error> cases[] = {
        {tl::unexpected(gone), gone},
        {std::vector<FrozenDisplay>(), captureError(CaptureError::noDisplay)},
    };
    for (const auto& [answer, expected] : cases) {
        std::optional<Error> told;
        coordinator.onError = [&](const Error& error) { told = error; };
        begin();
        screenshots.answer(answer);
        EXPECT_FALSE(coordinator.busy());
        EXPECT_EQ(told, expected);
        EXPECT_EQ(saved.back().error, expected.description);
    }
}

TEST_F(CoordinatorTests, ClosingDuringTheCaptureSaysNothing) {
    coordinator.onError = [](const Error& error) { ADD_FAILURE() << error.description.toStdString(); };
    begin();
    coordinator.close();
    screenshots.answer(std::vector<FrozenDisplay>());
    EXPECT_FALSE(coordinator.busy());
    EXPECT_TRUE(saved.empty());
}

TEST_F(CoordinatorTests, AlertsNeitherPileUpNorBlockAnything) {
    const auto alerts = [] {
        std::vector<QWidget*> shown;
        std::ranges::copy_if(QApplication::topLevelWidgets(), std::back_inserter(shown), [](auto* widget) {
            return widget->objectName() == u"captureFailure"_s && widget->isVisible();
        });
        return shown;
    };
    for (int round = 0; round < 3; ++round) {
        begin();
        EXPECT_TRUE(alerts().empty()) << "what is asked for again has nothing to say yet";
        screenshots.answer(tl::unexpected(Error{ErrorDomain::windowSystem, round, u"Gone."_s}));
        ASSERT_EQ(alerts().size(), 1U);
        EXPECT_FALSE(alerts().front()->isModal());
    }
}

TEST(DialogKeysTests, ARepeatOfAHeldKeyAnswersNothing) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        QMessageBox box(QMessageBox::Warning, {}, u"Read me"_s, QMessageBox::Ok);
        DialogKeys::ignoreHeld(box);
        box.open();
        for (const bool repeat : {true, false}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, {}, repeat);
            QCoreApplication::sendEvent(box.windowHandle(), &press);
            EXPECT_EQ(box.isVisible(), repeat) << key;
        }
    }
}
