// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/NoctarisDevice.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QFuture>
#include <QHostAddress>
#include <QHostInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

class qMDNS;
class QNetworkAccessManager;
class QNetworkReply;
class QTimer;
class QUdpSocket;

/// Finds Noctaris devices, lists them, and carries every request to them. Callers name a device by its
/// row; results name it by its address, because rows move in the meantime.
///
/// Lives on the main thread; nothing here blocks. A host becomes a row only after it has answered all
/// four identity questions; rows keep the order of their admission and stay until they are removed.
class DeviceDiscovery : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(int deviceCount READ deviceCount NOTIFY deviceCountChanged)
    Q_PROPERTY(bool hasWifiDongle READ hasWifiDongle NOTIFY wifiDongleStatusChanged)
    Q_PROPERTY(
        bool useInternalWifi READ useInternalWifi WRITE setUseInternalWifi NOTIFY hotspotInterfaceChanged)

public:
    /// What data() yields of a row. The documents use the numbers, so they are part of the contract.
    enum Roles
    {
        IpAddressRole = 257,
        HostnameRole = 258,
        VersionRole = 259,
        ModelRole = 260,
        IsOnlineRole = 261,
        IsLocalRole = 262,
        StatusTextRole = 263,
        SecondaryIpsRole = 264
    };
    Q_ENUM(Roles)

    /// Has multicast DNS set up in the background at once. Needs the application object.
    explicit DeviceDiscovery(QObject *parent = nullptr);
    ~DeviceDiscovery() override;

    /// Switches the class's debug lines on; to be called before the first object exists.
    static void setVerboseLogging(bool verbose);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// True from startDiscovery() until the run ends or is stopped.
    bool isScanning() const { return m_isScanning; }
    /// The last thing that happened, in words for the user.
    QString statusText() const { return m_statusText; }
    /// The number of rows.
    int deviceCount() const { return int(m_devices.size()); }
    /// Whether a second WiFi adapter is known. Nothing reports one here yet.
    bool hasWifiDongle() const { return m_hasWifiDongle; }
    /// Whether the hotspot is meant to run on the built-in WiFi.
    bool useInternalWifi() const { return m_useInternalWifi; }
    void setUseInternalWifi(bool useInternalWifi);

public slots:
    // Rows: DeviceDiscovery.cpp
    /// Probes an address and lists it once it has identified itself. The text is taken as it is.
    void addManualDevice(const QString &ipAddress);
    /// Takes a row off the list, unless it stands for this machine. A bad index does nothing.
    void removeDevice(int index);

    // Discovery run: DeviceDiscoveryRun.cpp
    /// Starts a run; one that is under way is stopped first. Rows stay.
    void startDiscovery();
    /// Ends a run at once and drops every request under way, those of operations included.
    void stopDiscovery();

    // Refresh and status: DeviceDiscoveryStatus.cpp
    /// Probes one row anew and says in statusText how that went. A bad index does nothing.
    void refreshDevice(int index);
    /// Probes every row anew, without a word on the outcome.
    void refreshAllDevices();
    /// Asks every row for its state now (if not asked just before), and every 10000 ms from then on.
    void startPeriodicStatusUpdates();
    void stopPeriodicStatusUpdates();
    void onPeriodicStatusUpdate();
    /// Asks one address for its host name; the answer decides whether its row is online.
    void queryDeviceStatus(const QString &ipAdress);

signals:
    void isScanningChanged();
    void statusTextChanged();
    void deviceCountChanged();
    void wifiDongleStatusChanged();
    void hotspotInterfaceChanged();
    /// A device became a row.
    void deviceAdded(const QString &ipAddress);
    /// A row is gone.
    void deviceRemoved(const QString &ipAddress);
    /// Kept for the documents that listen to it; a device's return shows as a change of its row.
    void deviceBackOnline(const QString &ipAddress);

private slots:
    // Requests: DeviceDiscoveryRequests.cpp
    void onNetworkReplyFinished();

    // Discovery run: DeviceDiscoveryRun.cpp
    void onDiscoveryTimeout();
    void onMdnsTimeout();
    void onMdnsHostFound(const QHostInfo &hostInfo);
    void onMdnsServiceFound(const QString &serviceType, const QString &serviceName, const QString &host,
                            const QHostAddress &address, ushort port,
                            const QMap<QString, QString> &txtRecords);

