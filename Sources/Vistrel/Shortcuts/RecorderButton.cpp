#include "Shortcuts/RecorderButton.h"

#include "Shortcuts/KeyPress.h"

#include <QKeyEvent>

namespace {

const QString idleTitle = QStringLiteral("Set Shortcut…");
const QString recordingTitle = QStringLiteral("Press shortcut… (Esc cancels)");
const QString rejectedTitle = QStringLiteral("Use ⌘, ⌃, or Print Screen");

} // namespace

RecorderButton::RecorderButton(ShortcutRecorder owner, QWidget* parent)
    : QPushButton(parent), recorder(std::move(owner)) {
    setObjectName(QStringLiteral("shortcutRecorder"));
    setFocusPolicy(Qt::StrongFocus);
    // Return stays with the page's own default button; Space starts a recording.
    setAutoDefault(false);
    show(idleTitle);
    connect(this, &QPushButton::clicked, this, &RecorderButton::startRecording);
}

RecorderButton::~RecorderButton() {
    if (isListening && recorder.onListening)
        recorder.onListening(false);
}

void RecorderButton::setRecorder(ShortcutRecorder owner) {
    if (isListening && recorder.onListening)
        recorder.onListening(false);
    isListening = false;
    recorder = std::move(owner);
    updateListening();
}

void RecorderButton::startRecording() {
    isRecording = true;
    show(recordingTitle);
    setFocus(Qt::OtherFocusReason);
    updateListening();
}

void RecorderButton::stopRecording() {
    isRecording = false;
    show(idleTitle);
    updateListening();
}

void RecorderButton::show(const QString& title) {
    setText(title);
    // The title is also what tells how the recording goes, so it is what must be read out.
    setAccessibleName(title);
}

void RecorderButton::updateListening() {
    const bool listening = isRecording && hasFocus();
    if (listening == isListening)
        return;
    isListening = listening;
    // A window manager would otherwise take the chords that are its own.
    if (listening)
        grabKeyboard();
    else
        releaseKeyboard();
    if (recorder.onListening)
        recorder.onListening(listening);
}

bool RecorderButton::event(QEvent* event) {
    if (!isRecording)
        return QPushButton::event(event);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Otherwise menus and the page's own shortcuts come first.
        event->accept();
        return true;
    case QEvent::KeyPress:
        // Taken here and not in keyPressEvent, where Tab never arrives.
        if (auto* press = static_cast<QKeyEvent*>(event); !press->isAutoRepeat())
            take(*press);
        event->accept();
        return true;
    case QEvent::KeyRelease:
        event->accept();
        return true;
    default:
        return QPushButton::event(event);
    }
}

void RecorderButton::take(const QKeyEvent& press) {
    const auto event = shortcutKeyEvent(press, recorder.unmodifiedText);
    if (!event)
        return;
    if (event->keyCode == Key::escape) {
        stopRecording();
        return;
    }
    const auto shortcut = ScreenshotShortcut::from(*event);
    if (!shortcut) {
        show(rejectedTitle);
        return;
    }
    stopRecording();
    // The owner may build its page again and with it replace the callback that is running.
    if (const auto onChange = recorder.onChange)
        onChange(*shortcut);
}

void RecorderButton::focusInEvent(QFocusEvent* event) {
    QPushButton::focusInEvent(event);
    updateListening();
}

void RecorderButton::focusOutEvent(QFocusEvent* event) {
    QPushButton::focusOutEvent(event);
    updateListening();
}

void RecorderButton::hideEvent(QHideEvent* event) {
    QPushButton::hideEvent(event);
    if (isRecording)
        stopRecording();
}
