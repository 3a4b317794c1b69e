// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QIconEngine>
#include <QString>

#include <utility>

/// An icon that is read when somebody wants to see it. To read one means to look through all plugins for
/// images, which takes longer than anything else before the documents are loaded.
class LateIcon : public QIconEngine
{
public:
    explicit LateIcon(QString fileName) : m_fileName(std::move(fileName)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override;
    QIconEngine *clone() const override;

private:
    const QIcon &icon();

    QString m_fileName;
    QIcon m_icon;
};
