// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "measure/Pauses.h"

#include "measure/Measure.h"

#include <algorithm>

void Pauses::start()
{
    if (m_startMs == 0)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { onBeat(); });
        m_timer.setTimerType(Qt::PreciseTimer);
    }
    m_timer.start(1);
    m_startMs = m_lastMs = measure::nowMs();
    m_earlySumMs = m_longestMs = 0;
}

void Pauses::onBeat()
{
    constexpr double noPauseMs = 3;
    constexpr double earlyMs = 2000;
    const double nowMs = measure::nowMs();
    const double pauseMs = nowMs - m_lastMs;
    m_lastMs = nowMs;
    m_longestMs = std::max(m_longestMs, pauseMs);
    if (pauseMs > noPauseMs && nowMs - m_startMs < earlyMs)
        m_earlySumMs += pauseMs;
}
