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

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Activation forward(const char* token = "") {
    return {Activation::Purpose::comeForward, QString::fromLatin1(token)};
}
Activation capture(const char* token) {
    return {Activation::Purpose::capture, QString::fromLatin1(token)};
}

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

/// One end of the program's socket that behaves as it likes.
class Stranger {
public:
    explicit Stranger(const QString& path) {
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path - 1);
    }
    bool connects() const { return ::connect(socket.get(), target(), sizeof address) == 0; }
    bool binds() const { return ::bind(socket.get(), target(), sizeof address) == 0; }
    void say(const QByteArray& text) const {
        EXPECT_EQ(::send(socket.get(), text.constData(), static_cast<size_t>(text.size()), MSG_NOSIGNAL),
                  text.size());
    }

private:
    const sockaddr* target() const { return reinterpret_cast<const sockaddr*>(&address); }

    FileDescriptor socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    sockaddr_un address{};
};

class RunningInstanceTest : public testing::Test {
protected:
    QString socketPath() const { return *Paths::runtime() + u"/instance.socket"_s; }
    std::unique_ptr<DesktopRunningInstance> start(const QDBusConnection& connection,
                                                  const Activation& wanted = {}) {
        auto instance = std::make_unique<DesktopRunningInstance>(
            connection, DesktopRunningInstance::Options{.patience = 20s, .wanted = wanted});
        instance->onActivated = [this](const Activation& received) { heard.append(received); };
        return instance;
    }
    /// A start that the holder, living in this thread, can answer.
    bool laterStartClaims(const QDBusConnection& connection, const Activation& wanted = {}) {
        return meanwhile([&] { return start(connection, wanted)->claim(); });
    }

    QTemporaryDir runtime;
    ScopedEnvironment environment{"XDG_RUNTIME_DIR", QFile::encodeName(runtime.path())};
    ShareTestBus bus;
    const QDBusConnection noBus{QString()};
    QList<Activation> heard;
};

} // namespace

TEST_F(RunningInstanceTest, WithoutABusTheSecondStartActivatesTheFirstUntilThatEnds) {
    // What a killed process leaves: its socket and its file, neither held by anybody.
    ASSERT_TRUE(Stranger(socketPath()).binds());
    writeFile(*Paths::runtime() + u"/instance.lock"_s, {});
    auto first = start(noBus);
    ASSERT_TRUE(first->claim());
    EXPECT_FALSE(laterStartClaims(noBus, forward("token 1")));
    EXPECT_FALSE(laterStartClaims(noBus));
    EXPECT_FALSE(laterStartClaims(noBus, capture("token 2")));
    EXPECT_EQ(heard, (QList{forward("token 1"), forward(), capture("token 2")}));
    first.reset();
    EXPECT_FALSE(QFile::exists(socketPath()));
    EXPECT_TRUE(start(noBus)->claim());
}

TEST_F(RunningInstanceTest, OnTheBusThePlaceIsOneForAllRuntimeFolders) {
    auto first = start(bus.client());
    ASSERT_TRUE(first->claim());
    const QTemporaryDir elsewhere;
    {
        const ScopedEnvironment other("XDG_RUNTIME_DIR", QFile::encodeName(elsewhere.path()));
        EXPECT_FALSE(laterStartClaims(bus.peer(), capture("t")));
    }
    EXPECT_EQ(heard, QList{capture("t")});
    EXPECT_FALSE(QFile::exists(elsewhere.filePath(u"Vistrel/instance.socket"_s)));
    first.reset();
    EXPECT_TRUE(start(bus.peer())->claim());

    const ScopedEnvironment unusable("XDG_RUNTIME_DIR", "/dev/null");
    first = start(bus.client());
    EXPECT_TRUE(first->claim());
    EXPECT_FALSE(laterStartClaims(bus.peer()));
    EXPECT_TRUE(start(noBus)->claim()) << "nothing to tell them apart by";
}

TEST_F(RunningInstanceTest, TheDesktopCanCallIt) {
    const auto first = start(bus.client());
    ASSERT_TRUE(first->claim());
    const auto call = [this](const char* method, const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(u"com.orvane.Vistrel"_s, u"/com/orvane/Vistrel"_s,
                                           u"org.freedesktop.Application"_s, QString::fromLatin1(method));
        message.setArguments(arguments);
        EXPECT_EQ(meanwhile([&] { return bus.peer().call(message).type(); }), QDBusMessage::ReplyMessage);
    };
    const QVariantMap data{{u"desktop-startup-id"_s, u"id"_s}};
    const QVariantMap both{{u"desktop-startup-id"_s, u"id"_s}, {u"activation-token"_s, u"newer"_s}};
    call("Activate", {data});
    call("Open", {QStringList{u"file:///a"_s}, QVariantMap()});
    call("ActivateAction", {u"capture"_s, QVariantList(), both});
    call("ActivateAction", {u"unheard-of"_s, QVariantList(), both});
    EXPECT_EQ(heard, (QList{forward("id"), forward(), capture("newer")}));

    const DesktopRunningInstance::Options asking{.patience = 20s, .wanted = capture("token")};
    EXPECT_TRUE(meanwhile([&] { return DesktopRunningInstance::askRunning(bus.peer(), asking); }));
    EXPECT_EQ(heard.last(), capture("token"));
    EXPECT_FALSE(DesktopRunningInstance::askRunning(noBus, asking));
}

TEST_F(RunningInstanceTest, StrangeVisitorsDoNoHarm) {
    InstanceLock lock(*Paths::runtime());
    lock.onActivated = [this](const Activation& wanted) { heard.append(wanted); };
    ASSERT_EQ(lock.acquire(), InstanceLock::Outcome::acquired);
    InstanceLock second(*Paths::runtime());
    EXPECT_EQ(second.acquire(), InstanceLock::Outcome::heldByAnother);

    const Stranger silent(socketPath());
    const Stranger wordy(socketPath());
    const Stranger endless(socketPath());
    const Stranger slow(socketPath());
    ASSERT_TRUE(silent.connects() && wordy.connects() && endless.connects() && slow.connects());
    wordy.say("GET / HTTP/1.0\n");
    endless.say(QByteArray(5000, 'a'));
    EXPECT_TRUE(Stranger(socketPath()).connects()) << "and goes at once";
    slow.say("activ");
    EXPECT_TRUE(meanwhile([&] { return second.activateHolder(capture("good"), 20s); }));
    slow.say("ate in two parts\n");
    EXPECT_TRUE(waitUntil([&] { return heard.size() == 2; }));
    EXPECT_EQ(heard, (QList{capture("good"), forward("in two parts")}));
}

TEST_F(RunningInstanceTest, AHolderThatDoesNotAnswerIsNotWaitedFor) {
    const auto first = start(noBus);
    ASSERT_TRUE(first->claim());
    // The holder is this thread, which cannot answer meanwhile.
    DesktopRunningInstance second(noBus, {.patience = 30ms, .wanted = forward("late")});
    EXPECT_FALSE(second.claim());
    EXPECT_TRUE(waitUntil([&] { return heard == QList{forward("late")}; }));
}
