// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/Children.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <iostream>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

static QString pathOf(const QString &program)
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(program);
}

static void limitOpenFiles()
{
    constexpr rlim_t commonLimit = 1024;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::min(commonLimit, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
}

QList<double> children::numbersOf(const QString &program, const QStringList &arguments, OpenFiles openFiles)
{
    QProcess process;
    // The log of a program that works as it should is of no interest here.
    process.setStandardErrorFile(QProcess::nullDevice());
    if (openFiles == OpenFiles::Limited)
        process.setChildProcessModifier(limitOpenFiles);
    process.start(pathOf(program), arguments);
    constexpr int limitMs = 120000;
    if (!process.waitForFinished(limitMs) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
    {
        std::cerr << "noctaris-bench: failed: " << program.toStdString() << ' '
                  << arguments.join(u' ').toStdString() << '\n';
        return {};
    }
    QList<double> numbers;
    const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
    for (const QByteArray &word : words)
        numbers.append(word.toDouble());
    return numbers;
}

children::Devices::Devices(const QStringList &arguments, const QString &program)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(pathOf(program), arguments);
}

children::Devices::~Devices()
{
    m_process.terminate();
    m_process.waitForFinished();
}

bool children::Devices::waitFor(const QByteArray &line)
{
    constexpr int limitMs = 15000;
    while (!m_said.contains('\n' + line + '\n'))
    {
        if (!m_process.waitForReadyRead(limitMs))
            return false;
        m_said += m_process.readAllStandardOutput();
    }
    return true;
}
