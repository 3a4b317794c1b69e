// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/ServiceAnnouncer.h"
#include "simulator/SimulatedDevice.h"

#include <QStringList>

#include <memory>
#include <vector>

/// What the program was told on its command line.
struct SimulatorOptions
{
    int deviceCount = 3;
    /// On each device. With 0 megapixels they are as small as they are without being told.
    int pictureCount = 12;
    int videoCount = 6;
    int megapixels = 0;
    QHostAddress firstAddress;
    bool isAnnouncing = true;
    bool isVerbose = false;
};

/// The program's devices, each with its announcer, and the commands that change them.
class Simulator : public QObject
{
    Q_OBJECT
public:
    explicit Simulator(SimulatorOptions options, QObject *parent = nullptr);

    /// Gives a device, or all of them, a fault: "[K:]PATH=KIND[:ARGUMENT]". Returns what is wrong with
    /// the text, or nothing.
    QString addFault(const QString &text);
    /// Starts all devices. Returns what went wrong, or nothing.
    QString start();
    /// Carries out one line of the standard input. Returns what is wrong with it, or nothing.
    QString execute(const QString &line);

    static QString commandHelp();

    /// Whether every device has been announced once.
    bool isReady() const { return m_isReady; }

signals:
    /// An announcement failed.
    void failed(const QString &reason);

private:
    struct Member
    {
        std::unique_ptr<SimulatedDevice> device;
        std::unique_ptr<ServiceAnnouncer> announcer;
    };
    struct Command
    {
        const char *name;
        bool hasText;
        QString (Simulator::*run)(Member &member, const QString &text);
    };
    static const Command s_commands[];

    Member makeMember(int index);
    Member *memberAt(const QString &number);
    void announce(const Member &member) const;
    /// For a device that has come onto the network, and for one that has left it.
    void welcome(const Member &member) const;
    static void depart(const Member &member);
    void sayProgress();

    // The commands
    QString startMember(Member &member, const QString &text);
    QString stopMember(Member &member, const QString &text);
    QString rename(Member &member, const QString &hostname);
    QString setVersion(Member &member, const QString &version);

    SimulatorOptions m_options;
    std::vector<Member> m_members;
    bool m_isReady = false;
    bool m_isSettled = false;
};
