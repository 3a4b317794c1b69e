// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "harness/RunningProgram.h"
#include "screenshots/Photographer.h"

#include <QCommandLineParser>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Takes pictures of the program in each of its states, in both themes, as the scripts/screenshots "
        "script sets it up for."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"FOLDER"_s, u"Where the pictures of the full window go."_s);
    parser.addPositionalArgument(u"SMALL_FOLDER"_s, u"Where those of the smallest window go."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 2)
        parser.showHelp(2);

    RunningProgram program;
    if (!program.open())
        return 1;
    Photographer photographer(program, parser.positionalArguments().at(0),
                              parser.positionalArguments().at(1));
    return photographer.takeAll() ? 0 : 1;
}
