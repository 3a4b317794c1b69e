// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// Keeps every message that the process logs while it lives, of all threads, and passes none on. One at
/// a time. A debug line is kept as its text, any other with its kind in front: "info: ...".
class Log
{
public:
    Log();
    ~Log();
    Q_DISABLE_COPY_MOVE(Log)

    QStringList lines() const;
    /// The lines that start with a text, in their order.
    QStringList starting(const QString &text) const;
    /// How often exactly this line was written.
    int count(const QString &line) const { return static_cast<int>(lines().count(line)); }
    void clear();

private:
    QtMessageHandler m_previous;
};
