// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

/// One known device. Kept by value in lists and maps, so it can be copied; a copy starts a life of its
/// own: it takes what is shown of the device, and leaves the machine id behind.
class NoctarisDevice : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ipAddress READ ipAddress WRITE setIpAddress NOTIFY ipAddressChanged)
    Q_PROPERTY(QString hostname READ hostname WRITE setHostname NOTIFY hostnameChanged)
    Q_PROPERTY(QString version READ version WRITE setVersion NOTIFY versionChanged)
    Q_PROPERTY(QString model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(bool isOnline READ isOnline WRITE setIsOnline NOTIFY isOnlineChanged)
    Q_PROPERTY(bool isLocal READ isLocal WRITE setIsLocal NOTIFY isLocalChanged)

public:
    explicit NoctarisDevice(QObject *parent = nullptr);
    /// Takes the parent and every field but the machine id, without signals.
    NoctarisDevice(const NoctarisDevice &other);
    /// Goes through the setters, so it notifies; the target keeps its own machine id.
    NoctarisDevice &operator=(const NoctarisDevice &other);
    ~NoctarisDevice() override = default;

    /// The primary address, dotted IPv4 text: the one that all traffic goes to.
    QString ipAddress() const { return m_ipAddress; }
    void setIpAddress(const QString &ipAddress);

    /// Further addresses of the same device.
    QStringList secondaryIps() const { return m_secondaryIps; }
    /// Replaces the list, leaving out repetitions and the primary address. Always notifies.
    void setSecondaryIps(const QStringList &addresses);
    /// Adds one address and notifies, unless it is listed already or is the primary one.
    void addSecondaryIp(const QString &address);

    QString hostname() const { return m_hostname; }
    void setHostname(const QString &hostname);

    QString version() const { return m_version; }
    void setVersion(const QString &version);

    QString model() const { return m_model; }
    void setModel(const QString &model);

    /// Identifies the hardware across addresses; empty while unknown.
    QString machineId() const { return m_machineId; }
    void setMachineId(const QString &machineId) { m_machineId = machineId; }

    /// Last known reachability.
    bool isOnline() const { return m_isOnline; }
    void setIsOnline(bool isOnline);

    /// True if the row stands for the machine that the program runs on. Nothing sets it yet.
    bool isLocal() const { return m_isLocal; }
    void setIsLocal(bool isLocal);

    /// True if the program itself runs on a device. Stands ready for such a build; nothing asks yet.
    static bool isLocalHost();

signals:
    void ipAddressChanged();
    void secondaryIpsChanged();
    void hostnameChanged();
    void versionChanged();
    void modelChanged();
    void isOnlineChanged();
    void isLocalChanged();

private:
    template <typename T> void store(T &field, const T &value, void (NoctarisDevice::*changed)());

    QString m_ipAddress;
    QStringList m_secondaryIps;
    QString m_hostname;
    QString m_version;
    QString m_model;
    QString m_machineId;
    bool m_isOnline = false;
    bool m_isLocal = false;
};
