// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QUdpSocket>

/// Listens to the multicast DNS group and answers every question for "_http._tcp.local" with the given
/// datagrams, one after the other. For private networks only.
class MulticastResponder : public QObject
{
public:
    MulticastResponder();

    /// Joins the group on the interface that multicasts leave by.
    bool listen();
    void setAnswers(const QList<QByteArray> &datagrams) { m_answers = datagrams; }
    /// Multicasts one datagram, asked or not.
    void say(const QByteArray &datagram);
    /// How many questions for the service type were heard.
    int questionCount() const { return m_questionCount; }

private:
    void onReadyRead();
    void sayNext();

    QUdpSocket m_socket;
    QTimer m_pause;
    QList<QByteArray> m_answers;
    QList<QByteArray> m_unsaid;
    int m_questionCount = 0;
};
