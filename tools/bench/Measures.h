// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <optional>

/// One line of the table.
struct Measured
{
    QString what;
    /// Nothing if it could not be measured.
    std::optional<double> value;
    double limit = 0;
    QString unit = {};
    enum class Limit
    {
        AtMost,
        AtLeast,
        None,
    } kind = Limit::AtMost;

    bool isMet() const;
};

// Each takes its time and returns its lines.
QList<Measured> measureStart();
QList<Measured> measureFirstDevices();
QList<Measured> measureIdle();
QList<Measured> measureSweep();
QList<Measured> measureSettings();
QList<Measured> measureOperations();
QList<Measured> measureReading();
QList<Measured> measureTransfer();
QList<Measured> measureViewers();

/// What a program printed as so many values; what it did not print is not there.
QList<std::optional<double>> valuesOf(const QList<double> &numbers, qsizetype count);
/// The value in the middle; nothing if there is none.
std::optional<double> median(QList<double> values);
/// What the median of some values is in relation to that of others.
std::optional<double> ratio(const QList<double> &values, const QList<double> &base);
