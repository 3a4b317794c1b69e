// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "simulator/Fault.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct Kind
{
    /// The name, and what stands behind it: nothing, a number or a text.
    QLatin1StringView name;
    QLatin1StringView argument;
    Fault (*make)(const QByteArray &text, int number);
};

constexpr auto none = ""_L1;
constexpr auto number = ":NUMBER"_L1;
constexpr auto anyText = ":TEXT"_L1;

const Kind s_kinds[] = {
    {"status"_L1, number, [](const QByteArray &, int code) { return Fault::status(code); }},
    {"body"_L1, anyText, [](const QByteArray &body, int) { return Fault::body(body); }},
    {"redirect"_L1, anyText, [](const QByteArray &location, int) { return Fault::redirect(location); }},
    {"delay"_L1, number, [](const QByteArray &, int ms) { return Fault::delay(ms); }},
    {"trickle"_L1, number, [](const QByteArray &, int ms) { return Fault::trickle(ms); }},
    {"huge"_L1, number, [](const QByteArray &, int bytes) { return Fault::huge(bytes); }},
    {"endless"_L1, none, [](const QByteArray &, int) { return Fault::huge(-1); }},
    {"hold"_L1, none, [](const QByteArray &, int) { return Fault::hold(); }},
    {"drop"_L1, none, [](const QByteArray &, int) { return Fault::drop(); }},
    {"broken"_L1, none, [](const QByteArray &, int) { return Fault::broken(); }},
    {"partial"_L1, none, [](const QByteArray &, int) { return Fault::partial(); }},
};

} // namespace

Fault Fault::after(int ms) const
{
    Fault fault = *this;
    fault.delayMs = ms;
    return fault;
}

Fault Fault::next(int count) const
{
    Fault fault = *this;
    fault.remaining = count;
    return fault;
}

std::optional<Fault> Fault::fromText(const QString &text)
{
    const QString name = text.section(u':', 0, 0);
    const QString argument = text.sliced(name.size());
    for (const Kind &kind : s_kinds)
    {
        bool isNumber = false;
        const int value = argument.mid(1).toInt(&isNumber);
        const bool isFitting = argument.isEmpty() == kind.argument.isEmpty() &&
                               (kind.argument != number || (isNumber && value >= 0));
        if (kind.name == name && isFitting)
        {
            return kind.make(argument.mid(1).toUtf8(), value);
        }
    }
    return {};
}

QString Fault::kinds()
{
    QStringList kinds;
    for (const Kind &kind : s_kinds)
    {
        kinds.append(kind.name + kind.argument);
    }
    return kinds.join(u", "_s);
}
