// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include "support/Operations.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

/// Has a device give each request the next answer "name body" to the last word of its path, the last one of a
/// name again and again, and notes the requests. The body "HTTP 500" is that error, and "!" a given fault.
class Script : public QObject
{
public:
    Script(SimulatedDevice &device, QByteArrayList answers, Fault fault = {})
        : m_device(device), m_answers(std::move(answers)), m_fault(std::move(fault))
    {
        connect(&device, &SimulatedDevice::requestReceived, this, &Script::onRequest);
    }
    /// What was said of the device.
    QStringList heard(const Operations &operations) const
    {
        return operations.lines.filter(
            QRegularExpression(QString(QLatin1StringView("\\b%1\\b")).arg(m_device.address())));
    }
    /// Lines with the device's address for %1.
    QStringList filled(const QByteArrayList &lines) const
    {
        QString text = QString::fromUtf8(lines.join('\n'));
        return text.replace(QLatin1StringView("%1"), m_device.address()).split(u'\n', Qt::SkipEmptyParts);
    }

    /// The requests: "2000 name", the pause in front, and the branch that the body names, if any. A pause
    /// that is about the one in the same line of the others is that one.
    QByteArrayList wire(const QByteArrayList &expected) const
    {
        QByteArrayList lines;
        for (const auto &[gapMs, name] : m_requests)
        {
            const qint64 due = expected.value(lines.size()).split(' ').first().toLongLong();
            lines.append(QByteArray::number(std::abs(gapMs - due) < 900 ? due : gapMs) + ' ' + name);
        }
        return lines;
    }
    qsizetype requestCount() const { return m_requests.size(); }

    bool isFaultGiven = false;

private:
    void onRequest(const HttpRequest &request)
    {
        const QByteArray name = request.path().split('/').last() + ' ';
        const QJsonValue branch = QJsonDocument::fromJson(request.body)[QLatin1StringView("branch")];
        m_requests.append(
            {m_clock.isValid() ? m_clock.elapsed() : 0, (name + branch.toString().toUtf8()).trimmed()});
        m_clock.start();
        const auto fits = [&](const QByteArray &answer) { return answer.startsWith(name); };
        const auto answer = std::ranges::find_if(m_answers, fits);
        if (answer == m_answers.end())
            return;
        const QByteArray body = answer->mid(name.size());
        const Fault error = body == "!" ? m_fault : Fault::answer(500, R"({"result":true})");
        m_device.setFault(request.path(), body == "!" || body == "HTTP 500" ? error : Fault::body(body));
        isFaultGiven = isFaultGiven || body == "!";
        if (std::ranges::count_if(m_answers, fits) > 1)
            m_answers.erase(answer);
    }

    SimulatedDevice &m_device;
    QByteArrayList m_answers;
    Fault m_fault;
    QElapsedTimer m_clock;
    QList<std::pair<qint64, QByteArray>> m_requests;
};
