#include "App/CaptureBenchmark.h"

#include <QPointer>

CaptureBenchmark::CaptureBenchmark(int wanted, Services supplied, QObject* parent)
    : QObject(parent), runs(wanted), services(std::move(supplied)) {}

void CaptureBenchmark::start() {
    services.session.prepareOverlays();
    runNext();
}

void CaptureBenchmark::runNext() {
    const CaptureTime::Instant start = CaptureTime::now();
    auto timing = std::make_shared<CaptureTiming>(start, QStringLiteral("terminal_benchmark"));
    activeTiming = timing;
    services.session.begin(start, timing);
    services.schedule(runLimit, [self = QPointer(this), weakTiming = std::weak_ptr(timing)] {
        if (self)
            self->expire(weakTiming);
    });
}

void CaptureBenchmark::expire(const std::weak_ptr<CaptureTiming>& timing) {
    const std::shared_ptr<CaptureTiming> expired = timing.lock();
    if (!expired || expired != activeTiming)
        return;
    services.session.close();
    const auto report = expired->finish(
        QStringLiteral("Timed out waiting for screenshot or overlay drawing after 20 seconds."));
    if (report)
        receive(*report);
}

void CaptureBenchmark::receive(const CaptureTiming::Report& report) {
    if (!std::exchange(activeTiming, nullptr))
        return;
    reports.push_back(report);
    services.session.close();
    QString line = QStringLiteral("Capture %1/%2: %3 ms")
                       .arg(static_cast<qsizetype>(reports.size()))
                       .arg(runs)
                       .arg(report.totalMS, 0, 'f', 2);
    if (report.error)
        line += QStringLiteral(" (") + *report.error + u')';
    services.console.printErrorLine(line);

    if (report.error || static_cast<int>(reports.size()) == runs)
        return finish(report.error.has_value());
    services.schedule(pauseBetweenRuns, [self = QPointer(this)] {
        if (self)
            self->runNext();
    });
}

void CaptureBenchmark::finish(bool failed) {
    services.console.output(CaptureTiming::encode(reports));
    services.console.output("\n");
    services.exit(failed ? 1 : 0);
}
