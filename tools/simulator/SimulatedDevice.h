// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/DeviceWork.h"
#include "simulator/Fault.h"
#include "simulator/HttpServer.h"

#include <QHostAddress>
#include <QPointer>

/// What a device knows of itself; its endpoints read and change it.
struct DeviceState
{
    QString hostname;
    QString version;
    QString model;
    QString machineId;

    /// The state of the n-th of a family of devices that all differ, counted from 0.
    static DeviceState believable(int number);
};

/// A pretend device on one address: its device API on port 8624 and its companion web service on
/// port 3000. It records what it is asked, and does wrong what it is told to do wrong. A key names
/// requests as HttpRequest::matches() says: "/api/info/version" or "GET /api/info/version".
class SimulatedDevice : public QObject
{
    Q_OBJECT
public:
    static constexpr quint16 apiPort = 8624;
    static constexpr quint16 companionPort = 3000;

    explicit SimulatedDevice(const QHostAddress &address, int number = 0, QObject *parent = nullptr);

    QString address() const { return m_address.toString(); }
    DeviceState &state() { return m_state; }
    const DeviceState &state() const { return m_state; }
    DeviceWork &work() { return m_work; }
    const DeviceWork &work() const { return m_work; }
    /// Where its companion service says that a path is; see Picture::path() and DiskState::urlHost.
    QString companionUrl(const QString &path) const;

    /// Listens on both ports; false if one of them is taken, see errorString(). After a shutdown, or in the
    /// middle of a reboot, it first starts its system.
    bool start();
    /// The device is pulled off the network: it no longer listens, and open connections are reset.
    void stop();
    QString errorString() const { return m_errorString; }

    void rename(const QString &hostname);
    /// What a person has set becomes as it was when the device was new.
    void restoreFactorySettings();
    /// Soon the device is gone, as with stop(); after a reboot it comes back by itself.
    void reboot() { powerDown(true); }
    void shutDown() { powerDown(false); }
    /// Lumarc leaves its port, and returns to it a moment later if the service is active.
    void restartCompanion();

    /// The fault of a key from the next request on, in place of an earlier one of the same key. Of
    /// several keys that fit a request the one that was set last counts.
    void setFault(const QByteArray &key, const Fault &fault);
    /// The body to answer a key with, under status 200, in place of the endpoint's own answer.
    void answer(const QByteArray &key, const QByteArray &body) { setFault(key, Fault::body(body)); }
    void clearFault(const QByteArray &key);
    void clearFaults() { m_faults.clear(); }

    /// Requests that fit the key wait for release() from now on.
    void hold(const QByteArray &key) { setFault(key, Fault::hold()); }
    /// Ends the hold of this key and answers all waiting requests that fit it, the oldest first,
    /// well or with a fault. Returns how many there were.
    int release(const QByteArray &key, const Fault &fault = {});
    /// Answers the oldest waiting request that fits the key; the hold goes on. False if none waits.
    bool releaseOne(const QByteArray &key, const Fault &fault = {});
    /// How many requests that fit the key wait and still have their client.
    int heldCount(const QByteArray &key = {}) const;

    /// Everything it was asked, in the order of arrival, on both ports.
    QList<HttpRequest> requests(const QByteArray &key = {}) const;
    int requestCount(const QByteArray &key = {}) const { return static_cast<int>(requests(key).size()); }
    void clearRequests() { m_requests.clear(); }

signals:
    /// A request is there and recorded, and not answered yet.
    void requestReceived(const HttpRequest &request);
    void renamed();
    /// A reboot or shutdown has taken it off the network.
    void wentAway();
    /// The reboot is over, and it listens again.
    void cameBack();

private:
    struct Held
    {
        QPointer<HttpConnection> connection;
        HttpRequest request;
    };

    void onRequest(HttpConnection *connection, const HttpRequest &request);
    Fault takeFault(const HttpRequest &request);
    void reply(HttpConnection *connection, const HttpRequest &request, const Fault &fault);
    void powerDown(bool comesBack);
    void leave();
    void comeBack();
    bool listen(HttpServer &server, quint16 port);
    /// What the device answers when nothing is wrong with it; see SimulatedDeviceEndpoints.cpp.
    HttpReply properReply(const HttpRequest &request);

    QHostAddress m_address;
    int m_number;
    DeviceState m_state;
    DeviceWork m_work;
    bool m_isOff = false;
    bool m_comesBack = false;
    HttpServer m_apiServer;
    HttpServer m_companionServer;
    /// Runs while the device goes down, and while it is away.
    QTimer m_powerTimer;
    /// Runs while Lumarc is away from its port.
    QTimer m_companionTimer;
    QString m_errorString;
    QList<std::pair<QByteArray, Fault>> m_faults;
    QList<Held> m_held;
    QList<HttpRequest> m_requests;
};
