// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/ServiceAnnouncer.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QNetworkProxy>
#include <QRandomGenerator>
#include <QThread>
#include <QUdpSocket>

#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/simple-watch.h>
#include <avahi-common/timeval.h>
#include <avahi-core/core.h>
#include <avahi-core/log.h>
#include <avahi-core/publish.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

/// Takes the place of the library's function of this name, which sets the random part of every time
/// that a responder lets pass. The library keeps one random number for the whole process, so the devices
/// of one program would answer in the same instant; this keeps one for each thread, hence for each device.
extern "C" Q_DECL_EXPORT timeval *avahi_elapse_time(timeval *tv, unsigned msec, unsigned jitter)
{
    using namespace std::chrono_literals;
    using Clock = std::chrono::steady_clock;
    thread_local double part = 0;
    thread_local Clock::time_point drawnAt = Clock::now() - 10s;
    // A number serves for ten seconds: what falls due together leaves in one datagram.
    if (const Clock::time_point now = Clock::now(); now >= drawnAt + 10s)
    {
        part = QRandomGenerator::global()->generateDouble();
        drawnAt = now;
    }
    gettimeofday(tv, nullptr);
    return avahi_timeval_add(tv, static_cast<AvahiUsec>(1000 * (msec + jitter * part)));
}

namespace {

template <auto release> struct Releaser
{
    template <typename T> void operator()(T *pointer) const { release(pointer); }
};
using StringList = std::unique_ptr<AvahiStringList, Releaser<avahi_string_list_free>>;

/// The machine's own address that its multicasts leave from; null if they have no route.
QHostAddress multicastSource()
{
    QUdpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(QHostAddress(u"224.0.0.251"_s), 5353);
    return socket.localAddress();
}

/// The interface to announce an address on; empty if none holds it. Of several that do, the one that
/// multicasts leave by wins, for there the machine hears its own queries.
QString interfaceFor(const QHostAddress &address)
{
    const QHostAddress source = multicastSource();
    QString holding;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces)
    {
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        const bool isHolding = std::ranges::any_of(entries, [&address](const QNetworkAddressEntry &entry) {
            return address.isInSubnet(entry.ip(), entry.prefixLength());
        });
        const bool isSource = std::ranges::find(entries, source, &QNetworkAddressEntry::ip) != entries.end();
        if (isHolding && (isSource || holding.isEmpty()))
        {
            holding = interface.name();
        }
    }
    return holding;
}

/// One responder, made, run and ended on one thread.
class Responder
{
public:
    /// Reports an empty text when the service is established, else what went wrong.
    using Report = std::function<void(const QString &failure)>;

    Responder(AnnouncedService service, QString interface, Report report)
        : m_service(std::move(service)), m_interface(std::move(interface)), m_report(std::move(report))
    {
    }

    /// Serves until the event is raised.
    void run(int stopEvent);

private:
    static void onServerState(AvahiServer *server, AvahiServerState state, void *self);
    static void onGroupState(AvahiServer *server, AvahiSEntryGroup *group, AvahiEntryGroupState state,
                             void *self);
    void publish(AvahiServer *server);
    int addRecords(AvahiServer *server, AvahiSEntryGroup *group) const;

    AnnouncedService m_service;
    QString m_interface;
    Report m_report;
    bool m_isPublished = false;
};

void Responder::run(int stopEvent)
{
    const std::unique_ptr<AvahiSimplePoll, Releaser<avahi_simple_poll_free>> poll(avahi_simple_poll_new());
    const AvahiPoll *api = avahi_simple_poll_get(poll.get());
    AvahiWatch *watch = api->watch_new(
        api, stopEvent, AVAHI_WATCH_IN,
        [](AvahiWatch *, int, AvahiWatchEvent, void *data) {
            avahi_simple_poll_quit(static_cast<AvahiSimplePoll *>(data));
        },
        poll.get());

    AvahiServerConfig config;
    avahi_server_config_init(&config);
    config.host_name = avahi_strdup(m_service.hostname.toUtf8().constData());
    config.allow_interfaces = avahi_string_list_new(m_interface.toUtf8().constData(), nullptr);
    config.use_ipv6 = 0;
    config.publish_hinfo = 0;
    config.publish_addresses = 0;
    config.publish_workstation = 0;
    config.publish_domain = 0;
    config.enable_wide_area = 0;
    int error = 0;
    const std::unique_ptr<AvahiServer, Releaser<avahi_server_free>> server(
        avahi_server_new(api, &config, &Responder::onServerState, this, &error));
    avahi_server_config_free(&config);
    if (!server)
    {
        m_report(QString::fromUtf8(avahi_strerror(error)));
    }
    avahi_simple_poll_loop(poll.get());
    api->watch_free(watch);
}

