// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "mdns/DnsQuery.h"
#include "mdns/DnsResponse.h"

#include <QByteArray>
#include <QLoggingCategory>

#include <cstddef>
#include <cstdint>

using namespace Qt::StringLiterals;

/// Reads one datagram in every way the program would: as a response to either lookup, and as a query.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static const bool isQuiet = [] {
        QLoggingCategory::setFilterRules(u"*=false"_s);
        return true;
    }();
    Q_UNUSED(isQuiet)
    // Not copied: a copy would have room for one byte more, and hide a read past the end.
    const QByteArray datagram =
        QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    mdns::readResponse(datagram, {u"_http._tcp.local"_s, {}}, false);
    mdns::readResponse(datagram, {{}, u"box"_s}, false);
    mdns::questionName(datagram);
    return 0;
}
