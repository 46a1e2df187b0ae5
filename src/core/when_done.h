#pragma once

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include <utility>

namespace brimwatch {

/// Calls `done` with the result of `future` on the event loop of `context`, unless the context is
/// destroyed first. A future that ends without a result (it was canceled) is not reported.
///
/// Not QFuture::then(context, …): in Qt 6.4 that one asserts when the context dies before the
/// future is done.
template <typename T, typename Function>
void whenDone(const QFuture<T> &future, QObject *context, Function done)
{
    auto *watcher = new QFutureWatcher<T>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
        [watcher, done = std::move(done)]() mutable {
            watcher->deleteLater();
            if (watcher->future().resultCount() > 0)
                done(watcher->result());
        });
    watcher->setFuture(future);
}

} // namespace brimwatch
