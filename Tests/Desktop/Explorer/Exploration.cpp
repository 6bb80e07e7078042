#include "Desktop/Explorer/Exploration.h"

#include "Support/TestFiles.h"
#include "VistrelPlatform/KeyCodes.h"

#include <algorithm>
#include <thread>

namespace {

constexpr std::chrono::seconds soon{8};
/// Longer than the toolkit takes two presses for a double click.
constexpr std::chrono::milliseconds doubleClickInterval{450};
constexpr int doubleClickReach = 30;

QRect displayRect(std::size_t index) {
    return index == 0 ? QRect(0, 0, 1200, 720) : QRect(1200, 0, 960, 720);
}

QString names(const std::vector<double>& scales) {
    QStringList parts;
    for (std::size_t index = 0; index < scales.size(); ++index)
        parts << QStringLiteral("%1=%2").arg(QChar(index == 0 ? u'L' : u'R')).arg(scales[index]);
    return parts.join(u';');
}

} // namespace

Exploration::Setup Exploration::Setup::of(unsigned seed) {
    constexpr double some[] = {1, 1.25, 1.5, 2};
    std::mt19937 random(seed);
    Setup setup;
    setup.scales = {some[pick(random, 4)]};
    if (pick(random, 3) == 0)
        setup.scales.push_back(some[pick(random, 4)]);
    setup.windowManager = pick(random, 2) == 0;
    return setup;
}

QString Exploration::Setup::text() const {
    return QStringLiteral("%1 %2").arg(names(scales), windowManager ? QStringLiteral("openbox")
                                                                    : QStringLiteral("no window manager"));
}

DesktopSession::Options Exploration::desktopFor(const Setup& setup) {
    DesktopSession::Options options;
    QRect all;
    for (std::size_t index = 0; index < setup.scales.size(); ++index) {
        options.monitors.push_back(
            {index == 0 ? QStringLiteral("L") : QStringLiteral("R"), displayRect(index)});
        all |= displayRect(index);
    }
    options.screenSize = all.size();
    options.scaleFactors = names(setup.scales);
    options.windowManager = setup.windowManager;
    return options;
}

Exploration::Exploration(const Setup& setup)
    : vistrel(desktopFor(setup), {{QStringLiteral("downscaleRetinaScreenshots"), false}}),
      bystander(vistrel.session.displayName()) {
    desktop = noise(vistrel.session.client().screenSize());
    vistrel.session.client().setRootPicture(desktop);
    vistrel.session.client().setKeyRepeat(false);
    for (std::size_t index = 0; index < setup.scales.size(); ++index)
        rules.addDisplay(displayRect(index), setup.scales[index]);
}

std::optional<QString> Exploration::run(const std::vector<Step>& steps) {
    vistrel.start();
    movePointer({600, 360});
    int number = 0;
    try {
        for (const Step& step : steps) {
            ++number;
            if (!rules.isOpen())
                beginCapture(step);
            perform(step);
            check();
            if (rules.dialog != Rules::Dialog::none) {
                dismissDialog(step);
                check();
            }
            if (!rules.isOpen())
                checkClosed();
            if (tells)
                tell(step);
        }
        leave();
        end();
    } catch (const Disagreement& disagreement) {
        return QStringLiteral("at step %1: %2").arg(number).arg(disagreement.what);
    }
    return std::nullopt;
}

void Exploration::tell(const Step& step) {
    const Rules::Receiver over = rules.at(rules.pointer);
    qInfo().noquote() << "   " << step.describe() << "at" << rules.pointer.x() << rules.pointer.y() << "part"
                      << over.part << over.shown.kind << over.shown.index << "->"
                      << rules.journal.mid(std::exchange(toldBefore, rules.journal.size())).join(u' ');
}

// The keys of the shortcut go up in any order.
void Exploration::pressShortcut(const Step& step) {
    XTestInput& input = vistrel.session.input();
    std::vector<KeyCode> keys = {55, 56, 25};
    for (const KeyCode key : keys)
        input.pressKey(key);
    for (int order = int(step.x * 6); order > 0; --order)
        std::ranges::next_permutation(keys);
    for (const KeyCode key : keys)
        input.releaseKey(key);
}

