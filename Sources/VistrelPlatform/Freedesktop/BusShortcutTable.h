#pragma once

#include "VistrelPlatform/Freedesktop/ShortcutTable.h"
#include "VistrelPlatform/KeyboardLayout.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <chrono>
#include <optional>

/// A table that a service on the bus keeps. The first reading waits for it, for a short time; every later
/// one gives what was read last and has it read again in the background, so that a capture never waits.
/// Main thread.
class BusShortcutTable : public QObject, public ShortcutTable {
    Q_OBJECT
public:
    BusShortcutTable(QDBusConnection sessionBus, const KeyboardLayout& keyboard,
                     std::chrono::milliseconds longestWait);

    Result<Entries> read() override;

public Q_SLOTS:
    /// Reads again in the background.
    void refresh();

protected:
    virtual QDBusMessage firstCall() const = 0;
    /// What must be asked once the first answer is there.
    virtual std::vector<QDBusMessage> furtherCalls(const QDBusMessage& firstReply) const = 0;
    /// From the first reply and those to the further calls, in their order.
    virtual Entries entries(const QDBusMessage& firstReply,
                            const std::vector<QDBusMessage>& furtherReplies) const = 0;

    const KeyboardLayout& layout;
    QDBusConnection bus;

private:
    struct Reading;

    Result<Entries> readNow();
    Result<Entries> evaluated(const QDBusMessage& firstReply,
                              const std::vector<QDBusMessage>& furtherReplies) const;
    void continueReading(const QDBusMessage& firstReply);
    void endReading(const std::shared_ptr<Reading>& reading);

    int patience;
    std::optional<Entries> latest;
    bool isReading = false;
};
