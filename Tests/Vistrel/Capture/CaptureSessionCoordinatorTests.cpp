#include "Capture/CaptureError.h"
#include "Capture/CaptureSessionCoordinator.h"
#include "Overlay/CaptureOverlayWindow.h"
#include "Support/EmptyDefaults.h"

#include <QPromise>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class FixedScreens : public ScreenList {
public:
    std::vector<Screen> screens() const override { return list; }
    QPoint pointerPosition() const override { return {400, 100}; }
    QScreen* toolkitScreen(const Screen&) const override { return nullptr; }

    std::vector<Screen> list = {{u"L"_s, 1, {0, 0, 320, 240}, 1}, {u"R"_s, 2, {320, 0, 320, 240}, 1}};
};

/// Widgets on the offscreen platform; the focused one is the one that asked last.
class PlainOverlayWindows : public OverlayWindows {
public:
    Qt::WindowFlags windowFlags() const override { return Qt::FramelessWindowHint; }
    void prepare(QWidget& window, const Screen& screen) override { window.setGeometry(screen.nativeRect); }
    void setFrozenPicture(QWidget&, std::shared_ptr<FrozenPicture>) override {}
    void show(const std::vector<QWidget*>& windows) override {
        for (QWidget* window : windows)
            window->show();
        shown = windows;
    }
    void hide(QWidget& window) override { window.hide(); }
    void setLevel(QWidget&, OverlayLevel) override {}
    void takeFocus(QWidget& window) override {
        focused = &window;
        window.activateWindow();
    }
    bool hasKeyboardFocus(const QWidget& window) const override { return focused == &window; }
    void prepareDialog(QWidget&) override {}

    std::vector<QWidget*> shown;
    QWidget* focused = nullptr;
};

/// Answers when the test says so.
class PendingScreenshots : public ScreenshotCapturing {
public:
    QFuture<Result<void>> prepare(std::vector<Screen>) override {
        return QtFuture::makeReadyFuture(Result<void>());
    }
    using Outcome = Result<std::vector<FrozenDisplay>>;

    QFuture<Outcome> capture(std::vector<Screen> asked, std::shared_ptr<CaptureTiming>,
                             std::stop_token) override {
        screens = std::move(asked);
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
    void answerWithPictures() {
        std::vector<FrozenDisplay> displays;
        for (const Screen& screen : screens) {
            QImage image(screen.nativeRect.size(), QImage::Format_RGB32);
            image.fill(Qt::darkGreen);
            displays.push_back({screen, *screen.displayID, {image, image, nullptr}});
        }
        answer(displays);
    }

    std::vector<Screen> screens;
    std::unique_ptr<QPromise<Outcome>> promise;
};

class CoordinatorTests : public ::testing::Test {
protected:
    void begin() { coordinator.begin(CaptureTime::now(), nullptr); }
    CaptureOverlayView& view(std::size_t index) {
        return static_cast<CaptureOverlayWindow*>(overlays.shown.at(index))->view();
    }

    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    FixedScreens screens;
    PlainOverlayWindows overlays;
    PendingScreenshots screenshots;
    std::vector<CaptureTiming::Report> saved;
    CaptureSessionCoordinator coordinator{
        {.screenshots = screenshots,
         .screens = screens,
         .overlayWindows = overlays,
         .preferences = preferences,
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
    bool told = false;
    coordinator.onError = [&](const Error&) { told = true; };
    begin();
    coordinator.close();
    screenshots.answerWithPictures();
    EXPECT_FALSE(coordinator.busy());
    EXPECT_FALSE(told);
    EXPECT_TRUE(overlays.shown.empty());
    EXPECT_TRUE(saved.empty());
}

TEST_F(CoordinatorTests, OnlyOneDisplayHoldsASelection) {
    begin();
    screenshots.answerWithPictures();
    ASSERT_TRUE(QTest::qWaitFor([this] { return overlays.shown.size() == 2; }));
    EXPECT_EQ(overlays.focused, overlays.shown[1]) << "the pointer is on the right display";
    const auto drag = [this](std::size_t index) {
        QTest::mousePress(&view(index), Qt::LeftButton, {}, {40, 40});
        QTest::mouseMove(&view(index), {200, 160});
        QTest::mouseRelease(&view(index), Qt::LeftButton, {}, {200, 160});
    };
    for (const std::size_t one : {0U, 1U}) {
        drag(one);
        EXPECT_GT(view(one).selection().width, 0);
        EXPECT_EQ(view(1 - one).selection().width, 0);
        EXPECT_EQ(overlays.focused, overlays.shown[one]);
    }
}
