#pragma once

#include "Desktop/Explorer/RuledDisplay.h"

#include <set>

/// What has to be seen after each step: the program's editing rules and its documented behaviour around
/// them, fed with the same events and without any window. Positions in device pixels of the root.
class Rules {
public:
    /// What the user is asked next, over the canvas.
    enum class Dialog { none, save, share, color };

    /// Who gets what the pointer does, from the first pressed button to the last released.
    struct Receiver {
        std::size_t display = 0;
        enum { canvas, text, control, panel } part = canvas;
        PanelControl shown;
        QUuid layer;
    };

    void addDisplay(QRect rect, double scale);

    void begin(const QImage& screen);
    bool isOpen() const { return open; }
    void movePointer(QPoint to);
    /// `clicks` is 2 for the second press of a double click.
    void press(int button, int clicks = 1);
    void release(int button);
    /// The modifiers are those held before the key.
    void key(QKeyEvent& event);
    /// The request for a capture while there is one.
    void requestAgain() { journal << QStringLiteral("captureBusy"); }
    void dialogEnded(const QString& outcome);

    Receiver at(QPoint position) const;
    RuledDisplay& display(std::size_t index) { return *displays[index]; }
    RuledDisplay& keyDisplay() { return *displays[keyboard]; }
    std::size_t displayAt(QPoint position) const;
    std::size_t displayCount() const { return displays.size(); }
    bool isPressed(int button) const { return buttons.contains(button); }
    bool hasGesture() const { return !buttons.empty(); }
    /// A panel's control or the text is held; what keys do then is nobody's to say.
    bool holdsControl() const { return hasGesture() && receiver.part != Receiver::canvas; }

    /// Everything the program's journal has to hold.
    QStringList journal;
    Dialog dialog = Dialog::none;
    std::optional<QImage> copied;
    QImage saved;
    QPoint pointer;

private:
    void wire(std::size_t index);
    void record(std::size_t index, Diagnostic::Action action, const Diagnostic::Details& details);
    void selectionStarted(std::size_t index);
    void close();
    void pressControl(const Receiver& on);
    void releaseControl();
    void act(RuledDisplay& on, const PanelControl& control, const QUuid& layer);
    void sendToText(QEvent::Type type);
    void dropRow();

    std::vector<std::unique_ptr<RuledDisplay>> displays;
    bool open = false;
    std::size_t keyboard = 0;
    std::set<int> buttons;
    Receiver receiver;
    QPoint pressedAt;
    bool draggedRow = false;
};
