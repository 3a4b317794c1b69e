// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QTimer>

/// Memory for a burst of small allocations, had from the system before the burst comes.
///
/// The system hands memory out page by page, each when it is first written to, and that is slow on a machine
/// that has rested: without the reserve, the thousand requests of a scan spend half of their time on it while
/// the window waits. The reserve takes the pages beforehand, in slices that nobody notices.
///
/// Main thread only, since it serves the allocations of the thread that fills it.
class HeapReserve
{
public:
    HeapReserve();

    /// Begins to fill the reserve, from the event loop. It is full after about 0.6 s and then has 12 MiB:
    /// what the requests to the hosts of a /24 take.
    void fill();
    /// Leaves what has been filled to the allocations that follow at once, and the rest to the system.
    void release();

private:
    void takeSlice();

    QTimer m_timer;
    QList<QByteArray> m_blocks;
};
