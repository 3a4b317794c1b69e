// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "Simulator.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

void complain(const QString &text)
{
    std::cerr << "noctaris-simulator: " << text.toStdString() << '\n';
}

/// Loopback, and the networks that no router passes on: nothing is to be announced to the world.
bool isPrivate(const QHostAddress &address)
{
    static const QPair<QHostAddress, int> networks[] = {
        QHostAddress::parseSubnet(u"127.0.0.0/8"_s), QHostAddress::parseSubnet(u"10.0.0.0/8"_s),
        QHostAddress::parseSubnet(u"172.16.0.0/12"_s), QHostAddress::parseSubnet(u"192.168.0.0/16"_s),
        QHostAddress::parseSubnet(u"169.254.0.0/16"_s)};
    return std::ranges::any_of(networks,
                               [&address](const auto &network) { return address.isInSubnet(network); });
}

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Pretends to be Noctaris devices: their HTTP services on ports 8624 and 3000, and their multicast "
        u"DNS.\n"
        "They do what they are told: updates take their time, a reboot takes a device away for seconds.\n"
        "Run it under scripts/in-private-network, else it announces devices that nobody has.\n"
        "It says \"ready\" when all devices are announced, \"settled\" when the repeated announcements are "
        "over\n"
        "and only queries are answered, and ends at SIGINT, SIGTERM or \"quit\".\n\n"
        "A KIND of fault: %1.\n"
        "Commands on the standard input, K counted from 1: %2."_s.arg(Fault::kinds(),
                                                                      Simulator::commandHelp()));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {u"devices"_s, u"How many devices there are (3)."_s, u"N"_s, u"3"_s},
        {u"address"_s, u"The first device's address (127.0.0.2); the others count up."_s, u"BASE"_s,
         u"127.0.0.2"_s},
        {u"pictures"_s, u"How many pictures each device has (12)."_s, u"COUNT"_s, u"12"_s},
        {u"videos"_s, u"How many videos each device has (6)."_s, u"COUNT"_s, u"6"_s},
        {u"megapixels"_s, u"How large each picture is; 0 means 640 x 480 (0)."_s, u"N"_s, u"0"_s},
        {u"no-mdns"_s, u"Announce nothing."_s},
        {u"fault"_s, u"What all devices, or only device K, do at a path. May be repeated."_s,
         u"[K:]PATH=KIND[:ARGUMENT]"_s},
        {u"verbose"_s, u"Print each request."_s},
    });
}

struct Number
{
    QLatin1StringView name;
    int least;
    int most;
    int SimulatorOptions::*member;
};

constexpr Number numbers[] = {
    {"devices"_L1, 1, 250, &SimulatorOptions::deviceCount},
    {"pictures"_L1, 0, 100000, &SimulatorOptions::pictureCount},
    {"videos"_L1, 0, 100000, &SimulatorOptions::videoCount},
    {"megapixels"_L1, 0, 100, &SimulatorOptions::megapixels},
};

/// The options, or what is wrong with them.
QString readOptions(const QCommandLineParser &parser, SimulatorOptions &options)
{
    if (!parser.positionalArguments().isEmpty())
    {
        return u"There is no argument \"%1\""_s.arg(parser.positionalArguments().first());
    }
    for (const Number &number : numbers)
    {
        bool isNumber = false;
        const int value = parser.value(number.name).toInt(&isNumber);
        if (!isNumber || value < number.least || value > number.most)
        {
            return u"The number of %1 is %2 to %3"_s.arg(number.name).arg(number.least).arg(number.most);
        }
        options.*number.member = value;
    }
    options.firstAddress = QHostAddress(parser.value(u"address"_s));
    const QHostAddress last(options.firstAddress.toIPv4Address() + options.deviceCount - 1);
    if (!isPrivate(options.firstAddress) || !isPrivate(last))
    {
        return u"Devices have loopback or private IPv4 addresses, and \"%1\" is none or the last one is none"_s
            .arg(parser.value(u"address"_s));
    }
    options.isAnnouncing = !parser.isSet(u"no-mdns"_s);
    options.isVerbose = parser.isSet(u"verbose"_s);
    return {};
}

/// A descriptor that becomes readable at SIGINT and SIGTERM. To be called before any thread starts, for
/// threads inherit which signals they leave alone.
int signalDescriptor()
{
    sigset_t endings;
    sigemptyset(&endings);
    sigaddset(&endings, SIGINT);
    sigaddset(&endings, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endings, nullptr);
    return signalfd(-1, &endings, SFD_CLOEXEC);
}

/// Carries out the lines of the standard input; its end changes nothing.
class CommandReader : public QObject
{
public:
    explicit CommandReader(Simulator &simulator)
        : m_simulator(simulator), m_notifier(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, &CommandReader::read);
    }

private:
    void read()
    {
        std::array<char, 4096> bytes{};
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0)
        {
            m_notifier.setEnabled(false);
            return;
        }
        m_pending.append(bytes.data(), count);
        for (qsizetype end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n'))
        {
            const QString line = QString::fromUtf8(m_pending.first(end)).trimmed();
            m_pending.remove(0, end + 1);
            if (const QString failure = line.isEmpty() ? QString() : m_simulator.execute(line);
                !failure.isEmpty())
            {
                complain(failure);
            }
        }
    }

    Simulator &m_simulator;
    QSocketNotifier m_notifier;
    QByteArray m_pending;
};

} // namespace

int main(int argc, char *argv[])
{
    const int signalEvent = signalDescriptor();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"noctaris-simulator"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NOCTARIS_VERSION));

    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(QCoreApplication::arguments()))
    {
        complain(parser.errorText());
        return usageError;
    }
    if (parser.isSet(u"help"_s))
    {
        parser.showHelp();
    }
    if (parser.isSet(u"version"_s))
    {
        parser.showVersion();
    }
    SimulatorOptions options;
    if (const QString failure = readOptions(parser, options); !failure.isEmpty())
    {
        complain(failure);
        return usageError;
    }
    Simulator simulator(options);
    for (const QString &fault : parser.values(u"fault"_s))
    {
        if (const QString failure = simulator.addFault(fault); !failure.isEmpty())
        {
            complain(failure);
            return usageError;
        }
    }
    QObject::connect(&simulator, &Simulator::failed, &app, [&simulator](const QString &reason) {
        complain(reason);
        if (!simulator.isReady())
        {
            QCoreApplication::exit(1);
        }
    });
    QSocketNotifier signalNotifier(signalEvent, QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
    if (const QString failure = simulator.start(); !failure.isEmpty())
    {
        complain(failure);
        return 1;
    }
    CommandReader reader(simulator);
    return QCoreApplication::exec();
}
