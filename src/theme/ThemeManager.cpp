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

QColor ThemeManager::backgroundColor() const
{
    return pick("#1a1a1a", "#f5f6fa");
}

QColor ThemeManager::surfaceColor() const
{
    return pick("#2d3748", "#ffffff");
}

QColor ThemeManager::primaryColor() const
{
    return pick("#ff6600", "#ff6600");
}

QColor ThemeManager::onPrimaryColor() const
{
    return pick("#ffffff", "#ffffff");
}

QColor ThemeManager::secondaryColor() const
{
    return pick("#0098cc", "#0098cc");
}

QColor ThemeManager::dangerColor() const
{
    return pick("#cf021b", "#cf021b");
}

QColor ThemeManager::textColor() const
{
    return pick("#e2e8f0", "#2c3e50");
}

QColor ThemeManager::secondaryTextColor() const
{
    return pick("#9ca3af", "#6b7280");
}

QColor ThemeManager::borderColor() const
{
    return pick("#4b5563", "#e5e7eb");
}

QColor ThemeManager::statusBarColor() const
{
    return pick("#374151", "#f8f9ff");
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
