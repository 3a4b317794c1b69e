// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
// The least that a program with a Qt Quick Controls window is, a window with one control in it, so that it
// has to find a font and draw a text as every program does: what the program's start is compared with.
// Prints the time of its first frame, and the most memory it took.
#include "measure/Measure.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QQuickStyle::setStyle(u"Basic"_s);
    QQmlApplicationEngine engine(u"qrc:/qt/qml/BareWindow/bare/BareWindow.qml"_s);
    if (engine.rootObjects().isEmpty())
        return 1;
    double firstFrameMs = 0;
    QObject::connect(qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst()),
                     &QQuickWindow::frameSwapped, &application, [&] {
                         if (firstFrameMs == 0)
                             firstFrameMs = measure::nowMs();
                     });
    constexpr int limitMs = 10000;
    if (!measure::waitUntil([&] { return firstFrameMs > 0; }, limitMs))
        return 1;
    measure::pass(measure::settlingMs);
    std::printf("%.3f %lld\n", firstFrameMs, measure::peakMemoryKib());
    return 0;
}
