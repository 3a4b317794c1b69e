// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QObject>
#include <QSettings>

/// The choice between the light and the dark look. Follows the system's palette until the user chooses
/// by hand; from then on the choice is the user's for good, also after a restart.
class ThemeManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isDarkTheme READ isDarkTheme WRITE setIsDarkTheme NOTIFY isDarkThemeChanged)
    Q_PROPERTY(bool isAutoTheme READ isAutoTheme NOTIFY isAutoThemeChanged)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor NOTIFY themeChanged)
    Q_PROPERTY(QColor surfaceColor READ surfaceColor NOTIFY themeChanged)
    Q_PROPERTY(QColor primaryColor READ primaryColor NOTIFY themeChanged)
    Q_PROPERTY(QColor onPrimaryColor READ onPrimaryColor NOTIFY themeChanged)
    Q_PROPERTY(QColor secondaryColor READ secondaryColor NOTIFY themeChanged)
    Q_PROPERTY(QColor dangerColor READ dangerColor NOTIFY themeChanged)
    Q_PROPERTY(QColor textColor READ textColor NOTIFY themeChanged)
    Q_PROPERTY(QColor secondaryTextColor READ secondaryTextColor NOTIFY themeChanged)
    Q_PROPERTY(QColor borderColor READ borderColor NOTIFY themeChanged)
    Q_PROPERTY(QColor statusBarColor READ statusBarColor NOTIFY themeChanged)

public:
    /// Loads the stored choice. Needs the application object, whose palette events it watches.
    explicit ThemeManager(QObject *parent = nullptr);

    bool isDarkTheme() const { return m_isDarkTheme; }
    /// The user's own choice: ends the automatic mode and is stored. The current value changes nothing.
    void setIsDarkTheme(bool isDarkTheme);

    bool isAutoTheme() const { return m_isAutoTheme; }

    // The palette, each colour in the dark look and in the light one.
    QColor backgroundColor() const { return pick("#1a1a1a", "#f5f6fa"); }
    QColor surfaceColor() const { return pick("#2d3748", "#ffffff"); }
    QColor primaryColor() const { return pick("#ff6600", "#ff6600"); }
    QColor onPrimaryColor() const { return pick("#ffffff", "#ffffff"); }
    QColor secondaryColor() const { return pick("#0098cc", "#0098cc"); }
    QColor dangerColor() const { return pick("#cf021b", "#cf021b"); }
    QColor textColor() const { return pick("#e2e8f0", "#2c3e50"); }
    QColor secondaryTextColor() const { return pick("#9ca3af", "#6b7280"); }
    QColor borderColor() const { return pick("#4b5563", "#e5e7eb"); }
    QColor statusBarColor() const { return pick("#374151", "#f8f9ff"); }

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void toggleTheme();

signals:
    void isDarkThemeChanged();
    /// Comes with every choice by hand, also if the mode was manual before.
    void isAutoThemeChanged();
    void themeChanged();

private slots:
    void onSystemThemeChanged();

private:
    static bool systemIsDark();
    QColor pick(const char *dark, const char *light) const;

    bool m_isDarkTheme = false;
    bool m_isAutoTheme = true;
    QSettings m_settings;
};
