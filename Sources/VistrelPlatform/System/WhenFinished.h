#pragma once

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include <utility>

/// Calls `then` with the future's result in the thread of `context`, and never once `context` is gone.
/// (`QFuture::then` with a context asserts, and races, when the context is destroyed first.) A future
/// that ends without a result calls nobody.
template<class T, class Then>
void whenFinished(const QFuture<T>& future, QObject* context, Then&& then) {
    auto* watcher = new QFutureWatcher<T>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, then = std::forward<Then>(then)]() mutable {
                         watcher->deleteLater();
                         const QFuture<T> finished = watcher->future();
                         if (finished.resultCount() > 0)
                             then(finished.result());
                     });
    watcher->setFuture(future);
}
