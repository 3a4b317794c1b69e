// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/Measures.h"

#include "bench/Children.h"
#include "mdns/DnsResponse.h"
#include "measure/Measure.h"

#include <QHostAddress>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
// The addresses that scripts/bench has made for simulated devices.
const QStringList announcedDevices = {u"--devices"_s, u"3"_s, u"--address"_s, u"10.77.0.2"_s};
const QStringList silentDevices = announcedDevices + QStringList{u"--no-mdns"_s};

struct Starts
{
    QList<double> firstFrameMs;
    QList<double> memoryMib;
};

void addStart(const QString &program, const QStringList &arguments, Starts &starts)
{
    const double startMs = measure::nowMs();
    const QList<double> numbers = children::numbersOf(program, arguments);
    if (numbers.size() != 2)
        return;
    starts.firstFrameMs.append(numbers[0] - startMs);
    starts.memoryMib.append(numbers[1] / 1024);
}

Measured idle(const QString &what, const QStringList &arguments, double limit)
{
    const QList<double> numbers =
        children::numbersOf(u"noctaris-probe"_s, QStringList{u"idle"_s} + arguments);
    return {what, median(numbers), limit, u"% of a core"_s};
}
} // namespace

QList<std::optional<double>> valuesOf(const QList<double> &numbers, qsizetype count)
{
    QList<std::optional<double>> values(numbers.cbegin(), numbers.cend());
    values.resize(count);
    return values;
}

std::optional<double> median(QList<double> values)
{
    if (values.isEmpty())
        return {};
    std::ranges::sort(values);
    return values[values.size() / 2];
}

std::optional<double> ratio(const QList<double> &values, const QList<double> &base)
{
    const std::optional<double> top = median(values);
    const std::optional<double> bottom = median(base);
    if (!top || !bottom)
        return {};
    return *top / *bottom;
}

bool Measured::isMet() const
{
    if (!value)
        return false;
    switch (kind)
    {
    case Limit::AtMost:
        return *value <= limit;
    case Limit::AtLeast:
        return *value >= limit;
    case Limit::None:
        return true;
    }
    return false;
}

QList<Measured> measureStart()
{
    constexpr int rounds = 11;
    Starts bare;
    Starts program;
    for (int round = 0; round < rounds; ++round)
    {
        addStart(u"noctaris-bare-window"_s, {}, bare);
        addStart(u"noctaris-probe"_s, {u"start"_s}, program);
    }
    constexpr double limit = 1.5;
    const auto information = Measured::Limit::None;
    return {
        {u"Start to first frame"_s, median(program.firstFrameMs), 0, u"ms"_s, information},
        {u"  bare window"_s, median(bare.firstFrameMs), 0, u"ms"_s, information},
        {u"  ratio"_s, ratio(program.firstFrameMs, bare.firstFrameMs), limit, {}},
        {u"Peak memory (RSS)"_s, median(program.memoryMib), 0, u"MiB"_s, information},
        {u"  bare window"_s, median(bare.memoryMib), 0, u"MiB"_s, information},
        {u"  ratio"_s, ratio(program.memoryMib, bare.memoryMib), limit, {}},
    };
}

QList<Measured> measureFirstDevices()
{
    constexpr int rounds = 5;
    constexpr double limitMs = 300;
    QList<double> times;
    children::Devices devices(announcedDevices);
    for (int round = 0; devices.waitFor("settled") && round < rounds; ++round)
    {
        // What a responder has just said it does not repeat for a while, whoever asks.
        constexpr int restMs = 2000;
        measure::pass(restMs);
        times += children::numbersOf(u"noctaris-probe"_s, {u"devices"_s, u"3"_s});
    }
    const auto complete = std::ranges::count_if(times, [](double ms) { return std::isfinite(ms); });
    return {
        {u"First frame to three devices"_s, median(times), limitMs, u"ms"_s},
        {u"  starts of 5 that found all three"_s, double(complete), 0, {}, Measured::Limit::None},
    };
}

QList<Measured> measureIdle()
{
    constexpr double fewLimit = 0.5;
    constexpr double manyLimit = 1;
    const QString few = u"10.77.0.2"_s;
    const QString many = u"127.0.1.1"_s;
    QList<Measured> lines;
    {
        children::Devices devices(announcedDevices);
        devices.waitFor("settled");
        lines += idle(u"Idle with 3 rows"_s, {few, u"3"_s, u"20"_s}, fewLimit);
    }
    children::Devices devices({u"--devices"_s, u"200"_s, u"--no-mdns"_s, u"--address"_s, many});
    devices.waitFor("ready");
    lines += idle(u"Idle with 200 rows"_s, {many, u"200"_s, u"20"_s}, manyLimit);
    return lines;
}