void Responder::onServerState(AvahiServer *server, AvahiServerState state, void *self)
{
    auto *responder = static_cast<Responder *>(self);
    if (state == AVAHI_SERVER_RUNNING && !std::exchange(responder->m_isPublished, true))
    {
        responder->publish(server);
    }
}

void Responder::onGroupState(AvahiServer * /*server*/, AvahiSEntryGroup * /*group*/,
                             AvahiEntryGroupState state, void *self)
{
    const auto *responder = static_cast<Responder *>(self);
    if (state == AVAHI_ENTRY_GROUP_ESTABLISHED)
    {
        responder->m_report({});
    }
    else if (state == AVAHI_ENTRY_GROUP_COLLISION)
    {
        responder->m_report(u"The name \"%1\" is taken on this network"_s.arg(responder->m_service.hostname));
    }
}

void Responder::publish(AvahiServer *server)
{
    // The group belongs to the server and ends with it.
    AvahiSEntryGroup *group = avahi_s_entry_group_new(server, &Responder::onGroupState, this);
    if (group == nullptr || addRecords(server, group) < 0 || avahi_s_entry_group_commit(group) < 0)
    {
        m_report(QString::fromUtf8(avahi_strerror(avahi_server_errno(server))));
    }
}

int Responder::addRecords(AvahiServer *server, AvahiSEntryGroup *group) const
{
    const QByteArray name = m_service.hostname.toUtf8();
    const QByteArray host = name + ".local";
    AvahiAddress address{};
    if (avahi_address_parse(m_service.address.toLatin1().constData(), AVAHI_PROTO_INET, &address) == nullptr)
    {
        return AVAHI_ERR_INVALID_ADDRESS;
    }
    const int result = avahi_server_add_address(server, group, AVAHI_IF_UNSPEC, AVAHI_PROTO_INET,
                                                AVAHI_PUBLISH_NO_REVERSE, host.constData(), &address);
    if (result < 0)
    {
        return result;
    }
    StringList txt;
    for (auto record = m_service.txtRecords.cbegin(); record != m_service.txtRecords.cend(); ++record)
    {
        txt.reset(avahi_string_list_add_pair(txt.release(), record.key().toUtf8().constData(),
                                             record.value().toUtf8().constData()));
    }
    return avahi_server_add_service_strlst(server, group, AVAHI_IF_UNSPEC, AVAHI_PROTO_INET, {},
                                           name.constData(), m_service.type.toUtf8().constData(), nullptr,
                                           host.constData(), m_service.port, txt.get());
}

} // namespace

ServiceAnnouncer::ServiceAnnouncer(QObject *parent) : QObject(parent)
{
    // Two more announcements follow, after one and two seconds, each up to a quarter of a second late, and
    // what a responder has just said it does not repeat for half a second, whoever asks.
    m_settling.setSingleShot(true);
    m_settling.setInterval(4000);
    connect(&m_settling, &QTimer::timeout, this, &ServiceAnnouncer::settled);
    // The library tells of each interface that comes and goes. One function serves all its threads.
    static const bool isQuiet = [] {
        avahi_set_log_function([](AvahiLogLevel level, const char *text) {
            if (level <= AVAHI_LOG_ERROR)
            {
                qWarning("%s", text);
            }
        });
        return true;
    }();
    Q_UNUSED(isQuiet)
}

ServiceAnnouncer::~ServiceAnnouncer()
{
    stop();
}

void ServiceAnnouncer::start(const AnnouncedService &service)
{
    stop();
    const auto report = [this, run = m_run](const QString &failure) {
        QMetaObject::invokeMethod(
            this, [=, this] { onReport(run, failure); }, Qt::QueuedConnection);
    };
    const QString interface = interfaceFor(QHostAddress(service.address));
    if (interface.isEmpty())
    {
        report(u"No network of this machine holds %1"_s.arg(service.address));
        return;
    }
    m_stopEvent = eventfd(0, EFD_CLOEXEC);
    m_thread.reset(QThread::create(
        [=, stopEvent = m_stopEvent] { Responder(service, interface, report).run(stopEvent); }));
    m_thread->start();
}

void ServiceAnnouncer::stop()
{
    ++m_run;
    m_isEstablished = false;
    m_settling.stop();
    if (m_thread)
    {
        eventfd_write(m_stopEvent, 1);
        m_thread->wait();
        m_thread.reset();
        close(m_stopEvent);
    }
}

void ServiceAnnouncer::onReport(int run, const QString &failure)
{
    // A report of a run that was stopped in the meantime is of no use to anyone.
    if (run != m_run)
    {
        return;
    }
    m_isEstablished = failure.isEmpty();
    if (m_isEstablished)
    {
        m_settling.start();
        emit established();
    }
    else
    {
        emit failed(failure);
    }
}
