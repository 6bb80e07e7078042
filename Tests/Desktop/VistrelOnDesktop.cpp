#include "Desktop/VistrelOnDesktop.h"

#include "Support/TestFiles.h"

#include <QColorSpace>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace {
const QMap<char, KeyCode> letterKeys = {{'a', 0}, {'s', 1}, {'z', 6}, {'x', 7}, {'c', 8}, {'v', 9}};
} // namespace

VistrelOnDesktop::VistrelOnDesktop(const DesktopSession::Options& options, const QJsonObject& stored)
    : session(options),
      programPath(qEnvironmentVariable("VISTREL_PROGRAM", QStringLiteral(VISTREL_BUILT_PROGRAM))) {
    QJsonObject all{{QStringLiteral("onboardingVersion"), 2}, {QStringLiteral("onboardingComplete"), true}};
    for (auto entry = stored.begin(); entry != stored.end(); ++entry)
        all.insert(entry.key(), entry.value());
    setDefaults(all);
}

void VistrelOnDesktop::launch(const QStringList& arguments) {
    const int launches = count("launch");
    program = startProgram(arguments);
    ASSERT_TRUE(waitFor("launch", launches + 1));
}

void VistrelOnDesktop::start() {
    launch();
    // A shortcut is stored as soon as it is registered.
    ASSERT_TRUE(waitUntil([&] { return readFile(defaultsPath()).contains("screenshotShortcuts"); }))
        << program->standardError().constData();
}

std::optional<int> VistrelOnDesktop::end() {
    program->sendSignal(SIGTERM);
    const std::optional<int> status = program->waitForExit(patience);
    EXPECT_GE(status.value_or(-1), 0) << program->standardError().constData();
    return status;
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
    constexpr KeyCode nineKey = 25;
    key(nineKey, Modifier::command | Modifier::shift);
}

bool VistrelOnDesktop::capture() {
    const int before = count("captureReady");
    pressShortcut();
    return isReady(before + 1);
}

bool VistrelOnDesktop::isReady(int times) {
    return waitFor("captureReady", times) && waitUntil([this] {
               const auto all = windows();
               const auto front = std::ranges::find(all, session.client().focusedWindow(), &MappedWindow::id);
               return front != all.end() && front->overrideRedirect;
           });
}

bool VistrelOnDesktop::select(QRect area) {
    const int before = count("selectionCreated");
    session.input().drag(area.topLeft(), area.topLeft() + QPoint(area.width(), area.height()));
    return waitFor("selectionCreated", before + 1);
}

QImage VistrelOnDesktop::copy() {
    const int before = count("captureClosed");
    command('c');
    EXPECT_TRUE(waitFor("captureClosed", before + 1));
    return clipboardImage();
}

bool VistrelOnDesktop::closeCapture() {
    const int before = count("captureClosed");
    key(Key::escape);
    return waitFor("captureClosed", before + 1);
}

void VistrelOnDesktop::command(char letter) {
    key(letterKeys.value(letter), Modifier::control);
}

std::vector<QJsonObject> VistrelOnDesktop::events() const {
    std::vector<QJsonObject> result;
    const QByteArray content = readFile(journalFolder() + QStringLiteral("/events.jsonl"));
    // The last line may be on its way to the disk while it is read.
    for (const QByteArray& line : content.first(content.lastIndexOf('\n') + 1).split('\n')) {
        if (line.isEmpty())
            continue;
        QJsonObject event = QJsonDocument::fromJson(line).object();
        EXPECT_FALSE(event.isEmpty()) << line.constData();
        const bool isLate =
            event[u"action"] == QStringLiteral("captureFailed") && event[u"details"][u"displays"].toInt() > 0;
        if (isLate)
            event[u"action"] = QStringLiteral("captureReady");
        result.push_back(event);
    }
    return result;
}

