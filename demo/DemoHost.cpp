// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DemoHost.h"

#include <kivcam/CInterfaces.h>

#include <QImage>
#include <QQuickWindow>
#include <QStandardPaths>

#include <cstdio>

DemoHost::DemoHost(const SOptions& options, QObject* parent) : QObject(parent), m_options(options)
{
}

QUrl DemoHost::iconFontUrl() const
{
    const QString file = QStandardPaths::locate(
        QStandardPaths::GenericDataLocation, "fonts/truetype/font-awesome/fontawesome-webfont.ttf");
    return file.isEmpty() ? QUrl() : QUrl::fromLocalFile(file);
}

QStringList DemoHost::transports() const
{
    QStringList names;
    for (int i = 0; i < kiv::cam::interfaces()->interfaceCount(); ++i)
        names << QString::fromUtf8(kiv::cam::interfaces()->interfaceAt(i)->name.c_str());
    return names;
}

void DemoHost::trace(const QString& line) const
{
    if (!m_options.tracing)
        return;
    std::fputs(line.toUtf8().append('\n').constData(), stdout);
    std::fflush(stdout);
}

bool DemoHost::saveWindow(QQuickWindow* window, const QString& file) const
{
    return window && window->grabWindow().save(file);
}

QObject* DemoHost::findChild(QObject* parent, const QString& name) const
{
    return parent ? parent->findChild<QObject*>(name) : nullptr;
}
