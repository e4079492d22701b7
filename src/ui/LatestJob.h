// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Background.h"

/// The background work of one kind of one screen, of which only the newest result counts: starting
/// again, or cancelling, tells the job under way to stop and drops what it returns. Every end goes
/// through here, so busy() is never left behind.
class LatestJob {
public:
    /// Results are delivered on the thread of `context`, while it lives.
    explicit LatestJob(QObject *context, QThreadPool &threads = Background::pool())
        : m_context(context)
        , m_threads(threads)
    {
    }
    ~LatestJob() { m_stop.request_stop(); }

    LatestJob(const LatestJob &) = delete;
    LatestJob &operator=(const LatestJob &) = delete;

    /// Whether a result is still to come.
    bool busy() const { return m_busy; }

    /// Calls `work(stop_token)` in the background, then `deliver(result)` here, if it is still
    /// wanted.
    template <typename Work, typename Deliver>
    void start(Work work, Deliver deliver)
    {
        cancel();
        m_busy = true;
        Background::run(
            m_context, m_stop.get_token(), std::move(work),
            [this, token = m_stop.get_token(), deliver = std::move(deliver)](auto &&result) {
                if (token.stop_requested())
                    return;
                m_busy = false;
                deliver(std::forward<decltype(result)>(result));
            },
            m_threads);
    }

    void cancel()
    {
        m_stop.request_stop();
        m_stop = std::stop_source();
        m_busy = false;
    }

private:
    QObject *m_context;
    QThreadPool &m_threads;
    std::stop_source m_stop;
    bool m_busy = false;
};
