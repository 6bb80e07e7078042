#pragma once

#include "VistrelPlatform/Freedesktop/BusShortcutTable.h"

/// The shortcuts of Xfce, for commands and for its window manager. Main thread.
class XfconfShortcutTable : public BusShortcutTable {
public:
    XfconfShortcutTable(QDBusConnection sessionBus, const KeyboardLayout& keyboard,
                        std::chrono::milliseconds longestWait);

protected:
    QDBusMessage firstCall() const override;
    std::vector<QDBusMessage> furtherCalls(const QDBusMessage& firstReply) const override;
    Entries entries(const QDBusMessage& firstReply,
                    const std::vector<QDBusMessage>& furtherReplies) const override;
};
