#pragma once

#include "Overlay/OverlayEvents.h"

class QKeyEvent;

/// A toolkit key press as the rules see it: the stored key number of its place on the keyboard, and what
/// it types. Events without a scan code are known by their key.
KeyEvent keyEventFrom(const QKeyEvent& event);
