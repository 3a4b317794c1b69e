// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "harness/RunningProgram.h"

#include "app/Documents.h"
#include "app/OpenFileLimit.h"
#include "measure/Measure.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

RunningProgram::RunningProgram()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsFolder.path());
    raiseOpenFileLimit();
    documents::prepareApplication();
    documents::registerTypes();
    m_theme = std::make_unique<ThemeManager>();
    m_devices = std::make_unique<DeviceDiscovery>();
    m_engine = std::make_unique<QQmlApplicationEngine>();
    documents::publish(*m_engine, *m_devices, *m_theme);
}

RunningProgram::~RunningProgram() = default;

bool RunningProgram::open()
{
    documents::loadMain(*m_engine, documents::mainDocument());
    if (!m_engine->rootObjects().isEmpty())
        m_window = qobject_cast<QQuickWindow *>(m_engine->rootObjects().constFirst());
    if (m_window)
        connect(m_window, &QQuickWindow::frameSwapped, this, &RunningProgram::onFrame);
    return m_window != nullptr;
}

QObject *RunningProgram::windowObject() const
{
    return m_window;
}

void RunningProgram::onFrame()
{
    const double now = measure::nowMs();
    if (m_firstFrameMs == 0)
        m_firstFrameMs = now;
    for (int count = m_devices->deviceCount(); count > 0 && !m_frameWithRowsMs.contains(count); --count)
        m_frameWithRowsMs.insert(count, now);
}

/// The texts below an item that can be seen, each with its place in the window.
static void collectTexts(const QQuickItem *item, QList<std::pair<qreal, QString>> &texts)
{
    if (!item->isVisible() || item->opacity() == 0)
        return;
    if (const QString text = item->property("text").toString();
        item->inherits("QQuickText") && !text.isEmpty())
        texts.append({item->mapToScene({}).x(), text});
    const QList<QQuickItem *> children = item->childItems();
    for (const QQuickItem *child : children)
        collectTexts(child, texts);
}

QStringList RunningProgram::textsOfRow(int row) const
{
    QQuickItem *rowItem = nullptr;
    if (auto *view = part<QQuickItem>(u"tableView"_s))
        QMetaObject::invokeMethod(view, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, rowItem), Q_ARG(int, row));
    if (!rowItem)
        return {};
    QList<std::pair<qreal, QString>> texts;
    collectTexts(rowItem, texts);
    std::ranges::stable_sort(texts, {}, &std::pair<qreal, QString>::first);
    QStringList fromLeft;
    for (const auto &[x, text] : texts)
        fromLeft.append(text);
    return fromLeft;
}

bool RunningProgram::savePicture(const QString &fileName) const
{
    QDir().mkpath(QFileInfo(fileName).absolutePath());
    return m_window->grabWindow().save(fileName);
}
