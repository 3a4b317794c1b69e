// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "images/LocalFile.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

/// Whether Windows would take a name for something else than a file of this name.
static bool isSpecialOnWindows(const QString &fileName)
{
    // A device is meant whatever suffix follows, and with blanks in front of it.
    static const QRegularExpression device(
        uR"(^(con|prn|aux|nul|conin\$|conout\$|(com|lpt)[0-9¹²³]) *(\.|$))"_s,
        QRegularExpression::CaseInsensitiveOption);
    return fileName.contains(u'\\') || fileName.contains(u':') || fileName.endsWith(u'.') ||
           fileName.endsWith(u' ') || device.match(fileName).hasMatch();
}

bool localfile::staysInFolder(const QString &fileName, System system)
{
    return !fileName.contains(u'/') && !fileName.contains(QChar::Null) && fileName != "."_L1 &&
           fileName != ".."_L1 && !(system == System::Windows && isSpecialOnWindows(fileName));
}

QString localfile::freePath(const QString &folder, const QString &fileName)
{
    const QString wanted = folder + u'/' + fileName;
    // Such a name is refused later on; until then nothing is looked up by it.
    if (!staysInFolder(fileName) || !QFile::exists(wanted))
        return wanted;
    const qsizetype dot = fileName.lastIndexOf(u'.');
    const qsizetype baseLength = dot > 0 ? dot : fileName.size();
    for (int counter = 1;; ++counter)
    {
        QString path = folder + u'/' + fileName.first(baseLength) + u'_' + QString::number(counter) +
                       fileName.sliced(baseLength);
        if (!QFile::exists(path))
            return path;
    }
}
