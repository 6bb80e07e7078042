#include "Desktop/VistrelOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <random>

namespace {
constexpr KeyCode digitNine = 25;
const QMap<char, KeyCode> letterKeys = {{'a', 0}, {'s', 1}, {'z', 6}, {'x', 7}, {'c', 8}, {'v', 9}};
} // namespace

VistrelOnDesktop::VistrelOnDesktop(const DesktopSession::Options& options, const QJsonObject& defaults)
    : session(options),
      programPath(qEnvironmentVariable("VISTREL_PROGRAM", QStringLiteral(VISTREL_BUILT_PROGRAM))) {
    QJsonObject all{{QStringLiteral("onboardingVersion"), 2}, {QStringLiteral("onboardingComplete"), true}};
    for (auto key = defaults.begin(); key != defaults.end(); ++key)
        all.insert(key.key(), key.value());
    QDir().mkpath(session.configHome() + QStringLiteral("/Vistrel"));
    QFile file(session.configHome() + QStringLiteral("/Vistrel/defaults.json"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QJsonDocument(all).toJson());
}

void VistrelOnDesktop::start() {
    const auto launches = actions().count(QStringLiteral("launch"));
    program = startProgram();
    ASSERT_TRUE(waitFor(QStringLiteral("launch"), static_cast<int>(launches) + 1))
        << program->standardError().constData();
    // A shortcut is stored as soon as it is registered.
    QFile defaults(session.configHome() + QStringLiteral("/Vistrel/defaults.json"));
    ASSERT_TRUE(waitUntil([&] {
        const bool stored =
            defaults.open(QIODevice::ReadOnly) && defaults.readAll().contains("screenshotShortcuts");
        defaults.close();
        return stored;
    })) << program->standardError().constData();
}

std::unique_ptr<ChildProgram> VistrelOnDesktop::startProgram(const QStringList& arguments) {
    return session.start(programPath, arguments);
}

std::optional<int> VistrelOnDesktop::runAgain(const QStringList& arguments, QByteArray* output) {
    const auto second = startProgram(arguments);
    const std::optional<int> status = second->waitForExit(patience);
    if (output)
        *output = second->standardOutput();
    return status;
}

void VistrelOnDesktop::pressShortcut() {
    session.input().chord(Modifier::command | Modifier::shift, digitNine);
}

bool VistrelOnDesktop::capture() {
    pressShortcut();
    return waitFor(QStringLiteral("captureReady"), ++captures);
}

void VistrelOnDesktop::command(char letter) {
    session.input().chord(Modifier::control, letterKeys.value(letter));
}

std::vector<QJsonObject> VistrelOnDesktop::events() const {
    QFile file(journalFolder() + QStringLiteral("/events.jsonl"));
    std::vector<QJsonObject> result;
    if (!file.open(QIODevice::ReadOnly))
        return result;
    const QByteArray content = file.readAll();
    // The last line may be on its way to the disk while it is read.
    for (const QByteArray& line : content.first(content.lastIndexOf('\n') + 1).split('\n')) {
        if (line.isEmpty())
            continue;
        const QJsonObject event = QJsonDocument::fromJson(line).object();
        EXPECT_FALSE(event.isEmpty()) << line.constData();
        result.push_back(event);
    }
    return result;
}

QStringList VistrelOnDesktop::actions() const {
    QStringList names;
    for (const QJsonObject& event : events()) {
        const QString action = event[QLatin1StringView("action")].toString();
        if (action != QLatin1StringView("capturePhase"))
            names << action;
    }
    return names;
}

bool VistrelOnDesktop::waitFor(const QString& action, int times) {
    const bool seen = waitUntil([&] { return actions().count(action) >= times; });
    if (!seen)
        ADD_FAILURE() << "waited for " << action.toStdString() << ", the journal has "
                      << actions().join(u' ').toStdString()
                      << (program ? program->standardError().constData() : "");
    return seen;
}

xcb_window_t VistrelOnDesktop::nextFocus(xcb_window_t before) {
    xcb_window_t focused = XCB_NONE;
    const bool found = waitUntil([&] {
        XClient& client = session.client();
        focused = client.focusedWindow();
        if (focused <= XCB_INPUT_FOCUS_POINTER_ROOT || focused == before || focused == client.root())
            return false;
        const auto owner = client.windowProperty(focused, "_NET_WM_PID");
        return !owner.empty() && static_cast<pid_t>(owner.front()) == program->id();
    });
    return found ? focused : XCB_NONE;
}

std::vector<MappedWindow> VistrelOnDesktop::windows() {
    std::vector<MappedWindow> all = session.client().mappedWindows();
    std::erase_if(all, [](const MappedWindow& window) {
        return window.rect.width() < 20 || window.rect.height() < 20 || window.rect.right() < 0 ||
               window.rect.bottom() < 0;
    });
    return all;
}

bool VistrelOnDesktop::openSettings(int tab) {
    if (runAgain({}) != 0 || nextFocus() == XCB_NONE)
        return false;
    for (int step = 0; step < tab; ++step)
        session.input().key(Key::rightArrow);
    return true;
}

QImage VistrelOnDesktop::clipboardImage() {
    return QImage::fromData(session.clipboard(QStringLiteral("image/png")).value_or(QByteArray()), "PNG");
}

QImage noise(QSize size) {
    std::mt19937 random(7);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = 0xFF000000 | static_cast<QRgb>(random());
    }
    return picture;
}

QRgb dimmed(QRgb pixel) {
    const auto channel = [](int value) { return qRound(value * 0.6 + 0.3 * 255 * 0.4); };
    return qRgb(channel(qRed(pixel)), channel(qGreen(pixel)), channel(qBlue(pixel)));
}

int largestDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull())
        return 255;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                std::abs(qBlue(p) - qBlue(q))});
        }
    return largest;
}
