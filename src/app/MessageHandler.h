// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QMessageLogContext;
class QString;

/// The one sink of the log, for qInstallMessageHandler(): writes each message as a line with the time of
/// day, its kind and its origin to the standard error stream. Drops nothing. A fatal message aborts.
void writeLogLine(QtMsgType type, const QMessageLogContext &context, const QString &text);
