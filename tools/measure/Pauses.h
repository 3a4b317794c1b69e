// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>

/// Watches, from a moment on, how long the main thread does not serve its events.
class Pauses
{
public:
    /// Starts to watch, and forgets what was before.
    void start();
    /// Ends to watch; what was seen stays. Watching costs about a fiftieth of a core.
    void stop() { m_timer.stop(); }
    /// When it was started, by measure::nowMs(); 0 before.
    double startMs() const { return m_startMs; }
    /// The longest pause since then.
    double longestMs() const { return m_longestMs; }
    /// The sum of all pauses that ended within the first two seconds. What the scheduler and the watching
    /// itself cost is no pause.
    double earlySumMs() const { return m_earlySumMs; }

private:
    void onBeat();

    QTimer m_timer;
    double m_startMs = 0;
    double m_lastMs = 0;
    double m_earlySumMs = 0;
    double m_longestMs = 0;
};