private:
    /// Which of the four identity questions an address has answered so far.
    struct PendingFlags
    {
        bool hostnameOk = false;
        bool versionOk = false;
        bool modelOk = false;
        bool machineIdOk = false;
    };

    /// How far a refresh has come: 0 waiting, 1 success, -1 failure.
    struct RefreshState
    {
        QTimer *timer = nullptr;
        int hostnameResult = 0;
        int versionResult = 0;
        int modelResult = 0;
    };

    struct Request;
    struct RequestContent;
    struct IdentityField;

    // Rows: DeviceDiscovery.cpp
    void setScanning(bool scanning);
    void setStatusText(const QString &text);
    void addOrUpdateDevice(const NoctarisDevice &device);
    void updateRow(int row, const NoctarisDevice &device);
    void removeRowAt(int row);
    int rowOfAddress(const QString &ipAddress) const;
    int rowOfRecord(const NoctarisDevice &device) const;

    // Requests: DeviceDiscoveryRequests.cpp
    static const Request s_requests[];
    static const Request &requestOf(QLatin1StringView tag);
    QNetworkReply *send(QLatin1StringView tag, const QString &ipAddress);
    QNetworkReply *send(QLatin1StringView tag, const QString &ipAddress, const RequestContent &content);
    static void limitReply(QNetworkReply *reply);

    // Identity probe: DeviceDiscoveryIdentity.cpp
    static const IdentityField s_identityFields[];
    static const IdentityField *identityFieldOf(const QString &tag);
    void queryDeviceIdentity(const QString &ipAddress);
    void onIdentityReply(QNetworkReply *reply, const QString &ipAddress);
    void readIdentity(const QString &tag, const QByteArray &body, NoctarisDevice &device,
                      PendingFlags &flags);
    void takeIdentityValue(const IdentityField &field, const QString &value, NoctarisDevice &device,
                           PendingFlags &flags);
    void failIdentityField(const QString &tag, const QString &ipAddress, PendingFlags &flags);
    void storePending(NoctarisDevice &device, const PendingFlags &flags);
    void admitDevice(NoctarisDevice &device);
    void rejectDevice(const NoctarisDevice &device);

    // Discovery run: DeviceDiscoveryRun.cpp
    void onMdnsInitialized(qMDNS *mdns);
    void startMdnsPhase();
    void finishMdnsPhase();
    bool awaitsMdnsVerification() const;

    // Deep scan: DeviceDiscoveryDeepScan.cpp
    void startDeepScan();
    void sweep(quint32 network, quint32 broadcast, const std::optional<QString> &localAddress);

    // Refresh and status: DeviceDiscoveryStatus.cpp
    void checkRefreshCompletion(const QString &ip);
    void onRefreshTimeout(const QString &ip);
    void endRefresh(const QString &ip);
    void onStatusCheckReply(QNetworkReply *reply, const QString &ipAddress);

    static bool s_verboseLogging;

    QMap<QString, RefreshState> m_refreshes;
    bool m_hasWifiDongle = false;
    bool m_useInternalWifi = true;
    QNetworkAccessManager *m_networkManager;
    QTimer *m_discoveryTimer;
    QTimer *m_mdnsTimer;
    QTimer *m_statusTimer;
    QUdpSocket *m_udpSocket;
    qMDNS *m_mdns = nullptr;
    bool m_isScanning = false;
    bool m_mdnsPhase = false;
    QString m_statusText;
    QList<NoctarisDevice> m_devices;
    QMap<QString, NoctarisDevice> m_pendingDevices;
    QMap<QString, PendingFlags> m_pendingFlags;
    QMap<QString, qint64> m_lastStatusQuery; // ms since the epoch, by address
    QStringList m_mdnsFoundIps;
    // Approximate: a probe adds 3 and brings 4 answers, so a run may end with one under way.
    int m_pendingRequests = 0;
    int m_mdnsDeviceCount = 0;
    bool m_deepScanAllowed = true;
    bool m_mdnsInitialized = false;
    bool m_mdnsStartPending = false;
    QFuture<void> m_mdnsInitFuture;
};
