// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/HeapReserve.h"

namespace {
constexpr qsizetype reserveBytes = qsizetype(12) * 1024 * 1024;
// Small enough for the heap: what is larger may be mapped on its own, and is gone when it is freed.
constexpr qsizetype blockBytes = qsizetype(64) * 1024;
constexpr int blocksPerSlice = 8;
constexpr int sliceMs = 25;
} // namespace

HeapReserve::HeapReserve()
{
    m_timer.setInterval(sliceMs);
    m_timer.callOnTimeout([this] { takeSlice(); });
}

void HeapReserve::fill()
{
    m_blocks.reserve(reserveBytes / blockBytes);
    m_timer.start();
}

void HeapReserve::takeSlice()
{
    for (int i = 0; i < blocksPerSlice && m_blocks.size() < reserveBytes / blockBytes; ++i)
        m_blocks.append(QByteArray(blockBytes, '\0')); // written to, and thereby had
    if (m_blocks.size() == reserveBytes / blockBytes)
        m_timer.stop();
}

void HeapReserve::release()
{
    m_timer.stop();
    if (m_blocks.isEmpty())
        return;
    // A heap that is free up to its end is given back at once. The last block keeps the others from that
    // until the burst, which comes before the next event, has its memory.
    m_blocks.remove(0, m_blocks.size() - 1);
    QTimer::singleShot(0, &m_timer, [this] { m_blocks.clear(); });
}
