// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "support/Operations.h"

#include <QJsonDocument>
#include <QMetaMethod>

using namespace Qt::StringLiterals;

Operations::Operations(int deviceCount)
{
    DeviceDiscovery::setVerboseLogging(true);
    isReady = QTest::qWaitFor([this] { return log.count(u"mDNS initialized asynchronously"_s) == 1; });
    for (int row = 0; row < deviceCount; ++row)
    {
        const QHostAddress address(u"127.0.0.%1"_s.arg(row + 2));
        devices.push_back(std::make_unique<SimulatedDevice>(address, row));
        isReady = probing::admit(discovery, device(row)) && isReady;
        device(row).clearRequests();
    }
    const QMetaObject &type = DeviceDiscovery::staticMetaObject;
    for (int index = type.methodOffset(); index < type.methodCount(); ++index)
    {
        const QMetaMethod method = type.method(index);
        if (method.methodType() != QMetaMethod::Signal || (method.attributes() & QMetaMethod::Cloned))
            continue;
        // The spy comes first, so it knows the arguments when record() looks for them.
        m_spies.push_back(std::make_unique<QSignalSpy>(&discovery, method));
        connect(&discovery, method, this, staticMetaObject.method(staticMetaObject.indexOfSlot("record()")));
    }
    log.clear();
}

bool Operations::call(const QString &operation, int row)
{
    const QByteArray name = operation.section(u' ', 0, 0).toLatin1();
    const QString argument = operation.section(u' ', 1);
    if (!operation.contains(u' '))
        return QMetaObject::invokeMethod(&discovery, name, Q_ARG(int, row));
    if (argument == "true"_L1 || argument == "false"_L1)
        return QMetaObject::invokeMethod(&discovery, name, Q_ARG(int, row),
                                         Q_ARG(bool, argument == "true"_L1));
    return QMetaObject::invokeMethod(&discovery, name, Q_ARG(int, row), Q_ARG(QString, argument));
}

void Operations::record()
{
    const QByteArray name = discovery.metaObject()->method(senderSignalIndex()).name();
    QStringList arguments;
    for (const auto &spy : m_spies)
    {
        for (const QVariant &argument : spy->isEmpty() ? QVariantList() : spy->takeFirst())
        {
            const QJsonDocument list = QJsonDocument::fromVariant(argument);
            arguments +=
                list.isNull() ? argument.toString() : QString::fromUtf8(list.toJson(QJsonDocument::Compact));
        }
    }
    if (name.startsWith("device") || name == "isScanningChanged")
        return;
    const bool isStatus = name == "statusTextChanged";
    const QString call = QString::fromLatin1(name) + u'(' + arguments.join(u", "_s) + u')';
    (isStatus ? statuses : said).append(isStatus ? discovery.statusText() : call);
    lines.append(isStatus ? u"status: "_s + discovery.statusText() : call);
}
