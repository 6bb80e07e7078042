#include "VistrelPlatform/Freedesktop/BusShortcutTable.h"

#include "VistrelPlatform/Freedesktop/BusAnswer.h"

#include <QDBusError>
#include <QDBusPendingCall>

struct BusShortcutTable::Reading {
    QDBusMessage firstReply;
    std::vector<QDBusMessage> replies;
    std::size_t outstanding = 0;
};

namespace {

/// Nobody there to keep a table, which is not the same as a table that cannot be read.
bool hasNoTable(const QDBusMessage& reply) {
    const QDBusError error(reply);
    return error.type() == QDBusError::ServiceUnknown || error.type() == QDBusError::Disconnected ||
           error.name() == QLatin1StringView("org.freedesktop.DBus.Error.NameHasNoOwner");
}

Error failure(const QDBusMessage& reply) {
    return {ErrorDomain::system, static_cast<int>(QDBusError(reply).type()), reply.errorMessage()};
}

} // namespace

BusShortcutTable::BusShortcutTable(QDBusConnection sessionBus, const KeyboardLayout& keyboard,
                                   std::chrono::milliseconds longestWait)
    : layout(keyboard), bus(std::move(sessionBus)), patience(static_cast<int>(longestWait.count())) {}

Result<ShortcutTable::Entries> BusShortcutTable::read() {
    if (latest) {
        refresh();
        return *latest;
    }
    Result<Entries> table = readNow();
    if (table)
        latest = *table;
    return table;
}

Result<ShortcutTable::Entries> BusShortcutTable::readNow() {
    if (!bus.isConnected())
        return Entries{};
    const QDBusMessage first = bus.call(firstCall(), QDBus::Block, patience);
    if (first.type() != QDBusMessage::ReplyMessage)
        return evaluated(first, {});
    std::vector<QDBusPendingCall> calls;
    for (const QDBusMessage& call : furtherCalls(first))
        calls.push_back(bus.asyncCall(call, patience));
    std::vector<QDBusMessage> replies;
    for (QDBusPendingCall& call : calls) {
        call.waitForFinished();
        replies.push_back(call.reply());
    }
    return evaluated(first, replies);
}

Result<ShortcutTable::Entries>
BusShortcutTable::evaluated(const QDBusMessage& firstReply,
                            const std::vector<QDBusMessage>& furtherReplies) const {
    if (firstReply.type() != QDBusMessage::ReplyMessage) {
        if (hasNoTable(firstReply))
            return Entries{};
        return tl::unexpected(failure(firstReply));
    }
    for (const QDBusMessage& reply : furtherReplies) {
        if (reply.type() != QDBusMessage::ReplyMessage)
            return tl::unexpected(failure(reply));
    }
    return entries(firstReply, furtherReplies);
}

void BusShortcutTable::refresh() {
    if (isReading || !bus.isConnected())
        return;
    isReading = true;
    whenAnswered(
        bus, firstCall(), this, [this](const QDBusMessage& reply) { continueReading(reply); }, patience);
}

void BusShortcutTable::continueReading(const QDBusMessage& firstReply) {
    auto reading = std::make_shared<Reading>();
    reading->firstReply = firstReply;
    const std::vector<QDBusMessage> calls = firstReply.type() == QDBusMessage::ReplyMessage
                                                ? furtherCalls(firstReply)
                                                : std::vector<QDBusMessage>();
    reading->replies.resize(calls.size());
    reading->outstanding = calls.size();
    if (calls.empty())
        return endReading(reading);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        whenAnswered(
            bus, calls[i], this,
            [this, reading, i](const QDBusMessage& reply) {
                reading->replies[i] = reply;
                if (--reading->outstanding == 0)
                    endReading(reading);
            },
            patience);
    }
}

void BusShortcutTable::endReading(const std::shared_ptr<Reading>& reading) {
    isReading = false;
    // What was read before is better than nothing while the service does not answer.
    if (const Result<Entries> table = evaluated(reading->firstReply, reading->replies))
        latest = *table;
}
