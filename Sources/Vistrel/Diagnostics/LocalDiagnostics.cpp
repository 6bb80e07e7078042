#include "Diagnostics/LocalDiagnostics.h"

#include "Diagnostics/JournalLine.h"
#include "Diagnostics/JournalStore.h"
#include "VistrelPlatform/System/Paths.h"
#include "VistrelPlatform/System/SerialQueue.h"

#include <QPromise>

#include <utility>

namespace {

const QString enabledKey = QStringLiteral("localDiagnosticJournalEnabled");
constexpr std::size_t largestSnapshot = 2000;

LocalDiagnostics::Configuration completed(LocalDiagnostics::Configuration configuration) {
    if (configuration.directory.isEmpty())
        configuration.directory = Paths::data() + QStringLiteral("/Diagnostics");
    if (!configuration.now)
        configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
    if (!JournalLine::isVersionNumber(configuration.version))
        configuration.version = QStringLiteral("development");
    return configuration;
}

} // namespace

/// What the queue's work uses; the queue comes last, so it has run dry before the rest goes.
class LocalDiagnostics::Journal {
public:
    Journal(UserDefaults& userDefaults, const Configuration& configuration)
        : defaults(userDefaults),
          version(configuration.version),
          now(configuration.now),
          store(configuration, [this] { return enabled(); }) {}

    bool enabled() const { return defaults.boolean(enabledKey).value_or(true); }

    UserDefaults& defaults;
    const QString version;
    const std::function<QDateTime()> now;
    JournalStore store; // on the queue only
    SerialQueue queue{QByteArrayLiteral("com.orvane.Vistrel.local-diagnostics"),
                      SerialQueue::Priority::utility};
};

LocalDiagnostics::LocalDiagnostics(UserDefaults& defaults, Configuration configuration)
    : journal(std::make_unique<Journal>(defaults, completed(std::move(configuration)))) {}

LocalDiagnostics::~LocalDiagnostics() = default;

bool LocalDiagnostics::enabled() const {
    return journal->enabled();
}

void LocalDiagnostics::setEnabled(bool enabled) {
    journal->defaults.setBoolean(enabledKey, enabled);
}

const QString& LocalDiagnostics::version() const {
    return journal->version;
}

void LocalDiagnostics::start() {
    if (!enabled())
        return;
    journal->queue.post([journal = journal.get()] {
        JournalStore& store = journal->store;
        const bool unfinished = store.previousLaunchUnfinished();
        store.prepare();
        if (unfinished)
            store.append(Diagnostic::Action::previousLaunchUnfinished, {}, journal->now());
        store.append(Diagnostic::Action::launch, {}, journal->now());
        store.writeMarker();
    });
}

void LocalDiagnostics::record(Diagnostic::Action action, const Diagnostic::Details& details) {
    if (!enabled())
        return;
    // The caller's time, so that events keep their distance when the disk is slow.
    journal->queue.post([journal = journal.get(), action, details, date = journal->now()] {
        if (!journal->enabled())
            return;
        journal->store.prepare();
        journal->store.append(action, details, date);
    });
}

void LocalDiagnostics::finish() {
    record(Diagnostic::Action::quit);
    journal->queue.post([journal = journal.get()] { journal->store.removeMarker(); });
    journal->queue.drain();
}

void LocalDiagnostics::clear() {
    journal->queue.post([journal = journal.get()] { journal->store.clear(); });
}

QFuture<LocalDiagnostics::Snapshot> LocalDiagnostics::snapshot() {
    const auto promise = std::make_shared<QPromise<Snapshot>>();
    promise->start();
    QFuture<Snapshot> future = promise->future();
    journal->queue.post([journal = journal.get(), promise] {
        JournalStore& store = journal->store;
        store.prepare();
        Snapshot snapshot;
        if (journal->enabled())
            snapshot.events = store.read();
        if (snapshot.events.size() > largestSnapshot)
            snapshot.events.erase(snapshot.events.begin(),
                                  snapshot.events.end() - static_cast<std::ptrdiff_t>(largestSnapshot));
        snapshot.writeFailed = store.writeFailed();
        promise->addResult(std::move(snapshot));
        promise->finish();
    });
    return future;
}

Diagnostic::Details LocalDiagnostics::error(const Error& error, Diagnostic::ErrorKind kind) {
    if (error.domain == ErrorDomain::system)
        kind = Diagnostic::ErrorKind::cocoa;
    else if (error.domain == ErrorDomain::windowSystem)
        kind = Diagnostic::ErrorKind::screenCaptureKit;
    Diagnostic::Details details;
    details.errorKind = kind;
    details.errorCode = error.code;
    return details;
}
