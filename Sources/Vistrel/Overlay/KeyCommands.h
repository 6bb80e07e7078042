#pragma once

#include "Overlay/LayerCommands.h"
#include "Overlay/OutputCommands.h"
#include "Overlay/OverlayEvents.h"

/// What keys do on the canvas. Control counts as Command here, so that either hand's habit works.
class KeyCommands {
public:
    KeyCommands(OverlaySession& session, TextCommands& text, LayerCommands& layers, OutputCommands& output);

    /// True when the key did something; false leaves it to the control that has the keyboard.
    bool keyDown(const KeyEvent& event, const KeyFocus& focus);
    /// The keys that also work while a control other than the text editor has the keyboard.
    bool keyEquivalent(const KeyEvent& event, const KeyFocus& focus);
    /// Cancels the text being typed, else asks to end the capture.
    void cancelOperation();

private:
    bool sizeKey(const KeyEvent& event, const KeyFocus& focus);
    bool commandKey(const KeyEvent& event, const KeyFocus& focus);
    bool deleteKey(const KeyEvent& event);
    bool arrowKey(const KeyEvent& event);
    bool toolKey(const KeyEvent& event);

    OverlaySession& session;
    TextCommands& text;
    LayerCommands& layers;
    OutputCommands& output;
};
