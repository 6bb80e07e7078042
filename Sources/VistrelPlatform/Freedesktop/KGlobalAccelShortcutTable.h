#pragma once

#include "VistrelPlatform/Freedesktop/BusShortcutTable.h"

/// The shortcuts of KDE: every program and the desktop itself enter theirs with one service. Main thread.
class KGlobalAccelShortcutTable : public BusShortcutTable {
public:
    KGlobalAccelShortcutTable(QDBusConnection sessionBus, const KeyboardLayout& keyboard,
                              std::chrono::milliseconds longestWait);

protected:
    QDBusMessage firstCall() const override;
    std::vector<QDBusMessage> furtherCalls(const QDBusMessage& firstReply) const override;
    Entries entries(const QDBusMessage& firstReply,
                    const std::vector<QDBusMessage>& furtherReplies) const override;
};
