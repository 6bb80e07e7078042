#pragma once

#include "Overlay/GestureMachine.h"
#include "Overlay/KeyCommands.h"

/// The editing rules of one canvas, joined; nothing in here knows a window. Main thread.
struct OverlayEditor {
    OverlaySession session;
    TextCommands text{session};
    GestureMachine gestures{session, text};
    LayerCommands layers{session, text};
    OutputCommands output{session, text};
    KeyCommands keys{session, text, layers, output};

    OverlayEditor() = default;
    OverlayEditor(const OverlayEditor&) = delete;
    OverlayEditor& operator=(const OverlayEditor&) = delete;
};
