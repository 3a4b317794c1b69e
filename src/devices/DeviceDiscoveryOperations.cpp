// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
// What the operations on a device share: which device, what is said of the end, and what goes on the log.
#include "devices/DeviceDiscovery.h"
#include "devices/Verdicts.h"

#include <QDebug>
#include <QTimer>

using namespace Qt::StringLiterals;

/// The address that stands in a row; empty if there is no such row.
QString DeviceDiscovery::addressOfRow(int row) const
{
    return row >= 0 && row < m_devices.size() ? m_devices.at(row).ipAddress() : QString();
}

/// Where a question goes; the log has why it goes nowhere, and nobody else is told.
std::optional<QString> DeviceDiscovery::addressForQuery(int row, const char *badIndexWords) const
{
    if (row < 0 || row >= m_devices.size())
    {
        qWarning() << badIndexWords << row;
        return {};
    }
    const QString ipAddress = addressOfRow(row);
    if (ipAddress.isEmpty())
    {
        qWarning() << "Device IP address is empty";
        return {};
    }
    return ipAddress;
}

/// Where a command goes; whoever gave it is told why it goes nowhere.
std::optional<QString> DeviceDiscovery::addressForCommand(int row, const Refusal &refuse)
{
    if (row < 0 || row >= m_devices.size())
    {
        refuse({}, u"Invalid device index"_s);
        return {};
    }
    const QString ipAddress = addressOfRow(row);
    if (ipAddress.isEmpty())
    {
        refuse(ipAddress, u"Device IP address is empty"_s);
        return {};
    }
    return ipAddress;
}

std::optional<QString> DeviceDiscovery::addressForCommand(int row, ResultSignal signal)
{
    return addressForCommand(row, [this, signal](const QString &ipAddress, const QString &message) {
        emit(this->*signal)(ipAddress, false, message);
    });
}

/// Where a request of the software updater goes, as the table of devices has it.
std::optional<QString> DeviceDiscovery::addressInModel(int row) const
{
    if (row < 0 || row >= rowCount())
        return {};
    return data(index(row, 0), IpAddressRole).toString();
}

/// The end of an operation that an answer ends, whatever it says.
void DeviceDiscovery::conclude(QNetworkReply *reply, Outcome (*judge)(const DeviceAnswer &answer),
                               ResultSignal signal, const AnswerWords &words)
{
    const DeviceAnswer answer = DeviceAnswer::of(reply);
    logAnswer(words, answer);
    const Outcome outcome = judge(answer);
    logOutcome(outcome, answer);
    report(signal, answer.ipAddress, outcome);
    reply->deleteLater();
}

/// Says how an operation ended: to whoever waits for it, then in the status line.
void DeviceDiscovery::report(ResultSignal signal, const QString &ipAddress, const Outcome &outcome)
{
    emit(this->*signal)(ipAddress, outcome.success, outcome.message);
    setStatusText(outcome.message);
}

/// Ends the polls of an address. False if there were none.
bool DeviceDiscovery::endPolls(QMap<QString, QTimer *> &timers, const QString &ipAddress)
{
    QTimer *timer = timers.take(ipAddress);
    if (!timer)
        return false;
    timer->stop();
    timer->deleteLater();
    return true;
}

void DeviceDiscovery::logRequest(const char *urlWords, const QNetworkReply *reply, const char *contentWords,
                                 const QByteArray &content)
{
    if (!s_verboseLogging)
        return;
    qDebug() << urlWords << reply->url().toString();
    if (contentWords)
        qDebug() << contentWords << content;
}

/// A body is there only if the answer came well.
void DeviceDiscovery::logAnswer(const AnswerWords &words, const DeviceAnswer &answer)
{
    if (!s_verboseLogging)
        return;
    qDebug() << words.status << answer.httpStatus;
    if (words.error)
        qDebug() << words.error << int(answer.error);
    if (words.body && !answer.hasFailed())
        qDebug() << words.body << answer.body;
}

void DeviceDiscovery::logOutcome(const Outcome &outcome, const DeviceAnswer &answer)
{
    qDebug() << outcome.message;
    if (outcome.isUnreadable)
        qDebug() << "Raw data:" << answer.body;
}
