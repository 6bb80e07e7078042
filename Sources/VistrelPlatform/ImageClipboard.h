#pragma once

#include <QByteArray>

/// The session's clipboard, as finished pictures are put on it. Main thread.
class ImageClipboard {
public:
    ImageClipboard() = default;
    ImageClipboard(const ImageClipboard&) = delete;
    ImageClipboard& operator=(const ImageClipboard&) = delete;
    virtual ~ImageClipboard() = default;

    /// Offers the picture as exactly the bytes it was encoded to. False when the clipboard did not become
    /// ours: read back from the window system, not assumed.
    virtual bool copyPNG(const QByteArray& png) = 0;
};
