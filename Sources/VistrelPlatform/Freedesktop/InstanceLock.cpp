#include "VistrelPlatform/Freedesktop/InstanceLock.h"

#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// A request is one of these, the token and the end of the line.
const QByteArray comeForwardRequest = "activate ";
const QByteArray captureRequest = "capture ";
const QByteArray answer = "ok\n";
constexpr qsizetype longestRequest = 1024;
constexpr auto visitorPatience = 2s;
constexpr auto retryInterval = 10ms;

std::optional<Activation> wantedBy(const QByteArray& request) {
    for (const auto& [word, purpose] : {std::pair(comeForwardRequest, Activation::Purpose::comeForward),
                                        std::pair(captureRequest, Activation::Purpose::capture)})
        if (request.startsWith(word))
            return Activation{purpose, QString::fromUtf8(request.mid(word.size()).trimmed())};
    return std::nullopt;
}

bool isThisUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

/// False for a path that is too long for a socket.
bool fillAddress(sockaddr_un& address, const QByteArray& path) {
    if (path.size() >= qsizetype(sizeof address.sun_path))
        return false;
    address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<size_t>(path.size()));
    return true;
}

/// One connection to the socket. Ends itself when it has been heard, or has kept silent for too long.
class Visitor : public QObject {
public:
    Visitor(FileDescriptor connected, InstanceLock& host)
        : QObject(&host),
          socket(std::move(connected)),
          place(host),
          notifier(socket.get(), QSocketNotifier::Read) {
        connect(&notifier, &QSocketNotifier::activated, this, [this] { listen(); });
        QTimer::singleShot(visitorPatience, this, [this] { deleteLater(); });
    }

private:
    void listen() {
        char block[longestRequest];
        const ssize_t count = ::recv(socket.get(), block, sizeof block, 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (count > 0)
            heard.append(block, count);
        const bool complete = heard.endsWith('\n');
        if (count > 0 && !complete && heard.size() < longestRequest)
            return;
        notifier.setEnabled(false);
        deleteLater();
        const std::optional<Activation> wanted = complete ? wantedBy(heard) : std::nullopt;
        if (!wanted)
            return;
        ::send(socket.get(), answer.constData(), static_cast<size_t>(answer.size()), MSG_NOSIGNAL);
        if (place.onActivated)
            place.onActivated(*wanted);
    }

    FileDescriptor socket;
    InstanceLock& place;
    QSocketNotifier notifier;
    QByteArray heard;
};

FileDescriptor connectedTo(const QByteArray& path, std::chrono::milliseconds patience) {
    sockaddr_un address{};
    if (!fillAddress(address, path))
        return FileDescriptor();
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const timeval limit{.tv_sec = patience.count() / 1000, .tv_usec = patience.count() % 1000 * 1000};
        ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return socket;
        // The holder may have locked the file a moment ago and not have got to its socket yet.
        if ((errno != ENOENT && errno != ECONNREFUSED) || std::chrono::steady_clock::now() >= deadline)
            return FileDescriptor();
        std::this_thread::sleep_for(retryInterval);
    }
}

} // namespace

InstanceLock::InstanceLock(QString runtimeFolder, QObject* parent)
    : QObject(parent), folder(std::move(runtimeFolder)) {}

InstanceLock::~InstanceLock() {
    // The file stays: whoever opened it before it went would hold a lock that nobody else sees.
    if (server.isOpen())
        ::unlink(socketPath().constData());
}

QByteArray InstanceLock::socketPath() const {
    return QFile::encodeName(folder) + "/instance.socket";
}

InstanceLock::Outcome InstanceLock::acquire() {
    const QByteArray path = QFile::encodeName(folder) + "/instance.lock";
    FileDescriptor file(::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.isOpen())
        return Outcome::unusable;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? Outcome::heldByAnother : Outcome::unusable;
    lock = std::move(file);
    // Without a socket it is still the only one; it can just not be called.
    listen();
    return Outcome::acquired;
}

bool InstanceLock::listen() {
    sockaddr_un address{};
    if (!fillAddress(address, socketPath()))
        return false;
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // With the lock in hand, a socket that lies there belongs to nobody.
    ::unlink(socketPath().constData());
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), SOMAXCONN) != 0)
        return false;
    server = std::move(socket);
    notifier = new QSocketNotifier(server.get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { admitVisitor(); });
    return true;
}

void InstanceLock::admitVisitor() {
    FileDescriptor socket(::accept4(server.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (socket.isOpen() && isThisUser(socket.get()))
        new Visitor(std::move(socket), *this);
}

bool InstanceLock::activateHolder(const Activation& wanted, std::chrono::milliseconds patience) const {
    const FileDescriptor socket = connectedTo(socketPath(), patience);
    if (!socket.isOpen() || !isThisUser(socket.get()))
        return false;
    const bool capture = wanted.purpose == Activation::Purpose::capture;
    const QByteArray message =
        (capture ? captureRequest : comeForwardRequest) + wanted.token.toUtf8().simplified() + '\n';
    if (::send(socket.get(), message.constData(), static_cast<size_t>(message.size()), MSG_NOSIGNAL) !=
        message.size())
        return false;
    char first = 0;
    return ::recv(socket.get(), &first, 1, 0) == 1 && first == answer.front();
}
