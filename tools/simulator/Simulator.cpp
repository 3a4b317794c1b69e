// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "Simulator.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    std::cout << line.toStdString() << '\n' << std::flush;
}

} // namespace

const Simulator::Command Simulator::s_commands[] = {
    {"start", false, &Simulator::startMember},
    {"stop", false, &Simulator::stopMember},
    {"rename", true, &Simulator::rename},
    {"version", true, &Simulator::setVersion},
};

Simulator::Simulator(SimulatorOptions options, QObject *parent)
    : QObject(parent), m_options(std::move(options))
{
    for (int index = 0; index < m_options.deviceCount; ++index)
    {
        m_members.push_back(makeMember(index));
    }
    for (Member &member : m_members)
    {
        const SimulatedDevice *device = member.device.get();
        connect(device, &SimulatedDevice::renamed, this, [this, &member] { announce(member); });
        connect(device, &SimulatedDevice::wentAway, this, [&member] { depart(member); });
        connect(device, &SimulatedDevice::cameBack, this, [this, &member] { welcome(member); });
    }
}

Simulator::Member Simulator::makeMember(int index)
{
    const QHostAddress address(m_options.firstAddress.toIPv4Address() + index);
    Member member{std::make_unique<SimulatedDevice>(address, index), std::make_unique<ServiceAnnouncer>()};
    DiskState &disk = member.device->work().disk;
    disk = DiskState::believable(index, m_options.pictureCount, m_options.videoCount);
    if (m_options.megapixels > 0)
    {
        const int height = qCeil(std::sqrt(m_options.megapixels * 1e6 / 1.5));
        std::ranges::for_each(disk.pictures, [height](Picture &each) {
            each.size = {height * 3 / 2, height};
        });
    }
    connect(member.announcer.get(), &ServiceAnnouncer::established, this, &Simulator::sayProgress);
    connect(member.announcer.get(), &ServiceAnnouncer::settled, this, &Simulator::sayProgress);
    connect(member.announcer.get(), &ServiceAnnouncer::failed, this, &Simulator::failed);
    if (m_options.isVerbose)
    {
        connect(member.device.get(), &SimulatedDevice::requestReceived, this,
                [address](const HttpRequest &request) {
                    say(u"%1:%2 %3 %4"_s.arg(address.toString())
                            .arg(request.port)
                            .arg(QString::fromUtf8(request.method), QString::fromUtf8(request.target)));
                });
    }
    return member;
}

QString Simulator::addFault(const QString &text)
{
    static const QRegularExpression form(u"^(?:(\\d+):)?([^=]*/[^=]*)=(.+)$"_s,
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(text);
    const std::optional<Fault> fault = match.hasMatch() ? Fault::fromText(match.captured(3)) : std::nullopt;
    if (!fault)
    {
        return u"\"%1\" is no fault; the form is [K:]PATH=KIND, the kinds are %2"_s.arg(text, Fault::kinds());
    }
    const QString number = match.captured(1);
    Member *only = number.isEmpty() ? nullptr : memberAt(number);
    if (!number.isEmpty() && only == nullptr)
    {
        return u"There is no device %1"_s.arg(number);
    }
    for (Member &member : m_members)
    {
        if (only == nullptr || only == &member)
        {
            member.device->setFault(match.captured(2).toUtf8(), *fault);
        }
    }
    return {};
}

QString Simulator::start()
{
    for (Member &member : m_members)
    {
        if (const QString failure = startMember(member, {}); !failure.isEmpty())
        {
            return failure;
        }
    }
    sayProgress();
    return {};
}

QString Simulator::execute(const QString &line)
{
    const QString name = line.section(u' ', 0, 0, QString::SectionSkipEmpty);
    const QString number = line.section(u' ', 1, 1, QString::SectionSkipEmpty);
    const QString text = line.section(u' ', 2, -1, QString::SectionSkipEmpty).trimmed();
    if (name == u"quit"_s)
    {
        QCoreApplication::quit();
        return {};
    }
    const auto *command = std::ranges::find_if(
        s_commands, [&name](const Command &each) { return name == QLatin1String(each.name); });
    if (command == std::end(s_commands) || command->hasText == text.isEmpty())
    {
        return u"\"%1\" is no command; there are %2"_s.arg(line, commandHelp());
    }
    Member *member = memberAt(number);
    return member == nullptr ? u"There is no device \"%1\""_s.arg(number)
                             : (this->*command->run)(*member, text);
}

QString Simulator::commandHelp()
{
    QStringList forms;
    for (const Command &command : s_commands)
    {
        forms.append(QLatin1String(command.name) + (command.hasText ? " K TEXT"_L1 : " K"_L1));
    }
    return forms.join(u", "_s) + u", quit"_s;
}

/// The device that people call by this number, counted from 1.
Simulator::Member *Simulator::memberAt(const QString &number)
{
    const qsizetype index = number.toLongLong() - 1;
    return index >= 0 && index < std::ssize(m_members) ? &m_members[index] : nullptr;
}

void Simulator::announce(const Member &member) const
{
    if (m_options.isAnnouncing)
    {
        const DeviceState &state = member.device->state();
        member.announcer->start({.hostname = state.hostname,
                                 .address = member.device->address(),
                                 .txtRecords = {{u"device"_s, u"noctaris"_s},
                                                {u"model"_s, state.model},
                                                {u"version"_s, state.version}}});
    }
}

void Simulator::welcome(const Member &member) const
{
    say(u"device %1 %2 listening"_s.arg(member.device->address(), member.device->state().hostname));
    announce(member);
}

void Simulator::depart(const Member &member)
{
    member.announcer->stop();
    say(u"device %1 %2 stopped"_s.arg(member.device->address(), member.device->state().hostname));
}

void Simulator::sayProgress()
{
    const auto isTrueOfAll = [this](bool (ServiceAnnouncer::*state)() const) {
        return !m_options.isAnnouncing || std::ranges::all_of(m_members, [state](const Member &member) {
            return ((*member.announcer).*state)();
        });
    };
    if (isTrueOfAll(&ServiceAnnouncer::isEstablished) && !std::exchange(m_isReady, true))
    {
        say(u"ready"_s);
    }
    if (isTrueOfAll(&ServiceAnnouncer::isSettled) && !std::exchange(m_isSettled, true))
    {
        say(u"settled"_s);
    }
}

QString Simulator::startMember(Member &member, const QString & /*text*/)
{
    if (!member.device->start())
    {
        return member.device->errorString();
    }
    welcome(member);
    return {};
}

QString Simulator::stopMember(Member &member, const QString & /*text*/)
{
    member.device->stop();
    depart(member);
    return {};
}

QString Simulator::rename(Member &member, const QString &hostname)
{
    member.device->rename(hostname);
    return {};
}

QString Simulator::setVersion(Member &member, const QString &version)
{
    member.device->state().version = version;
    announce(member);
    return {};
}