QList<Measured> measureSweep()
{
    constexpr int rounds = 3;
    constexpr double blockedLimitMs = 60;
    constexpr double endLimitMs = 12000;
    constexpr double deviceCount = 3;
    children::Devices devices(silentDevices);
    devices.waitFor("ready");
    QList<double> blocked;
    QList<double> longest;
    QList<double> ends;
    QList<double> found;
    QList<double> bare;
    for (int round = 0; round < rounds; ++round)
    {
        bare += children::numbersOf(u"noctaris-probe"_s, {u"requests"_s}, children::OpenFiles::Limited);
        const QList<double> numbers =
            children::numbersOf(u"noctaris-probe"_s, {u"sweep"_s}, children::OpenFiles::Limited);
        if (numbers.size() != 4)
            continue;
        blocked.append(numbers[0]);
        longest.append(numbers[1]);
        ends.append(numbers[2]);
        found.append(numbers[3]);
    }
    // A device that one scan of three misses is a device missed.
    const std::optional<double> worst =
        found.isEmpty() ? std::nullopt : std::optional(*std::ranges::min_element(found));
    return {
        {u"Sweep of a /24: blocked by sending"_s, median(blocked), blockedLimitMs, u"ms"_s},
        {u"  by as many bare requests"_s, median(bare), 0, u"ms"_s, Measured::Limit::None},
        {u"  ratio"_s, ratio(blocked, bare), 0, {}, Measured::Limit::None},
        {u"  longest pause of all"_s, median(longest), 0, u"ms"_s, Measured::Limit::None},
        {u"  to its end"_s, median(ends), endLimitMs, u"ms"_s},
        {u"  devices found of 3, with 1024 open files"_s, worst, deviceCount, {}, Measured::Limit::AtLeast},
    };
}

QList<Measured> measureSettings()
{
    constexpr int rounds = 3;
    constexpr double frameLimitMs = 100;
    constexpr double pauseLimitMs = 50;
    constexpr double idleLimit = 1;
    children::Devices devices(announcedDevices);
    devices.waitFor("settled");
    QList<double> frames;
    QList<double> pauses;
    QList<double> loads;
    for (int round = 0; round < rounds; ++round)
    {
        const QList<double> numbers =
            children::numbersOf(u"noctaris-probe"_s, {u"page"_s, u"10.77.0.2"_s, u"5"_s});
        if (numbers.size() != 3)
            continue;
        frames += numbers[0];
        pauses += numbers[1];
        loads += numbers[2];
    }
    return {{u"Opening the settings: first frame"_s, median(frames), frameLimitMs, u"ms"_s},
            {u"  longest pause while they fill"_s, median(pauses), pauseLimitMs, u"ms"_s},
            {u"  idle while they are open"_s, median(loads), idleLimit, u"% of a core"_s}};
}

QList<Measured> measureOperations()
{
    constexpr double limitMs = 1;
    constexpr quint32 firstAddress = 0x7F000101; // 127.0.1.1
    constexpr quint32 devicesOfOne = 250;
    constexpr quint32 count = 1000;
    std::vector<std::unique_ptr<children::Devices>> devices;
    for (quint32 first = 0; first < count; first += devicesOfOne)
    {
        const QString address = QHostAddress(firstAddress + first).toString();
        devices.push_back(std::make_unique<children::Devices>(QStringList{
            u"--devices"_s, QString::number(devicesOfOne), u"--no-mdns"_s, u"--address"_s, address}));
        devices.back()->waitFor("ready");
    }
    const QStringList arguments = {u"operate"_s, QHostAddress(firstAddress).toString(),
                                   QString::number(count)};
    return {{u"An operation with 1000 rows"_s, median(children::numbersOf(u"noctaris-probe"_s, arguments)),
             limitMs, u"ms"_s}};
}

QList<Measured> measureReading()
{
    // A responder's whole answer: the service, its text, its host and port, and the host's address.
    static const QByteArray packet = QByteArray::fromHex(
        "000084000000000400000000055f68747470045f746370056c6f63616c00000c000100001194000c09616e64726f6d656461"
        "c00cc028001080010000119400320f6465766963653d6e6f637461726973136d6f64656c3d4e6f637461726973204d696e69"
        "0d76657273696f6e3d322e332e31c028002180010000007800120000000021b009616e64726f6d656461c017c08400018001"
        "0000007800040a4d0002");
    constexpr double limit = 400000;
    constexpr int rounds = 5;
    constexpr int packetsPerRound = 200000;
    const mdns::Lookup lookup{u"_http._tcp.local"_s, {}};
    QList<double> rates;
    for (int round = 0; round < rounds; ++round)
    {
        qsizetype found = 0;
        const double startMs = measure::nowMs();
        for (int i = 0; i < packetsPerRound; ++i)
            found += mdns::readResponse(packet, lookup, false).services.size();
        if (found == packetsPerRound)
            rates.append(packetsPerRound * 1000.0 / (measure::nowMs() - startMs));
    }
    return {
        {u"Reading a service response"_s, median(rates), limit, u"packets/s"_s, Measured::Limit::AtLeast}};
}
