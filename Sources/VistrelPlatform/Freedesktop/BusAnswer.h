#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

class QObject;

/// What the bus itself calls a timeout of 25 s.
inline constexpr int usualBusPatience = -1;

/// Sends `call` and gives `then` its answer once, in the thread of `context` and after this function has
/// returned; an error message when the call fails, when nobody answers within `patience` milliseconds and
/// when there is no bus, of which a plain `QDBusPendingCallWatcher` never tells. Never once `context` is
/// gone.
void whenAnswered(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
                  std::function<void(const QDBusMessage&)> then, int patience = usualBusPatience);
