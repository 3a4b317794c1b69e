// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "theme/ThemeManager.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

using namespace Qt::StringLiterals;

ThemeManager::ThemeManager(QObject *parent) : QObject(parent), m_settings(u"Noctaris"_s, u"Discovery"_s)
{
    m_isAutoTheme = m_settings.value("isAutoTheme"_L1, true).toBool();
    m_isDarkTheme = m_settings.value("isDarkTheme"_L1, false).toBool();
    QCoreApplication::instance()->installEventFilter(this);
    if (m_isAutoTheme)
        m_isDarkTheme = systemIsDark();
}

void ThemeManager::setIsDarkTheme(bool isDarkTheme)
{
    if (m_isDarkTheme == isDarkTheme)
        return;
    m_isDarkTheme = isDarkTheme;
    m_isAutoTheme = false;
    m_settings.setValue("isDarkTheme"_L1, m_isDarkTheme);
    m_settings.setValue("isAutoTheme"_L1, m_isAutoTheme);
    emit isDarkThemeChanged();
    emit isAutoThemeChanged();
    emit themeChanged();
}

bool ThemeManager::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == QCoreApplication::instance() && event->type() == QEvent::ApplicationPaletteChange)
        onSystemThemeChanged();
    return QObject::eventFilter(watched, event);
}

void ThemeManager::toggleTheme()
{
    setIsDarkTheme(!m_isDarkTheme);
}

void ThemeManager::onSystemThemeChanged()
{
    if (!m_isAutoTheme)
        return;
    const bool isDark = systemIsDark();
    if (isDark == m_isDarkTheme)
        return;
    m_isDarkTheme = isDark;
    emit isDarkThemeChanged();
    emit themeChanged();
}

bool ThemeManager::systemIsDark()
{
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor ThemeManager::pick(const char *dark, const char *light) const
{
    return {QLatin1StringView(m_isDarkTheme ? dark : light)};
}
