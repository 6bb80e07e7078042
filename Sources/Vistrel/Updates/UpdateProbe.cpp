#include "Updates/UpdateProbe.h"

#include "VistrelPlatform/Update/UpdateError.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>

namespace {

constexpr std::chrono::milliseconds slice{50};

void writeLine(std::FILE* stream, const QString& line) {
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

/// The error as it describes itself, domain and code included.
QString fullDescription(const Error& error) {
    return QStringLiteral("Error Domain=%1 Code=%2 \"%3\"")
        .arg(error.domain)
        .arg(error.code)
        .arg(error.description);
}

} // namespace

UpdateProbe::UpdateProbe(UpdaterConfiguration whatToUpdate, UserDefaults& store, Options probeOptions)
    : options(std::move(probeOptions)), controller(std::move(whatToUpdate), store, nullptr, this) {
    if (!options.print)
        options.print = [](const QString& line) { writeLine(stdout, line); };
    if (!options.printError)
        options.printError = [](const QString& line) { writeLine(stderr, line); };
}

int UpdateProbe::run() {
    const QDeadlineTimer deadline(options.deadline);
    if (const auto started = controller.start(); started)
        controller.checkForUpdateInformation();
    else
        fail(started.error());
    while (!finished) {
        if (deadline.hasExpired()) {
            options.printError(QStringLiteral("Update check timed out"));
            return 1;
        }
        QEventLoop loop;
        QTimer::singleShot(slice, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return status;
}

void UpdateProbe::didFindValidUpdate(const AppcastItem& item) {
    options.print(QStringLiteral("Available update: ") + item.displayVersion);
}

void UpdateProbe::didFinishUpdateCycle(const std::optional<Error>& error) {
    if (finished)
        return;
    if (!error)
        options.print(QStringLiteral("Update feed check completed"));
    else if (error->domain == UpdateError::domain && error->code == UpdateError::noUpdate)
        options.print(QStringLiteral("Vistrel is up to date"));
    else
        fail(*error);
    finished = true;
}

void UpdateProbe::fail(const Error& error) {
    options.printError(QStringLiteral("Update check failed: ") + fullDescription(error));
    status = 1;
    finished = true;
}
