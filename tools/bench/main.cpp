// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/Measures.h"

#include <QCoreApplication>
#include <QStringList>

#include <iostream>

using namespace Qt::StringLiterals;

namespace {
struct Group
{
    const char *name;
    QList<Measured> (*measure)();
};
constexpr Group groups[] = {
    {"reading", measureReading},       {"start", measureStart},
    {"devices", measureFirstDevices},  {"idle", measureIdle},
    {"sweep", measureSweep},           {"settings", measureSettings},
    {"operations", measureOperations}, {"transfer", measureTransfer},
    {"viewers", measureViewers},
};

QString number(double value)
{
    constexpr double exactBelow = 20;
    return QString::number(value, 'f', value < exactBelow ? 2 : 0);
}

void printLine(const QString &what, const QString &value, const QString &unit, const QString &limit,
               const QString &verdict)
{
    const QString line = what.leftJustified(44) + value.rightJustified(10) + u' ' + unit.leftJustified(12) +
                         limit.rightJustified(10) + u"  "_s + verdict;
    // At once, for the next line may be a minute away.
    std::cout << line.toStdString() << std::endl;
}

void print(const Measured &measured)
{
    const QString value = measured.value ? number(*measured.value) : u"none"_s;
    if (measured.kind == Measured::Limit::None)
    {
        printLine(measured.what, value, measured.unit, {}, {});
        return;
    }
    const QString sign = measured.kind == Measured::Limit::AtLeast ? u">= "_s : u"<= "_s;
    printLine(measured.what, value, measured.unit, sign + number(measured.limit),
              measured.isMet() ? u"ok"_s : u"MISSED"_s);
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList wanted = QCoreApplication::arguments().mid(1);
    printLine(u"Measure"_s, u"Value"_s, {}, u"Limit"_s, {});
    bool areAllMet = true;
    for (const auto &[name, measureGroup] : groups)
    {
        if (!wanted.isEmpty() && !wanted.contains(QLatin1StringView(name)))
            continue;
        const QList<Measured> lines = measureGroup();
        for (const Measured &line : lines)
        {
            print(line);
            areAllMet = areAllMet && line.isMet();
        }
    }
    return areAllMet ? 0 : 1;
}
