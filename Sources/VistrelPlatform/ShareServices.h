#pragma once

#include <QByteArray>
#include <QIcon>
#include <QString>

#include <functional>
#include <vector>

/// One place a picture can be handed to: a mail program, an application, a device. Told apart by
/// `identifier`.
struct ShareService {
    QString identifier;
    QString menuTitle;
    /// Null when the service has none.
    QIcon image;
    /// Whether it can take a picture at the moment.
    bool canPerform = true;
};

/// A picture on its way out: the bytes of a PNG file and the name it travels under.
struct SharedPicture {
    QByteArray png;
    QString fileName;
};

/// The desktop's ways of handing a picture on. Main thread; no call waits for another program.
class ShareServices {
public:
    /// True only when the chosen program was really started, or the desktop or device said yes.
    using Completion = std::function<void(bool shared)>;

    ShareServices() = default;
    ShareServices(const ShareServices&) = delete;
    ShareServices& operator=(const ShareServices&) = delete;
    virtual ~ShareServices() = default;

    /// Starts asking for what takes time to find, such as devices; `services` knows the answer later.
    virtual void refresh() = 0;
    /// Everything that may take a picture now, in menu order.
    virtual std::vector<ShareService> services() = 0;
    /// Hands the picture over. `completion` is called at most once, never from within this call; a program
    /// that never answers is never reported.
    virtual void perform(const ShareService& service, const SharedPicture& picture,
                         Completion completion) = 0;
    /// Opens the desktop's page for choosing which applications open what; false when there is none.
    virtual bool openExtensionSettings() = 0;
    /// Removes pictures that an earlier run left behind. Once at launch.
    virtual void removeLeftovers() = 0;

    /// The settings program started by `openExtensionSettings` has been closed.
    std::function<void()> onExtensionSettingsClosed;
};
