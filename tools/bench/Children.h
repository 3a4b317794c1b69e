// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QProcess>
#include <QStringList>

/// The processes that are measured, and the simulated devices they meet. All of them lie beside this one.
namespace children {
enum class OpenFiles
{
    AsGiven,
    /// The soft limit that most desktops start their programs with.
    Limited,
};
/// Runs a program, one beside this one or one with a whole path, to its end and returns the numbers it
/// prints; empty if it failed, which it says itself.
QList<double> numbersOf(const QString &program, const QStringList &arguments = {},
                        OpenFiles openFiles = OpenFiles::AsGiven);

/// Simulated devices, or another program that answers and says so, for as long as the object lives.
class Devices
{
public:
    explicit Devices(const QStringList &arguments,
                     const QString &program = QStringLiteral("noctaris-simulator"));
    ~Devices();
    Devices(const Devices &) = delete;
    Devices &operator=(const Devices &) = delete;

    /// Waits until the simulator says this line; false if it does not.
    bool waitFor(const QByteArray &line);

private:
    QProcess m_process;
    QByteArray m_said;
};
} // namespace children