void Exploration::beginCapture(const Step& step) {
    letGo();
    expect(waitUntil([this] { return bystander.hasKeyboard(); }, soon),
           QStringLiteral("the keyboard was not given back"));
    rules.begin(vistrel.settled({}, 3));
    pressShortcut(step);
    checkJournal();
    bystander.keys();
    check();
    // Most of what there is to do needs a selection.
    if (step.y > 0.8)
        return;
    move({.act = Step::move, .what = Step::anywhere, .x = 0.1 + 0.3 * step.x, .y = 0.1 + 0.3 * step.y});
    press(1);
    move({.act = Step::move, .what = Step::anywhere, .x = 0.5 + 0.4 * step.y, .y = 0.5 + 0.4 * step.x});
    check();
    release(1);
    check();
}

void Exploration::perform(const Step& step) {
    switch (step.act) {
    case Step::move:
        return move(step);
    case Step::press:
        return press(step.what);
    case Step::release:
        return release(step.what);
    case Step::doublePress:
        return doublePress();
    case Step::wheel:
        vistrel.session.input().pressButton(step.what);
        return vistrel.session.input().releaseButton(step.what);
    case Step::keyDown:
        return keyDown(step.what);
    case Step::keyUp:
        return keyUp(step.what);
    case Step::requestAgain:
        return requestAgain(step);
    case Step::stealFocus:
        return stealFocus();
    case Step::cover:
        return cover(step);
    }
}

void Exploration::move(const Step& step) {
    movePointer(resolve(step));
}

void Exploration::movePointer(QPoint to) {
    if (to == rules.pointer)
        return;
    vistrel.session.input().movePointer(to);
    rules.movePointer(to);
}

void Exploration::press(int button) {
    if (rules.isPressed(button))
        return;
    if (!rules.hasGesture())
        movePointer(sure(rules.pointer));
    if ((rules.pointer - lastPressAt).manhattanLength() < doubleClickReach)
        std::this_thread::sleep_until(lastPress + doubleClickInterval);
    lastPress = std::chrono::steady_clock::now();
    lastPressAt = rules.pointer;
    vistrel.session.input().pressButton(button);
    rules.press(button);
}

void Exploration::doublePress() {
    if (rules.hasGesture())
        return;
    press(1);
    const auto first = rules.at(rules.pointer).part;
    check();
    if (!rules.isPressed(1) || !rules.isOpen() || rules.dialog != Rules::Dialog::none)
        return;
    release(1);
    if (!rules.isOpen() || rules.dialog != Rules::Dialog::none ||
        std::chrono::steady_clock::now() - lastPress > doubleClickInterval / 2)
        return;
    // What was pressed may be gone, and something else be there that makes a new beginning of it.
    if (sure(rules.pointer) != rules.pointer)
        return;
    const bool onCanvas = rules.at(rules.pointer).part == Rules::Receiver::canvas;
    vistrel.session.input().pressButton();
    rules.press(1, first == Rules::Receiver::canvas || !onCanvas ? 2 : 1);
    lastPress = std::chrono::steady_clock::now();
}

void Exploration::release(int button) {
    if (!rules.isPressed(button))
        return;
    vistrel.session.input().releaseButton(button);
    rules.release(button);
}

ModifierMask Exploration::modifiers() const {
    ModifierMask mask = 0;
    for (const int held : heldKeys)
        mask |= handKeys()[std::size_t(held)].modifier;
    return mask;
}

void Exploration::keyDown(int key) {
    const HandKey& pressed = handKeys()[std::size_t(key)];
    if (heldKeys.contains(key) || (rules.holdsControl() && !pressed.modifier))
        return;
    const ModifierMask mask = modifiers();
    Qt::KeyboardModifiers qtModifiers;
    qtModifiers.setFlag(Qt::ControlModifier, mask & Modifier::control);
    qtModifiers.setFlag(Qt::ShiftModifier, mask & Modifier::shift);
    qtModifiers.setFlag(Qt::MetaModifier, mask & Modifier::command);
    const char16_t typed = mask & Modifier::shift ? pressed.shifted : pressed.plain;
    const char16_t character = mask & Modifier::control && QChar(typed).isLetter() ? typed & 0x1F : typed;
    QKeyEvent event(QEvent::KeyPress, pressed.qtKey, qtModifiers, *scanCodeForKeyCode(pressed.code), 0, 0,
                    character ? QString(QChar(character)) : QString());
    heldKeys.insert(key);
    vistrel.session.input().pressKey(pressed.code);
    rules.key(event);
}

void Exploration::keyUp(int key) {
    if (heldKeys.remove(key))
        vistrel.session.input().releaseKey(handKeys()[std::size_t(key)].code);
}

