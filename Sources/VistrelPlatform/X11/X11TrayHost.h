#pragma once

#include "VistrelPlatform/TrayHost.h"

#include <QAbstractNativeEventFilter>

#include <cstdint>

/// Panels that embed status items as windows. Main thread; needs the application object on the xcb platform.
class X11TrayHost : public TrayHost, private QAbstractNativeEventFilter {
    Q_OBJECT
public:
    X11TrayHost();
    ~X11TrayHost() override;

    bool isPresent() const override { return present; }
    bool drawsMenus() const override { return false; }

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::uint32_t selection = 0;
    std::uint8_t notification = 0;
    bool present = false;
};
