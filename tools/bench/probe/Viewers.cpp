// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "bench/probe/Viewers.h"

#include "bench/probe/Page.h"
#include "harness/RunningProgram.h"
#include "measure/Measure.h"
#include "measure/Pauses.h"

#include <QFile>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {
constexpr int limitMs = 60000;
constexpr int calmMs = 1500;

/// Notes when the answer is there, and each frame of the window.
class Watch : public QObject
{
    Q_OBJECT
public:
    explicit Watch(QQuickWindow *window)
    {
        connect(window, &QQuickWindow::frameSwapped, this, &Watch::onFrame);
    }

    double answerMs = 0;
    double lastFrameMs = measure::nowMs();
    QList<double> gapsMs;

public slots:
    void onLoadingChanged() { answerMs = measure::nowMs(); }
    void onFrame()
    {
        const double nowMs = measure::nowMs();
        gapsMs.append(nowMs - lastFrameMs);
        lastFrameMs = nowMs;
    }
};

/// The memory (RSS) that this process holds now, in KiB.
qint64 memoryKib()
{
    QFile file(u"/proc/self/statm"_s);
    constexpr qint64 kibPerPage = 4;
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * kibPerPage : 0;
}

/// Opens the settings of the first device, and a viewer on them; null if there is none.
QObject *openViewer(RunningProgram &program, const QString &address, const QString &kind)
{
    if (!page::listDevices(program, address, 1))
        return nullptr;
    program.window()->setProperty("selectedDeviceIndex", 0);
    program.window()->setProperty("showSettings", true);
    QObject *loader = nullptr;
    const QString name = kind + u"ViewerLoader"_s;
    if (!measure::waitUntil([&] { return (loader = program.part(name)) != nullptr; }, limitMs))
        return nullptr;
    measure::pass(calmMs);
    loader->setProperty("active", true);
    return loader->property("item").value<QObject *>();
}

/// Scrolls a view from its first row to its last, a third of its height each frame: faster than anyone looks,
/// and slow enough that each row is drawn.
void scrollThrough(QQuickWindow *window, QObject *view)
{
    const double height = view->property("height").toDouble();
    const auto left = [=] {
        return view->property("contentHeight").toDouble() - height - view->property("contentY").toDouble();
    };
    const auto scroll = [=] {
        view->setProperty("contentY", view->property("contentY").toDouble() + std::min(height / 3, left()));
        window->update();
    };
    const auto connection =
        QObject::connect(window, &QQuickWindow::frameSwapped, view, scroll, Qt::QueuedConnection);
    scroll();
    measure::waitUntil([&] { return left() < 1; }, limitMs);
    QObject::disconnect(connection);
}
} // namespace

int viewers::browse(RunningProgram &program, const QString &address, const QString &kind)
{
    QObject *viewer = openViewer(program, address, kind);
    if (!viewer)
        return 1;
    const qint64 emptyKib = memoryKib();
    Watch watch(program.window());
    QObject::connect(viewer, SIGNAL(isLoadingChanged()), &watch, SLOT(onLoadingChanged()));
    QObject *view = program.part(kind + u"View"_s);
    const auto isShown = [&] {
        return watch.answerMs > 0 && view->property("count").toInt() > 0 &&
               watch.lastFrameMs > watch.answerMs;
    };
    if (!measure::waitUntil(isShown, limitMs))
        return 1;
    const double shownMs = watch.lastFrameMs - watch.answerMs;
    measure::pass(calmMs);
    watch.gapsMs.clear();
    watch.lastFrameMs = measure::nowMs();
    scrollThrough(program.window(), view);
    QList<double> gapsMs = watch.gapsMs;
    measure::pass(calmMs);
    const qint64 extraKib = measure::peakMemoryKib() - emptyKib;
    const double selectionMs = measure::nowMs();
    QMetaObject::invokeMethod(viewer, "selectAll");
    program.window()->update();
    measure::waitUntil([&] { return watch.lastFrameMs > selectionMs; }, limitMs);
    std::ranges::sort(gapsMs);
    std::printf("%.3f %.3f %.3f %.3f %lld\n", shownMs, gapsMs.last(), gapsMs[gapsMs.size() / 2],
                watch.lastFrameMs - selectionMs, static_cast<long long>(extraKib));
    return 0;
}

int viewers::showLarge(RunningProgram &program, const QString &address)
{
    QObject *viewer = openViewer(program, address, u"images"_s);
    if (!viewer || !measure::waitUntil(
                       [&] { return program.part(u"imagesView"_s)->property("count").toInt() > 0; }, limitMs))
        return 1;
    // The thumbnails are of sixty megapixels too, on the device.
    measure::pass(calmMs);
    const QVariantMap first = viewer->property("imagesData").toList().value(0).toMap();
    const QVariant uuid = first[u"metadata"_s].toMap()[u"uuid"_s];
    const qint64 beforeKib = memoryKib();
    Pauses pauses;
    pauses.start();
    QMetaObject::invokeMethod(viewer, "showFullImage", Q_ARG(QString, uuid.toString()), Q_ARG(int, 0));
    const auto *picture = program.part(u"fullImage"_s)->findChild<QObject *>(u"picture"_s);
    constexpr int ready = 1;
    if (!measure::waitUntil([&] { return picture->property("status").toInt() == ready; }, limitMs))
        return 1;
    const double shownMs = measure::nowMs() - pauses.startMs();
    measure::pass(calmMs);
    pauses.stop();
    std::printf("%.3f %.3f %lld %lld\n", shownMs, pauses.longestMs(),
                static_cast<long long>(measure::peakMemoryKib() - beforeKib),
                static_cast<long long>(memoryKib() - beforeKib));
    return 0;
}

#include "Viewers.moc"
