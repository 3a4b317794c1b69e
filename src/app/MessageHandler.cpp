// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/MessageHandler.h"

#include <QDateTime>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

static QString formatOf(QtMsgType type)
{
    switch (type)
    {
    case QtDebugMsg:
        return u"[%1] DEBUG: %2 (%3:%4, %5)\n"_s;
    case QtInfoMsg:
        return u"[%1] INFO: %2 (%3:%4, %5)\n"_s;
    case QtWarningMsg:
        return u"[%1] WARNING: %2 (%3:%4, %5)\n"_s;
    case QtCriticalMsg:
        return u"[%1] CRITICAL: %2 (%3:%4, %5)\n"_s;
    case QtFatalMsg:
        break;
    }
    return u"[%1] FATAL: %2 (%3:%4, %5)\n"_s;
}

void writeLogLine(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray localText = text.toLocal8Bit();
    QTextStream stream(stderr);
    const QString time = QDateTime::currentDateTime().toString(u"hh:mm:ss.zzz"_s);
    // All at once, so that a text with a "%4" of its own stays as it is.
    stream << formatOf(type).arg(time, QString::fromLocal8Bit(localText), QString::fromUtf8(context.file),
                                 QString::number(context.line), QString::fromUtf8(context.function));
    // The line of a fatal message goes down with the process: nothing is written any more.
    if (type == QtFatalMsg)
        std::abort();
}
