#pragma once

#include "VistrelPlatform/ImageClipboard.h"

/// The selection CLIPBOARD, through the toolkit, which keeps the bytes and serves them. Needs the xcb
/// platform.
class X11ImageClipboard : public ImageClipboard {
public:
    bool copyPNG(const QByteArray& png) override;
};
