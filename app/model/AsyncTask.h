#pragma once

#include "QSError.h"

#include <QEventLoop>
#include <QFutureWatcher>
#include <QObject>
#include <QPromise>
#include <QThread>
#include <QThreadPool>

#include <exception>
#include <functional>
#include <memory>
#include <optional>

/// Work away from the main thread, whose result comes back to it.
namespace AsyncTask {
/// What the work gave, or why it failed. One of the two is there.
template <typename Result>
struct Outcome
{
    std::optional<Result> result;
    std::optional<QSError> error;
};

/// Called by the work as it gets on: so many parts done, of so many.
using Progress = std::function<void(int, int)>;

/// Runs the work on the global thread pool, then done on the context's thread. The work may throw
/// QSError, which becomes the outcome; it must not touch the context. When the context is gone by
/// then, the result is dropped with it. What the work tells its Progress comes to progress() on the
/// context's thread, some of the steps left out when they come faster than eyes can read.
template <typename Result>
void run(QObject *context, std::function<Result(const Progress &)> work,
         std::function<void(const Outcome<Result> &)> done, Progress progress)
{
    auto promise = std::make_shared<QPromise<Outcome<Result>>>();
    auto *watcher = new QFutureWatcher<Outcome<Result>>(context);
    if (progress) {
        QObject::connect(watcher, &QFutureWatcherBase::progressValueChanged, context,
                         [watcher, progress = std::move(progress)](int part) {
                             if (watcher->progressMaximum() > 0) { // told by the work
                                 progress(part, watcher->progressMaximum());
                             }
                         });
    }
    QObject::connect(watcher, &QFutureWatcherBase::finished, context,
                     [watcher, done = std::move(done)] {
                         watcher->deleteLater();
                         done(watcher->result());
                     });
    watcher->setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, work = std::move(work)] {
        promise->start();
        Outcome<Result> outcome;
        try {
            outcome.result = work([&promise](int part, int of) {
                promise->setProgressRange(0, of);
                promise->setProgressValue(part);
            });
        } catch (const QSError &error) {
            outcome.error = error;
        } catch (const std::exception &error) {
            outcome.error = QSError::invalid(QString::fromUtf8(error.what()));
        }
        promise->addResult(std::move(outcome));
        promise->finish();
    });
}

/// The same for work that does not tell how it gets on.
template <typename Result>
void run(QObject *context, std::function<Result()> work,
         std::function<void(const Outcome<Result> &)> done)
{
    run<Result>(context, [work = std::move(work)](const Progress &) { return work(); },
                std::move(done), {});
}

/// Runs the work on a thread of its own, whatever the pool is busy with, and returns what it gives
/// or throws what it throws. The events of this thread go on meanwhile, as they do while a question
/// stands open: what they may not begin has to be kept from them.
template <typename Result>
Result wait(const std::function<Result()> &work)
{
    std::optional<Result> result;
    std::exception_ptr error;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            result.emplace(work());
        } catch (...) {
            error = std::current_exception();
        }
    }));
    QEventLoop events;
    QObject::connect(thread.get(), &QThread::finished, &events, &QEventLoop::quit);
    thread->start();
    events.exec(); // the end of the program ends it before the work is done
    thread->wait();
    if (error) {
        std::rethrow_exception(error);
    }
    return std::move(*result);
}
} // namespace AsyncTask