void Exploration::letGo() {
    for (const int button : {1, 2, 3})
        release(button);
    for (const int key : QSet(heldKeys))
        keyUp(key);
}

void Exploration::requestAgain(const Step& step) {
    if (!heldKeys.isEmpty())
        return;
    pressShortcut(step);
    rules.requestAgain();
}

void Exploration::stealFocus() {
    bystander.takeKeyboard();
    const std::size_t index = rules.displayAt(rules.keyDisplay().rect.center());
    expect(waitUntil([&] { return vistrel.session.client().focusedWindow() == overlayOn(index); }, soon),
           QStringLiteral("the overlay did not take the keyboard back"));
}

void Exploration::cover(const Step& step) {
    const QRect over(rules.pointer + QPoint(-int(150 * step.x), -int(150 * step.y)), QSize(160, 160));
    const xcb_window_t window = bystander.cover(over);
    const bool below = waitUntil(
        [&] {
            for (std::size_t index = 0; index < rules.displayCount(); ++index)
                for (const MappedWindow& above : windowsAbove(overlayOn(index)))
                    if (above.id == window)
                        return false;
            return true;
        },
        soon);
    bystander.uncover(window);
    expect(below, QStringLiteral("a window of another program stays above the overlay"));
}

xcb_window_t Exploration::windowOver(xcb_window_t overlay, xcb_window_t other) {
    constexpr int leastWidth = 60; // Of a menu without a word in it.
    xcb_window_t found = XCB_NONE;
    expect(waitUntil(
               [&] {
                   for (const MappedWindow& window : windowsAbove(overlay))
                       if (window.rect.width() > leastWidth && window.id != other)
                           found = window.id;
                   return found != XCB_NONE;
               },
               soon),
           QStringLiteral("no dialog opened"));
    waitUntil([&] { return vistrel.session.client().focusedWindow() == found; }, std::chrono::seconds(1));
    return found;
}

void Exploration::escape(xcb_window_t window) {
    vistrel.session.input().key(Key::escape);
    expect(waitUntil(
               [&] {
                   return std::ranges::none_of(vistrel.session.client().mappedWindows(),
                                               [&](const auto& mapped) { return mapped.id == window; });
               },
               soon),
           QStringLiteral("Escape does not close the dialog"));
}

void Exploration::dismissDialog(const Step& step) {
    const Rules::Dialog dialog = rules.dialog;
    const xcb_window_t overlay = overlayOn(rules.displayAt(rules.keyDisplay().rect.center()));
    const xcb_window_t window = windowOver(overlay);
    letGo();
    if (dialog == Rules::Dialog::save && step.y < 0.6) {
        const bool replaces = step.y < 0.3 && !lastSaved.isEmpty();
        const QString path =
            replaces ? lastSaved
                     : vistrel.session.folder(QString::number(told.size())) + QStringLiteral(".png");
        vistrel.command('a');
        vistrel.type(path);
        vistrel.key(Key::returnKey);
        if (!replaces) {
            lastSaved = path;
            rules.dialogEnded(QStringLiteral("saveSucceeded"));
            checkJournal();
            return expect(pictureIn(readFile(path)) == rules.saved.convertToFormat(QImage::Format_RGB32),
                          QStringLiteral("the file has another picture"));
        }
        escape(windowOver(overlay, window));
    }
    escape(window);
    rules.dialogEnded(dialog == Rules::Dialog::save ? QStringLiteral("saveCancelled")
                                                    : QStringLiteral("shareCancelled"));
    if (dialog == Rules::Dialog::color)
        rules.keyDisplay().editor.layers.returnFocus();
    else
        rules.keyDisplay().editor.session.hooks.focusCanvas();
    expect(waitUntil([&] { return vistrel.session.client().focusedWindow() == overlay; }, soon),
           QStringLiteral("the overlay did not get the keyboard back from the dialog"));
}

void Exploration::leave() {
    constexpr int mostEscapes = 3;
    letGo();
    for (int escapes = 0; rules.isOpen() && escapes < mostEscapes; ++escapes) {
        keyDown(handKey(Key::escape));
        keyUp(handKey(Key::escape));
        check();
    }
    expect(!rules.isOpen(), QStringLiteral("Escape does not lead out"));
    checkClosed();
}

void Exploration::end() {
    const std::optional<int> status = vistrel.end();
    expect(status == 0, QStringLiteral("the program ended with %1: %2")
                            .arg(status.value_or(-1))
                            .arg(QString::fromUtf8(vistrel.program->standardError().right(4000))));
}
