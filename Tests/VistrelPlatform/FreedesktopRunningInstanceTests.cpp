#include "Support/ScopedEnvironment.h"
#include "VistrelPlatform/Freedesktop/DesktopRunningInstance.h"
#include "VistrelPlatform/Freedesktop/InstanceLock.h"
#include "VistrelPlatform/ShareTestBus.h"
#include "VistrelPlatform/System/Paths.h"

#include <QThread>

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// Runs `work` in another thread while this one goes on answering.
template<class Work>
auto meanwhile(Work work) {
    std::optional<decltype(work())> result;
    std::atomic<bool> done = false;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        result = work();
        done = true;
    }));
    thread->start();
    EXPECT_TRUE(waitUntil([&] { return done.load(); }));
    thread->wait();
    return *result;
}

class RunningInstanceTest : public testing::Test {
protected:
    QString socketPath() const { return *Paths::runtime() + QStringLiteral("/instance.socket"); }

    std::unique_ptr<DesktopRunningInstance> start(const QDBusConnection& connection,
                                                  const QString& token = {}) {
        return std::make_unique<DesktopRunningInstance>(
            connection, DesktopRunningInstance::Options{.patience = 20s, .token = token});
    }
    /// A start that the holder, living in this thread, can answer.
    bool laterStartClaims(const QDBusConnection& connection, const QString& token = {}) {
        return meanwhile([&] { return start(connection, token)->claim(); });
    }
    static QDBusConnection noBus() { return QDBusConnection(QString()); }

    QTemporaryDir runtime;
    ScopedEnvironment environment{"XDG_RUNTIME_DIR", QFile::encodeName(runtime.path())};
    ShareTestBus bus;
    QStringList tokens;
};

/// A client of the socket that behaves as it likes.
class Stranger {
public:
    explicit Stranger(const QString& path) : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path - 1);
        connected = ::connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    void say(const QByteArray& text) const {
        EXPECT_EQ(::send(socket.get(), text.constData(), static_cast<size_t>(text.size()), MSG_NOSIGNAL),
                  text.size());
    }

    FileDescriptor socket;
    bool connected = false;
};

} // namespace

TEST_F(RunningInstanceTest, WithoutABusTheSecondStartActivatesTheFirst) {
    const auto first = start(noBus());
    first->onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_TRUE(first->claim());
    EXPECT_FALSE(laterStartClaims(noBus(), QStringLiteral("token 1")));
    EXPECT_FALSE(laterStartClaims(noBus()));
    EXPECT_EQ(tokens, (QStringList{QStringLiteral("token 1"), QString()}));
}

TEST_F(RunningInstanceTest, WhenTheFirstEndsThePlaceIsFree) {
    auto first = start(bus.client());
    ASSERT_TRUE(first->claim());
    first.reset();
    EXPECT_FALSE(QFile::exists(socketPath()));
    EXPECT_TRUE(start(bus.peer())->claim());
}

TEST_F(RunningInstanceTest, ACrashedHoldersRemainsAreTakenOver) {
    // What a killed process leaves: its socket and its file, neither held by anybody.
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, QFile::encodeName(socketPath()).constData(),
                     sizeof address.sun_path - 1);
        const FileDescriptor dead(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        ASSERT_EQ(::bind(dead.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        QFile file(*Paths::runtime() + QStringLiteral("/instance.lock"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const auto first = start(noBus());
    first->onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_TRUE(first->claim());
    EXPECT_FALSE(laterStartClaims(noBus(), QStringLiteral("x")));
    EXPECT_EQ(tokens, QStringList{QStringLiteral("x")});
}

TEST_F(RunningInstanceTest, OnTheBusThePlaceIsOneForAllRuntimeFolders) {
    const auto first = start(bus.client());
    first->onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_TRUE(first->claim());
    const QTemporaryDir elsewhere;
    const ScopedEnvironment other("XDG_RUNTIME_DIR", QFile::encodeName(elsewhere.path()));
    EXPECT_FALSE(laterStartClaims(bus.peer(), QStringLiteral("t")));
    EXPECT_EQ(tokens, QStringList{QStringLiteral("t")});
    EXPECT_FALSE(QFile::exists(elsewhere.filePath(QStringLiteral("Vistrel/instance.socket"))));
}

TEST_F(RunningInstanceTest, TheDesktopCanCallIt) {
    const auto first = start(bus.client());
    first->onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_TRUE(first->claim());
    const auto call = [this](const char* method, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("com.orvane.Vistrel"), QStringLiteral("/com/orvane/Vistrel"),
            QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(method));
        message.setArguments(arguments);
        return meanwhile([&] { return bus.peer().call(message).type(); });
    };
    const QVariantMap data{{QStringLiteral("desktop-startup-id"), QStringLiteral("id")}};
    EXPECT_EQ(call("Activate", {data}), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Open", {QStringList{QStringLiteral("file:///a")}, QVariantMap()}),
              QDBusMessage::ReplyMessage);
    const QVariantMap both{{QStringLiteral("desktop-startup-id"), QStringLiteral("id")},
                           {QStringLiteral("activation-token"), QStringLiteral("newer")}};
    EXPECT_EQ(call("ActivateAction", {QStringLiteral("capture"), QVariantList(), both}),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(tokens, (QStringList{QStringLiteral("id"), QString(), QStringLiteral("newer")}));
}

TEST_F(RunningInstanceTest, NoUsableRuntimeFolderLeavesItToTheBus) {
    const ScopedEnvironment unusable("XDG_RUNTIME_DIR", "/dev/null");
    const auto first = start(bus.client());
    EXPECT_TRUE(first->claim());
    EXPECT_FALSE(laterStartClaims(bus.peer()));
    EXPECT_TRUE(start(noBus())->claim());
}

TEST_F(RunningInstanceTest, StrangeVisitorsDoNoHarm) {
    InstanceLock lock(*Paths::runtime());
    lock.onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_EQ(lock.acquire(), InstanceLock::Outcome::acquired);
    InstanceLock second(*Paths::runtime());
    EXPECT_EQ(second.acquire(), InstanceLock::Outcome::heldByAnother);

    const Stranger silent(socketPath());
    const Stranger wordy(socketPath());
    const Stranger endless(socketPath());
    ASSERT_TRUE(silent.connected && wordy.connected && endless.connected);
    wordy.say("GET / HTTP/1.0\n");
    endless.say(QByteArray(5000, 'a'));
    { const Stranger fleeting(socketPath()); }
    Stranger slow(socketPath());
    slow.say("activ");
    EXPECT_TRUE(meanwhile([&] { return second.activateHolder("good", 20s); }));
    slow.say("ate in two parts\n");
    EXPECT_TRUE(waitUntil([&] { return tokens.size() == 2; }));
    EXPECT_EQ(tokens, (QStringList{QStringLiteral("good"), QStringLiteral("in two parts")}));
}

TEST_F(RunningInstanceTest, AHolderThatDoesNotAnswerIsNotWaitedFor) {
    const auto first = start(noBus());
    first->onActivated = [this](const QString& token) { tokens.append(token); };
    ASSERT_TRUE(first->claim());
    // The holder is this thread, which cannot answer meanwhile.
    DesktopRunningInstance second(noBus(), {.patience = 30ms, .token = QStringLiteral("late")});
    EXPECT_FALSE(second.claim());
    EXPECT_TRUE(waitUntil([&] { return tokens == QStringList{QStringLiteral("late")}; }));
}