QStringList VistrelOnDesktop::actions() const {
    QStringList names;
    for (const QJsonObject& event : events())
        names << event[u"action"].toString();
    names.removeAll(QStringLiteral("capturePhase"));
    return names;
}

QJsonObject VistrelOnDesktop::details(const char* action) const {
    QJsonObject result;
    for (const QJsonObject& event : events())
        if (event[u"action"] == QLatin1String(action))
            result = event[u"details"].toObject();
    return result;
}

bool VistrelOnDesktop::waitFor(const char* action, int times) {
    const bool seen = waitUntil([&] { return count(action) >= times; });
    if (!seen)
        ADD_FAILURE() << "waited for " << action << ", the journal has " << story() << '\n'
                      << (program ? program->standardError().constData() : "");
    return seen;
}

QJsonObject VistrelOnDesktop::defaults() const {
    return QJsonDocument::fromJson(readFile(defaultsPath())).object();
}

void VistrelOnDesktop::setDefaults(const QJsonObject& all) {
    writeFile(defaultsPath(), QJsonDocument(all).toJson());
}

QString VistrelOnDesktop::storedShortcut() const {
    const QString data = defaults()[u"screenshotShortcuts"][u"data"].toString();
    QStringList labels;
    for (const auto& shortcut : QJsonDocument::fromJson(QByteArray::fromBase64(data.toLatin1())).array())
        labels << QStringLiteral("%1+%2")
                      .arg(shortcut[u"modifiers"].toInt())
                      .arg(shortcut[u"keyLabel"].toString());
    return labels.join(u' ');
}

QImage VistrelOnDesktop::clipboardImage() {
    return pictureIn(session.clipboard(QStringLiteral("image/png")).value_or(QByteArray()));
}

QImage VistrelOnDesktop::settled(QRect part, int looks) {
    QImage last;
    int alike = 0;
    EXPECT_TRUE(waitUntil([&] {
        const QImage now = session.screenPixels(part);
        alike = now == last ? alike + 1 : 0;
        last = now;
        return alike >= looks;
    }));
    return last;
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

QRect VistrelOnDesktop::focusedRect() {
    const xcb_window_t focused = session.client().focusedWindow();
    for (const MappedWindow& window : session.client().mappedWindows())
        if (window.id == focused)
            return window.rect;
    return {};
}

std::vector<MappedWindow> VistrelOnDesktop::windows() {
    std::vector<MappedWindow> all = session.client().mappedWindows();
    std::erase_if(all, [](const MappedWindow& window) {
        return window.rect.width() < 20 || window.rect.height() < 20 || window.rect.right() < 0 ||
               window.rect.bottom() < 0;
    });
    return all;
}

bool VistrelOnDesktop::opens(const QString& title) {
    return waitUntil([&] {
        const auto window = session.client().windowTitled(title);
        return window && session.client().focusedWindow() == window->id;
    });
}

bool VistrelOnDesktop::closes(const QString& title) {
    return waitUntil([&] { return !isOpen(title); });
}

bool VistrelOnDesktop::openSettings(int tab) {
    if (runAgain() != 0 || !opens(settingsWindow))
        return false;
    for (int step = 0; step < tab; ++step)
        key(Key::rightArrow);
    return true;
}

bool VistrelOnDesktop::isFree(ServerChord chord) {
    const bool free = session.client().grabKey(chord.state, chord.scanCode) == 0;
    session.client().ungrabKey(chord.state, chord.scanCode);
    return free;
}

QImage pictureIn(const QByteArray& encoded) {
    QImage picture = QImage::fromData(encoded).convertToFormat(QImage::Format_RGB32);
    picture.setColorSpace({});
    return picture;
}

QRgb dimmed(QRgb pixel) {
    const auto channel = [](int value) { return qRound(value * 0.6 + 0.3 * 255 * 0.4); };
    return qRgb(channel(qRed(pixel)), channel(qGreen(pixel)), channel(qBlue(pixel)));
}
