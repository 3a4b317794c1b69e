// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/SimulatedDevice.h"

#include <QCryptographicHash>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

DeviceState DeviceState::believable(int number)
{
    static const QString names[] = {u"andromeda"_s, u"orion"_s,  u"cassiopeia"_s, u"perseus"_s,
                                    u"lyra"_s,      u"cygnus"_s, u"draco"_s,      u"pegasus"_s};
    static const QString models[] = {u"Noctaris Mini"_s, u"Noctaris Pro"_s, u"Noctaris Max"_s};
    static const QString versions[] = {u"2.3.1"_s, u"2.4.0"_s, u"2.2.7"_s};
    const auto round = number / std::ssize(names);
    const QString suffix = round == 0 ? QString() : u"-%1"_s.arg(round + 1);
    const QByteArray seed = "noctaris device " + QByteArray::number(number);
    return {.hostname = names[number % std::ssize(names)] + suffix,
            .version = versions[number % std::ssize(versions)],
            .model = models[number % std::ssize(models)],
            .machineId =
                QString::fromLatin1(QCryptographicHash::hash(seed, QCryptographicHash::Md5).toHex())};
}

SimulatedDevice::SimulatedDevice(const QHostAddress &address, int number, QObject *parent)
    : QObject(parent),
      m_address(address),
      m_number(number),
      m_state(DeviceState::believable(number)),
      m_work(DeviceWork::believable(number, m_state.version)),
      m_apiServer(this),
      m_companionServer(this)
{
    connect(&m_apiServer, &HttpServer::requestReceived, this, &SimulatedDevice::onRequest);
    connect(&m_companionServer, &HttpServer::requestReceived, this, &SimulatedDevice::onRequest);
    connect(&m_companionTimer, &QTimer::timeout, this, [this] { listen(m_companionServer, companionPort); });
    connect(&m_powerTimer, &QTimer::timeout, this, [this] { m_isOff ? comeBack() : leave(); });
    m_companionTimer.setSingleShot(true);
    m_powerTimer.setSingleShot(true);
}

QString SimulatedDevice::companionUrl(const QString &path) const
{
    const QString &host = m_work.disk.urlHost;
    return u"http://%1:%2%3"_s.arg(host.isEmpty() ? address() : host).arg(companionPort).arg(path);
}

bool SimulatedDevice::start()
{
    stop();
    if (std::exchange(m_isOff, false))
    {
        m_work.restart(m_state.version);
    }
    const bool hasLumarc = m_work.services.isActive.value(u"lumarc"_s);
    if (!listen(m_apiServer, apiPort) || (hasLumarc && !listen(m_companionServer, companionPort)))
    {
        stop();
        return false;
    }
    return true;
}

bool SimulatedDevice::listen(HttpServer &server, quint16 port)
{
    if (server.listen(m_address, port))
    {
        return true;
    }
    m_errorString = u"%1:%2: %3"_s.arg(address()).arg(port).arg(server.errorString());
    return false;
}

void SimulatedDevice::stop()
{
    m_powerTimer.stop();
    m_companionTimer.stop();
    m_apiServer.close();
    m_companionServer.close();
    m_held.clear();
}

void SimulatedDevice::rename(const QString &hostname)
{
    m_state.hostname = hostname;
    emit renamed();
}

void SimulatedDevice::restoreFactorySettings()
{
    m_work.restoreSettings();
    rename(DeviceState::believable(m_number).hostname);
}

void SimulatedDevice::restartCompanion()
{
    m_companionServer.close();
    m_companionTimer.stop();
    m_work.services.regeneration.cancel();
    if (m_work.services.isActive.value(u"lumarc"_s))
    {
        m_companionTimer.start(m_work.services.companionRestartMs);
    }
}

void SimulatedDevice::powerDown(bool comesBack)
{
    // The answer to the command has to be out by then.
    m_comesBack = comesBack;
    m_powerTimer.start(m_work.obeyMs);
}

void SimulatedDevice::leave()
{
    stop();
    m_isOff = true;
    if (m_comesBack)
    {
        m_powerTimer.start(m_work.rebootMs);
    }
    emit wentAway();
}

void SimulatedDevice::comeBack()
{
    if (start())
    {
        emit cameBack();
    }
}

void SimulatedDevice::setFault(const QByteArray &key, const Fault &fault)
{
    clearFault(key);
    m_faults.prepend({key, fault});
}

void SimulatedDevice::clearFault(const QByteArray &key)
{
    m_faults.removeIf([&key](const auto &entry) { return entry.first == key; });
}

int SimulatedDevice::release(const QByteArray &key, const Fault &fault)
{
    clearFault(key);
    int count = 0;
    while (releaseOne(key, fault))
    {
        ++count;
    }
    return count;
}

bool SimulatedDevice::releaseOne(const QByteArray &key, const Fault &fault)
{
    m_held.removeIf([](const Held &held) { return held.connection.isNull(); });
    const auto found =
        std::ranges::find_if(m_held, [&key](const Held &held) { return held.request.matches(key); });
    if (found == m_held.end())
    {
        return false;
    }
    const Held held = m_held.takeAt(found - m_held.begin());
    reply(held.connection, held.request, fault);
    return true;
}

int SimulatedDevice::heldCount(const QByteArray &key) const
{
    return static_cast<int>(std::ranges::count_if(
        m_held, [&key](const Held &held) { return held.connection && held.request.matches(key); }));
}

QList<HttpRequest> SimulatedDevice::requests(const QByteArray &key) const
{
    QList<HttpRequest> fitting;
    std::ranges::copy_if(m_requests, std::back_inserter(fitting),
                         [&key](const HttpRequest &request) { return request.matches(key); });
    return fitting;
}

void SimulatedDevice::onRequest(HttpConnection *connection, const HttpRequest &request)
{
    m_requests.append(request);
    emit requestReceived(request);
    const Fault fault = takeFault(request);
    if (fault.isHeld)
    {
        m_held.append({connection, request});
        return;
    }
    reply(connection, request, fault);
}

Fault SimulatedDevice::takeFault(const HttpRequest &request)
{
    const auto found = std::ranges::find_if(
        m_faults, [&request](const auto &entry) { return request.matches(entry.first); });
    if (found == m_faults.end())
    {
        return {};
    }
    const Fault fault = found->second;
    if (found->second.remaining > 0 && --found->second.remaining == 0)
    {
        m_faults.erase(found);
    }
    return fault;
}

void SimulatedDevice::reply(HttpConnection *connection, const HttpRequest &request, const Fault &fault)
{
    if (fault.delayMs > 0)
    {
        QTimer::singleShot(fault.delayMs, connection,
                           [=, this] { reply(connection, request, fault.after(0)); });
        return;
    }
    HttpReply reply = fault.instead ? *fault.instead : properReply(request);
    reply.status = fault.statusOverride != 0 ? fault.statusOverride : reply.status;
    reply.delivery = fault.delivery;
    reply.intervalMs = fault.intervalMs;
    reply.filledBytes = fault.filledBytes;
    connection->reply(reply);
}
