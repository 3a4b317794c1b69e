// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "devices/HeapReserve.h"
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

#include <functional>
#include <optional>

class qMDNS;
class QJsonObject;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;
class QTimer;
class QUdpSocket;
struct DeviceAnswer;
struct Outcome;

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

    // Delta update: DeviceDiscoveryDelta.cpp. A bad index does nothing.
    /// deltaUpdateStarted() follows.
    Q_INVOKABLE void applyDeltaUpdate(int deviceIndex, const QString &targetVersion);
    /// deltaUpdateProgressReceived() follows.
    Q_INVOKABLE void checkDeltaProgress(int deviceIndex);
    /// deltaStatusReceived() follows.
    Q_INVOKABLE void checkDeltaStatus(int deviceIndex);

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

    // Hostname: DeviceDiscoveryHostname.cpp
    /// Renames a device; blanks are taken out of the name. hostnameUpdated() follows.
    void updateDeviceHostname(int index, const QString &newHostname);

    // Pictures directory: DeviceDiscoveryPictures.cpp
    /// picturesDirectoryReceived() follows, unless there is no such row.
    void queryPicturesDirectory(int deviceIndex);
    /// picturesDirectoryUpdated() follows.
    void updatePicturesDirectory(int deviceIndex, const QString &newDirectory);

    // Software upgrade: DeviceDiscoveryUpgrade.cpp. A bad index does nothing.
    /// softwareUpdateCheckCompleted() follows.
    void checkForSoftwareUpdates(int deviceIndex);
    /// softwareUpdateStarted() follows; on success the progress is then asked for every 2000 ms.
    void startSoftwareUpdate(int deviceIndex);
    /// Asks once; softwareUpdateProgressReceived() or softwareUpdateTimedOut() may follow.
    void checkSoftwareUpdateProgress(int deviceIndex);

    // Delta update and rollback: DeviceDiscoveryDelta.cpp
    /// Prepares an earlier version; rollbackApplyCompleted() follows.
    void applyRollback(int deviceIndex, const QString &targetVersion);

    // Power and reset: DeviceDiscoveryPower.cpp. Each of the four brings its signal of the same stem.
    /// The row is offline from now on, until a status check finds the device again.
    void reboot(int deviceIndex);
    void shutdown(int deviceIndex);
    void factoryReset(int deviceIndex);
    void networkReset(int deviceIndex);

    // Companion service: DeviceDiscoveryLumarc.cpp
    /// Resets and restarts the Lumarc service and has it make its images anew, step by step.
    /// lumarcRegenerationProgressReceived() tells how far it is, lumarcResetCompleted() how it ended.
    void resetLumarc(int deviceIndex);
    /// Asks once, and from then on every 2000 ms until the images are made. A bad index does nothing.
    void checkLumarcRegenerationProgress(int deviceIndex);

    // Release channel: DeviceDiscoveryRelease.cpp
    /// releaseTypeReceived() follows, unless there is no such row.
    void queryReleaseType(int deviceIndex);
    /// Switches to "stable" or "beta", with an installation before if that is needed. releaseTypeUpdated()
    /// follows, and flatpakProgressReceived() and flatpakInstallCompleted() on the way.
    void updateReleaseType(int deviceIndex, const QString &releaseType);
    /// Asks once how far an installation is. A bad index does nothing.
    void checkFlatpakProgress(int deviceIndex);
    /// Stands ready for a button to come; devices know no way to give an installation up.
    void cancelFlatpakOperation(int deviceIndex);

    // Network settings: DeviceDiscoveryNetwork.cpp
    /// hotspotInterfaceReceived() follows, unless there is no such row.
    void queryHotspotInterface(int deviceIndex);
    /// hotspotInterfaceUpdated() follows.
    void updateHotspotInterface(int deviceIndex, bool useInternalWifi);
    /// networkInterfacesReceived() follows, unless there is no such row.
    void queryNetworkInterfaces(int deviceIndex);
    /// ethernetActivationCompleted() follows.
    void activateDirectEthernet(int deviceIndex);
    /// ethernetDeactivationCompleted() follows.
    void deactivateDirectEthernet(int deviceIndex);

    // Remote support: DeviceDiscoverySupport.cpp
    /// remoteSupportStatusReceived() follows, unless there is no such row.
    void queryRemoteSupportStatus(int deviceIndex);
    void queryRemoteSupport(int deviceIndex);
    /// remoteSupportStarted() follows.
    void startRemoteSupport(int deviceIndex);
    /// remoteSupportStopped() follows.
    void stopRemoteSupport(int deviceIndex);

    // Storage and viewers: DeviceDiscoveryViewers.cpp
    /// externalStorageReceived() follows, unless there is no such row.
    void queryExternalStorage(int deviceIndex);
    /// Opens the device's own page in the desktop's browser. What comes of it stays between those two.
    void openNoctarisWebUI(int deviceIndex);
    /// Opens the Lumarc service's page, always on its own port.
    void openCustomPort(int deviceIndex, int port);
    /// Shows the device's screen in the browser, else in the first viewer that starts.
    void openVNCViewer(int deviceIndex);

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

    // Results name the device by its address, which is empty if there was no such row. A message is ready
    // to be shown.

    // Hostname
    void hostnameUpdated(const QString &ipAddress, bool success, const QString &message);

    // Pictures directory
    /// Always carries a path to show, also after a failure.
    void picturesDirectoryReceived(const QString &ipAddress, const QString &directory);
    void picturesDirectoryUpdated(const QString &ipAddress, bool success, const QString &message);

    // Software upgrade
    /// With success the device's answer was usable; with hasDelta the metadata is filled: available (bool),
    /// current_version, target_version, release_title, release_date (text), size_mb (double) and changelog
    /// (a list of texts).
    void softwareUpdateCheckCompleted(const QString &ipAddress, bool success, bool isUpgradable,
                                      const QString &message, bool hasDelta,
                                      const QVariantMap &deltaMetadata);
    void softwareUpdateStarted(const QString &ipAddress, bool success, const QString &message);
    /// In percent, as the device says it; from 99.9 on the upgrade is done.
    void softwareUpdateProgressReceived(const QString &ipAddress, double progress);
    /// The device no longer answers; nothing more is asked.
    void softwareUpdateTimedOut(const QString &ipAddress);

    // Delta update and rollback
    /// Kept for the documents that listen to it; the offer comes with softwareUpdateCheckCompleted().
    void deltaUpdateCheckCompleted(const QString &ipAddress, bool available, const QVariantMap &metadata);
    /// A device that still waits for a reboot says "pending_reboot" in the message.
    void deltaUpdateStarted(const QString &ipAddress, bool success, const QString &message);
    /// In percent; 0 also if the device could not be asked.
    void deltaUpdateProgressReceived(const QString &ipAddress, int progress, const QString &message);
    /// The state is the device's word, such as "idle" or "completed", and empty after a failure.
    void deltaStatusReceived(const QString &ipAddress, bool pendingReboot, const QString &state);
    void rollbackApplyCompleted(const QString &ipAddress, bool success, const QString &message);

    // Power and reset
    /// Once the request has left, a reboot and a shutdown always count as done: who obeys may not answer.
    void rebootCompleted(const QString &ipAddress, bool success, const QString &message);
    void shutdownCompleted(const QString &ipAddress, bool success, const QString &message);
    void factoryResetCompleted(const QString &ipAddress, bool success, const QString &message);
    void networkResetCompleted(const QString &ipAddress, bool success, const QString &message);

    // Companion service
    /// The reset ended, at whichever step.
    void lumarcResetCompleted(const QString &ipAddress, bool success, const QString &message);
    /// In percent, with the service's own word on whether it is still at it.
    void lumarcRegenerationProgressReceived(const QString &ipAddress, int progress, const QString &message,
                                            bool inProgress);

    // Release channel
    /// "stable" or "beta", with the installed versions, empty if unknown; "stable" after a failure.
    void releaseTypeReceived(const QString &ipAddress, const QString &releaseType,
                             const QString &stableVersion = QString(),
                             const QString &betaVersion = QString());
    void releaseTypeUpdated(const QString &ipAddress, bool success, const QString &message);
    /// In percent, with the device's word for the state and its text.
    void flatpakProgressReceived(const QString &ipAddress, int progress, const QString &status,
                                 const QString &message);
    /// After a success one request is still to come, and with its answer releaseTypeUpdated().
    void flatpakInstallCompleted(const QString &ipAddress, bool success, const QString &message);

    // Network settings
    /// True also after a failure.
    void hotspotInterfaceReceived(const QString &ipAddress, bool useInternalWifi);
    void hotspotInterfaceUpdated(const QString &ipAddress, bool success, const QString &message);
    /// result (bool): whether the list is usable; interfaces: a list of maps of interface and ip (text).
    void networkInterfacesReceived(const QString &ipAddress, const QVariantMap &interfaces);
    void ethernetActivationCompleted(const QString &ipAddress, bool success, const QString &message);
    void ethernetDeactivationCompleted(const QString &ipAddress, bool success, const QString &message);

    // Remote support
    /// An active service always comes with its id.
    void remoteSupportStatusReceived(const QString &ipAddress, bool isActive, const QString &rustdeskId);
    /// The id may be empty also after a success.
    void remoteSupportStarted(const QString &ipAddress, bool success, const QString &message,
                              const QString &rustdeskId);
    void remoteSupportStopped(const QString &ipAddress, bool success, const QString &message);

    // Storage and viewers
    /// Where the device's external drives are mounted; empty also after a failure.
    void externalStorageReceived(const QString &ipAddress, const QStringList &devices);

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

    /// The release that an installation is for, until it has ended.
    struct PendingRelease
    {
        QString releaseType;
        QString branch;
    };

    /// What stands on the log in front of an answer's HTTP status, body and error; null: not there.
    struct AnswerWords
    {
        const char *status;
        const char *body = nullptr;
        const char *error = nullptr;
    };

    struct Request;
    struct RequestContent;
    using ResultSignal = void (DeviceDiscovery::*)(const QString &ipAddress, bool success,
                                                   const QString &message);
    using Refusal = std::function<void(const QString &ipAddress, const QString &message)>;
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
    static const Request &requestOf(QLatin1StringView tag);
    static QNetworkRequest requestWith(int headers);
    QNetworkReply *send(QLatin1StringView tag, const QString &ipAddress);
    QNetworkReply *send(QLatin1StringView tag, const QString &ipAddress, const RequestContent &content);
    QNetworkReply *sendBy(int method, const QNetworkRequest &request, const QByteArray &body);
    static void limitReply(QNetworkReply *reply);
    static QByteArray jsonBody(const QJsonObject &object);

    // What operations share: DeviceDiscoveryOperations.cpp
    QString addressOfRow(int row) const;
    std::optional<QString> addressForQuery(int row, const char *badIndexWords) const;
    std::optional<QString> addressForCommand(int row, const Refusal &refuse);
    std::optional<QString> addressForCommand(int row, ResultSignal signal);
    std::optional<QString> addressInModel(int row) const;
    void conclude(QNetworkReply *reply, Outcome (*judge)(const DeviceAnswer &answer), ResultSignal signal,
                  const AnswerWords &words);
    void report(ResultSignal signal, const QString &ipAddress, const Outcome &outcome);
    static bool endPolls(QMap<QString, QTimer *> &timers, const QString &ipAddress);
    static void logRequest(const char *urlWords, const QNetworkReply *reply,
                           const char *contentWords = nullptr, const QByteArray &content = {});
    static void logAnswer(const AnswerWords &words, const DeviceAnswer &answer);
    static void logOutcome(const Outcome &outcome, const DeviceAnswer &answer);

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

    // Hostname: DeviceDiscoveryHostname.cpp
    void onHostnameReply(QNetworkReply *reply, const QString &ipAddress);

    // Pictures directory: DeviceDiscoveryPictures.cpp
    void onPicturesReply(QNetworkReply *reply, const QString &ipAddress);
    void onPicturesUpdateReply(QNetworkReply *reply, const QString &ipAddress);

    // Software upgrade: DeviceDiscoveryUpgrade.cpp
    void onUpgradableReply(QNetworkReply *reply, const QString &ipAddress);
    QNetworkReply *sendUpgradeRequest(QLatin1StringView path, const QString &ipAddress);
    void onUpgradeStartReply(QNetworkReply *reply, const QString &ipAddress, int deviceIndex);
    void startUpgradePolls(const QString &ipAddress, int deviceIndex);
    void onUpgradeProgressReply(QNetworkReply *reply, const QString &ipAddress);

    // Delta update and rollback: DeviceDiscoveryDelta.cpp
    void onDeltaApplyReply(QNetworkReply *reply, const QString &ipAddress);
    void onDeltaProgressReply(QNetworkReply *reply, const QString &ipAddress);
    void onDeltaStatusReply(QNetworkReply *reply, const QString &ipAddress);
    void onRollbackReply(QNetworkReply *reply, const QString &ipAddress);

    // Power and reset: DeviceDiscoveryPower.cpp
    std::optional<QString> sendPowerCommand(QLatin1StringView tag, int deviceIndex, ResultSignal completed,
                                            const QString &statusText, const char *requestWords);
    void onRebootReply(QNetworkReply *reply, const QString &ipAddress);
    void onShutdownReply(QNetworkReply *reply, const QString &ipAddress);
    void onFactoryResetReply(QNetworkReply *reply, const QString &ipAddress);
    void onNetworkResetReply(QNetworkReply *reply, const QString &ipAddress);

    // Companion service: DeviceDiscoveryLumarc.cpp
    void onLumarcResetReply(QNetworkReply *reply, const QString &ipAddress);
    void onLumarcRestartReply(QNetworkReply *reply, const QString &ipAddress);
    void regenerateLumarcImages(const QString &ipAddress);
    void onLumarcGenerateReply(QNetworkReply *reply, const QString &ipAddress);
    void onLumarcProgressReply(QNetworkReply *reply, const QString &ipAddress);

    // Release channel: DeviceDiscoveryRelease.cpp
    void onReleaseTypeReply(QNetworkReply *reply, const QString &ipAddress);
    void onReleaseCheckReply(QNetworkReply *reply, const QString &ipAddress);
    void makeBranchDefault(const QString &ipAddress, const QString &release, const QString &branch);
    void onInstallReply(QNetworkReply *reply, const QString &ipAddress);
    void onInstallProgressReply(QNetworkReply *reply, const QString &ipAddress);
    void onReleaseUpdateReply(QNetworkReply *reply, const QString &ipAddress);

    // Network settings: DeviceDiscoveryNetwork.cpp
    void onHotspotReply(QNetworkReply *reply, const QString &ipAddress);
    void onHotspotUpdateReply(QNetworkReply *reply, const QString &ipAddress);
    static void logNetworkInterfaces(const DeviceAnswer &answer);
    void onNetworkInterfacesReply(QNetworkReply *reply, const QString &ipAddress);
    void replaceSecondaryIps(int row, const QVariantList &interfaces);
    void sendEthernetCommand(QLatin1StringView tag, int deviceIndex, ResultSignal completed,
                             const QString &statusText, const char *requestWords);
    void onEthernetActivationReply(QNetworkReply *reply, const QString &ipAddress);
    void onEthernetDeactivationReply(QNetworkReply *reply, const QString &ipAddress);

    // Remote support: DeviceDiscoverySupport.cpp
    void onSupportStatusReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportIdReply(QNetworkReply *reply, const QString &ipAddress);
    bool passesSupportStep(const DeviceAnswer &answer, const QString &failure);
    void onSupportEnableReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportStartReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportPasswordReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportFetchIdReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportStopReply(QNetworkReply *reply, const QString &ipAddress);
    void onSupportDisableReply(QNetworkReply *reply, const QString &ipAddress);

    // Storage and viewers: DeviceDiscoveryViewers.cpp
    void onStorageReply(QNetworkReply *reply, const QString &ipAddress);

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
    QMap<QString, QString> m_picturesDirectories; // last known, by address
    // The polls of operations under way, by address.
    QMap<QString, QTimer *> m_updateProgressTimers;
    QMap<QString, QTimer *> m_flatpakProgressTimers;
    QMap<QString, PendingRelease> m_pendingReleases;
    bool m_deepScanAllowed = true;
    HeapReserve m_deepScanReserve;
    bool m_mdnsInitialized = false;
    bool m_mdnsStartPending = false;
    QFuture<void> m_mdnsInitFuture;
};
