// SPDX-License-Identifier: GPL-3.0-or-later
// Part of every program that is built with the thread sanitizer. Qt hands work and results from
// thread to thread under locks that the sanitizer does not see, since Qt itself is not built with
// it: every result of background work would be reported as a race. Here each function of Qt through
// which our code hands something over stands in front of the real one and says who passes what to
// whom. Nothing else is said, so that what is shared behind Qt's back is still found.

#include <QFutureInterface>
#include <QSemaphore>
#include <QThreadPool>

#include <cstdarg>
#include <dlfcn.h>
#include <functional>
#include <sanitizer/tsan_interface.h>
#include <sched.h>
#include <utility>

namespace {

/// The function of Qt that one here stands in front of.
template <typename Function>
Function *real(const char *symbol)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, symbol));
}

/// What all copies of a future share: the private data, to which the first member points. Looked at
/// before the sanitizer knows that the one who asks may look.
[[gnu::no_sanitize_thread, gnu::noinline]] void *shared(const QFutureInterfaceBase *future)
{
    return reinterpret_cast<void *const *>(future)[1];
}

/// Work without a result.
class Work : public QRunnable {
public:
    Work(std::function<void()> work, QThreadPool *pool) : m_work(std::move(work)), m_pool(pool)
    {
        __tsan_release(this);
    }

    void run() override
    {
        __tsan_acquire(this);
        std::exchange(m_work, nullptr)();
        __tsan_release(m_pool);
    }

private:
    std::function<void()> m_work;
    QThreadPool *m_pool;
};

} // namespace

// The one who starts the work, with all that the work takes along.
void QFutureInterfaceBase::reportStarted()
{
    __tsan_release(shared(this));
    static auto *const qts =
        real<void(QFutureInterfaceBase *)>("_ZN20QFutureInterfaceBase13reportStartedEv");
    qts(this);
}

// The worker, before it begins.
bool QFutureInterfaceBase::isCanceled() const
{
    static auto *const qts =
        real<bool(const QFutureInterfaceBase *)>("_ZNK20QFutureInterfaceBase10isCanceledEv");
    const bool canceled = qts(this);
    __tsan_acquire(shared(this));
    return canceled;
}

// The worker, with its result.
void QFutureInterfaceBase::reportFinished()
{
    __tsan_release(shared(this));
    static auto *const qts =
        real<void(QFutureInterfaceBase *)>("_ZN20QFutureInterfaceBase14reportFinishedEv");
    qts(this);
}

// The one who takes the result.
void QFutureInterfaceBase::waitForResult(int index)
{
    static auto *const qts =
        real<void(QFutureInterfaceBase *, int)>("_ZN20QFutureInterfaceBase13waitForResultEi");
    qts(this, index);
    __tsan_acquire(shared(this));
}

// Whoever lets go of the result last destroys it.
bool QFutureInterfaceBase::derefT() const
{
    __tsan_release(shared(this));
    static auto *const qts =
        real<bool(const QFutureInterfaceBase *)>("_ZNK20QFutureInterfaceBase6derefTEv");
    const bool stays = qts(this);
    __tsan_acquire(shared(this));
    return stays;
}

// The end of work without a result is seen by whoever waits for the pool.
void QThreadPool::start(std::function<void()> work, int priority)
{
    start(new Work(std::move(work), this), priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    static auto *const qts = real<bool(QThreadPool *, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool done = qts(this, milliseconds);
    __tsan_acquire(this);
    return done;
}

void QSemaphore::release(int count)
{
    __tsan_release(this);
    static auto *const qts = real<void(QSemaphore *, int)>("_ZN10QSemaphore7releaseEi");
    qts(this, count);
}

void QSemaphore::acquire(int count)
{
    static auto *const qts = real<void(QSemaphore *, int)>("_ZN10QSemaphore7acquireEi");
    qts(this, count);
    __tsan_acquire(this);
}

// Qt starts programs in a child that shares the memory until then, and the sanitizer, which takes
// it for a copy, would forget all other threads. So it is made one.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...)
{
    va_list more;
    va_start(more, argument);
    auto *const parentId = va_arg(more, pid_t *);
    auto *const storage = va_arg(more, void *);
    auto *const childId = va_arg(more, pid_t *);
    va_end(more);
    static auto *const sanitizers =
        real<int(int (*)(void *), void *, int, void *, pid_t *, void *, pid_t *)>("clone");
    return sanitizers(function, stack, flags & ~(CLONE_VM | CLONE_VFORK), argument, parentId,
                      storage, childId);
}
