#include "VistrelPlatform/Freedesktop/ShareStart.h"

#include <QByteArray>

#include <array>
#include <cerrno>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds pollInterval{5};

enum class Program { launcher, application, ended };

Program programOf(qint64 pid) {
    std::array<char, 4096> target{};
    const QByteArray link = QByteArrayLiteral("/proc/") + QByteArray::number(pid) + QByteArrayLiteral("/exe");
    const ssize_t length = ::readlink(link.constData(), target.data(), target.size());
    if (length < 0)
        return errno == ENOENT ? Program::ended : Program::application;
    const QByteArray path(target.data(), length);
    return path.endsWith("/gio-launch-desktop") ? Program::launcher : Program::application;
}

} // namespace

ShareStart::ShareStart(std::unique_ptr<ShareProcess> launched, QObject* parent)
    : QObject(parent), process(std::move(launched)) {
    process->onExit = [this](int status) {
        process.release()->deleteLater();
        decide(status == 0);
    };
    connect(&poll, &QTimer::timeout, this, &ShareStart::look);
    poll.start(pollInterval);
}

void ShareStart::look() {
    if (process && programOf(process->pid()) == Program::application)
        decide(true);
}

void ShareStart::decide(bool started) {
    poll.stop();
    const auto report = std::move(onDecided);
    onDecided = nullptr;
    if (report)
        report(started);
}
