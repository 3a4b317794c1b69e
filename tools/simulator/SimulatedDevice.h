// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

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

    /// Listens on both ports; false if one of them is taken, see errorString().
    bool start();
    /// The device is pulled off the network: it no longer listens, and open connections are reset.
    void stop();
    QString errorString() const { return m_errorString; }

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

private:
    struct Held
    {
        QPointer<HttpConnection> connection;
        HttpRequest request;
    };

    void onRequest(HttpConnection *connection, const HttpRequest &request);
    Fault takeFault(const HttpRequest &request);
    void reply(HttpConnection *connection, const HttpRequest &request, const Fault &fault);
    /// What the device answers when nothing is wrong with it; see SimulatedDeviceEndpoints.cpp.
    HttpReply properReply(const HttpRequest &request);

    QHostAddress m_address;
    DeviceState m_state;
    HttpServer m_apiServer;
    HttpServer m_companionServer;
    QString m_errorString;
    QList<std::pair<QByteArray, Fault>> m_faults;
    QList<Held> m_held;
    QList<HttpRequest> m_requests;
};
