// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "devices/Verdicts.h"

using namespace Qt::StringLiterals;

QString verdict::httpStatusWords(const DeviceAnswer &answer)
{
    return answer.httpStatus == 0 ? QString() : u" (HTTP %1)"_s.arg(answer.httpStatus);
}

Outcome verdict::networkError(const DeviceAnswer &answer, const QString &failure)
{
    return {false, failure + u": Network error - "_s + answer.errorText + httpStatusWords(answer)};
}

Outcome verdict::invalidJson(const DeviceAnswer &answer, const QString &failure)
{
    return {false, failure + u": Invalid JSON response - "_s + answer.jsonErrorText, true};
}

Outcome verdict::refusal(const QString &failure)
{
    return {false, failure + u": Server returned result=false"_s};
}

Outcome verdict::common(const DeviceAnswer &answer, const QString &failure, const QString &success)
{
    if (answer.hasFailed())
        return networkError(answer, failure);
    if (!answer.isObject())
        return invalidJson(answer, failure);
    if (!answer.isGranted())
        return refusal(failure);
    return {true, success};
}
