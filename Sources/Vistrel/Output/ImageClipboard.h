#pragma once

#include <QByteArray>

#include <functional>

class QMimeData;

/// Puts a finished picture on the clipboard, as exactly the bytes it was encoded to. Main thread.
class ImageClipboard {
public:
    /// The clipboard of the session; an empty callback takes the application's.
    struct Access {
        /// Takes over the data.
        std::function<void(QMimeData*)> set;
        /// Whether this program is the one whose data others would get, read back and not assumed.
        std::function<bool()> owned;
    };

    ImageClipboard();
    explicit ImageClipboard(Access use);

    /// False when the clipboard did not become ours.
    bool copyPNG(const QByteArray& png);

private:
    Access access;
};
