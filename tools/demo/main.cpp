// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "harness/RunningProgram.h"
#include "measure/Measure.h"

#include <QCommandLineParser>
#include <QGuiApplication>

#include <iostream>

using namespace Qt::StringLiterals;

static void say(std::ostream &stream, const QString &line)
{
    stream << line.toStdString() << '\n';
}

static void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        u"Starts the program's window, waits for devices to stand in its table, and prints them as it shows "
        "them."_s);
    parser.addHelpOption();
    parser.addOptions({
        {u"devices"_s, u"How many devices to wait for (3)."_s, u"N"_s, u"3"_s},
        {u"time-limit"_s, u"How long to wait at most (15)."_s, u"SECONDS"_s, u"15"_s},
        {u"picture"_s, u"Where to save a picture of the window."_s, u"FILE"_s},
    });
}

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
    const int wanted = parser.value(u"devices"_s).toInt();
    const int limitMs = parser.value(u"time-limit"_s).toInt() * 1000;

    RunningProgram program;
    if (!program.open())
    {
        say(std::cerr, u"noctaris-demo: the window did not come up"_s);
        return 1;
    }
    program.devices().startDiscovery();
    const bool areThere = measure::waitUntil([&] { return program.frameWithRowsMs(wanted) > 0; }, limitMs);

    say(std::cout, u"The table shows:"_s);
    for (int row = 0; row < program.devices().deviceCount(); ++row)
        say(std::cout, u"  "_s + program.textsOfRow(row).join(u"  "_s));
    // Let the last row's buttons fade in.
    constexpr int transitionsMs = 300;
    measure::pass(transitionsMs);
    if (const QString picture = parser.value(u"picture"_s); !picture.isEmpty())
    {
        if (!program.savePicture(picture))
        {
            say(std::cerr, u"noctaris-demo: no picture can be saved as %1"_s.arg(picture));
            return 1;
        }
        say(std::cout, u"Picture: %1"_s.arg(picture));
    }
    if (!areThere)
    {
        say(std::cerr,
            u"noctaris-demo: %1 of %2 devices were found in %3 s"_s.arg(program.devices().deviceCount())
                .arg(wanted)
                .arg(limitMs / 1000));
        return 1;
    }
    say(std::cout, u"From the window's first frame to %1 devices: %2 ms"_s.arg(wanted).arg(
                       program.frameWithRowsMs(wanted) - program.firstFrameMs(), 0, 'f', 0));
    return 0;
}
