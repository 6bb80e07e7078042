/// Qt's own locks and reference counts are not instrumented: what they order looks unordered. Only the
/// hand-over of a future's result is left out, never everything that Qt calls.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_options();

// Some tests start programs while threads of the toolkit wait.
const char* __tsan_default_options() { // NOLINT(bugprone-reserved-identifier): the sanitizer's own name
    return "die_after_fork=0";
}

const char* __tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's own name
    return "called_from_lib:libQt6Core.so.6\n"
           "called_from_lib:libglib-2.0.so.0\n"
           "race:libgio-2.0.so.0\n"
           "race:libgobject-2.0.so.0\n"
           "race:libQt6Network.so.6\n"
           "race:libQt6XcbQpa.so.6\n"
           "race:QFutureInterface\n"
           "race:QtPrivate::ResultStoreBase\n"
           "race_top:QWaitCondition\n"
           "race_top:QtConcurrent::\n"
           "race_top:QThreadPool\n";
}

#ifdef __SANITIZE_THREAD__

#include <QAbstractEventDispatcher>
#include <QFutureInterface>
#include <QFutureWatcher>
#include <QSemaphore>
#include <QThreadPool>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

/// Stand before the toolkit's own and tell the sanitizer what they order: a task follows its start, and what
/// follows the end of a task follows the task.
namespace {

char started;
char ended;
char handedOver;

template<class Result, class... Arguments>
auto own(const char* name) {
    return reinterpret_cast<Result (*)(Arguments...)>(::dlsym(RTLD_NEXT, name));
}

} // namespace

void QThreadPool::start(QRunnable* runnable, int priority) {
    static const auto original =
        own<void, QThreadPool*, QRunnable*, int>("_ZN11QThreadPool5startEP9QRunnablei");
    const auto run = [runnable, owned = runnable->autoDelete()] {
        __tsan_acquire(&started);
        runnable->run();
        if (owned)
            delete runnable;
        __tsan_release(&ended);
    };
    __tsan_release(&started);
    original(this, QRunnable::create(run), priority);
}

void QThreadPool::start(std::function<void()> work, int priority) {
    start(QRunnable::create(std::move(work)), priority);
}

void QFutureInterfaceBase::reportFinished() {
    static const auto original =
        own<void, QFutureInterfaceBase*>("_ZN20QFutureInterfaceBase14reportFinishedEv");
    __tsan_release(&ended);
    original(this);
}

void QFutureInterfaceBase::waitForFinished() {
    static const auto original =
        own<void, QFutureInterfaceBase*>("_ZN20QFutureInterfaceBase15waitForFinishedEv");
    original(this);
    __tsan_acquire(&ended);
}

void QFutureInterfaceBase::waitForResult(int index) {
    static const auto original =
        own<void, QFutureInterfaceBase*, int>("_ZN20QFutureInterfaceBase13waitForResultEi");
    original(this, index);
    __tsan_acquire(&ended);
}

bool QFutureWatcherBase::event(QEvent* event) {
    static const auto original =
        own<bool, QFutureWatcherBase*, QEvent*>("_ZN18QFutureWatcherBase5eventEP6QEvent");
    __tsan_acquire(&ended);
    return original(this, event);
}

void QSemaphore::release(int count) {
    static const auto original = own<void, QSemaphore*, int>("_ZN10QSemaphore7releaseEi");
    __tsan_release(&ended);
    original(this, count);
}

void QSemaphore::acquire(int count) {
    static const auto original = own<void, QSemaphore*, int>("_ZN10QSemaphore7acquireEi");
    original(this, count);
    __tsan_acquire(&ended);
}

// A thread of the toolkit's reads the window system's events, and the main thread handles and frees them.
extern "C" void* xcb_wait_for_event(void* connection) {
    static const auto original = own<void*, void*>("xcb_wait_for_event");
    void* event = original(connection);
    __tsan_release(&handedOver);
    return event;
}

// Without a frame of its own, so that what is suppressed of the caller is not what our filters do.
[[gnu::no_sanitize("thread")]] bool
QAbstractEventDispatcher::filterNativeEvent(const QByteArray& type, void* message, qintptr* result) {
    static const auto original = own<bool, QAbstractEventDispatcher*, const QByteArray&, void*, qintptr*>(
        "_ZN24QAbstractEventDispatcher17filterNativeEventERK10QByteArrayPvPx");
    __tsan_acquire(&handedOver);
    return original(this, type, message, result);
}

#endif
