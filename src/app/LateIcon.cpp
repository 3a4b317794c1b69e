// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#include "app/LateIcon.h"

#include <QPixmap>

void LateIcon::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state)
{
    icon().paint(painter, rect, Qt::AlignCenter, mode, state);
}

QPixmap LateIcon::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state)
{
    return icon().pixmap(size, mode, state);
}

QSize LateIcon::actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state)
{
    return icon().actualSize(size, mode, state);
}

QList<QSize> LateIcon::availableSizes(QIcon::Mode mode, QIcon::State state)
{
    return icon().availableSizes(mode, state);
}

QIconEngine *LateIcon::clone() const
{
    return new LateIcon(*this);
}

const QIcon &LateIcon::icon()
{
    if (m_icon.isNull())
        m_icon = QIcon(m_fileName);
    return m_icon;
}
