#include "VistrelPlatform/X11/X11ImageClipboard.h"

#include "VistrelPlatform/X11/TopLevelWindows.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

bool X11ImageClipboard::copyPNG(const QByteArray& png) {
    auto* data = new QMimeData;
    // Only the bytes: offered as an image, the toolkit would encode it again in every format it knows.
    data->setData(QStringLiteral("image/png"), png);
    QGuiApplication::clipboard()->setMimeData(data);
    // The toolkit takes the clipboard for its own even if the server refused: another program had taken it
    // later than the last event that the toolkit knows of.
    xcb_connection_t* connection = toolkitConnection();
    const auto owner = xcbReply<xcb_get_selection_owner_reply>(
        connection, xcb_get_selection_owner(connection, internAtom(connection, "CLIPBOARD")));
    return owner && TopLevelWindows::Client::of(connection).owns(owner->owner);
}
