#pragma once

#include "VistrelPlatform/Keyboard.h"

#include <QString>

#include <random>
#include <vector>

/// One thing that a hand does. It names places and keys, not pixels, so that it still means something when
/// steps before it are left out.
struct Step {
    enum Act { move, press, release, doublePress, wheel, keyDown, keyUp, requestAgain, stealFocus, cover };
    enum Place { anywhere, inside, outside, handle, layer, layerHandle, control, edge, otherDisplay, text };

    Act act = move;
    /// The place of a move, the button of a press, the key.
    int what = 0;
    /// Which one of several, and where in it; each from 0 to 1.
    double x = 0;
    double y = 0;

    QString describe() const;
};

/// A key of the US layout.
struct HandKey {
    KeyCode code;
    int qtKey;
    char16_t plain;
    char16_t shifted;
    ModifierMask modifier = 0;
};
const std::vector<HandKey>& handKeys();
/// Its place in the list.
int handKey(KeyCode code);

/// A whole number from 0 to `limit` - 1, the same on every machine.
inline int pick(std::mt19937& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// Steps that come from the seed alone.
std::vector<Step> randomSteps(unsigned seed, int count);
