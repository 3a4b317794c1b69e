// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Log.h"

#include <QMutex>

using namespace Qt::StringLiterals;

static QMutex mutex;
static QStringList kept;

static void keep(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
{
    static const QString kinds[] = {u""_s, u"warning: "_s, u"critical: "_s, u"fatal: "_s, u"info: "_s};
    const QMutexLocker lock(&mutex);
    kept.append(kinds[type] + text);
}

Log::Log() : m_previous(qInstallMessageHandler(keep))
{
    clear();
}

Log::~Log()
{
    qInstallMessageHandler(m_previous);
}

QStringList Log::lines() const
{
    const QMutexLocker lock(&mutex);
    // Not shared with the one that other threads go on writing to.
    return {kept.cbegin(), kept.cend()};
}

QStringList Log::starting(const QString &text) const
{
    QStringList fitting;
    for (const QString &line : lines())
    {
        if (line.startsWith(text))
            fitting.append(line);
    }
    return fitting;
}

void Log::clear()
{
    const QMutexLocker lock(&mutex);
    kept.clear();
}
