// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QUrl>

class QQuickWindow;

// What the demo's QML gets from its program: the command-line choices, the icon font, the trace
// on standard output, and window pictures.
class DemoHost : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl iconFontUrl READ iconFontUrl CONSTANT)
    Q_PROPERTY(QString startPage READ startPage CONSTANT)
    Q_PROPERTY(QString screenshotFile READ screenshotFile CONSTANT)
    Q_PROPERTY(QString picturesDir READ picturesDir CONSTANT)
    Q_PROPERTY(bool tracing READ tracing CONSTANT)
    Q_PROPERTY(QStringList transports READ transports CONSTANT)
    Q_PROPERTY(QSize windowSize READ windowSize CONSTANT)
    Q_PROPERTY(QUrl descriptionFile READ descriptionFile CONSTANT)

public:
    struct SOptions {
        QString startPage;
        QString screenshotFile;
        QString picturesDir;
        bool tracing = false;
        QSize windowSize;
        // Where the Cameras page saves and loads without asking; empty: it asks.
        QUrl descriptionFile;
    };

    DemoHost(const SOptions& options, QObject* parent = nullptr);

    // Debian's Font Awesome, or an empty URL when it is not installed.
    QUrl iconFontUrl() const;
    QString startPage() const { return m_options.startPage; }
    QString screenshotFile() const { return m_options.screenshotFile; }
    QString picturesDir() const { return m_options.picturesDir; }
    bool tracing() const { return m_options.tracing; }
    QSize windowSize() const { return m_options.windowSize; }
    QUrl descriptionFile() const { return m_options.descriptionFile; }
    // The names of the camera library's transports, for the devices page to choose from.
    QStringList transports() const;

    // One line of the trace on standard output, written at once; nothing unless tracing.
    Q_INVOKABLE void trace(const QString& line) const;
    // Saves what the window shows, popups and dialogs included, as a picture file.
    Q_INVOKABLE bool saveWindow(QQuickWindow* window, const QString& file) const;
    // The descendant of parent with this object name, or null: reaches the parts of the
    // library's components that they do not offer as properties.
    Q_INVOKABLE QObject* findChild(QObject* parent, const QString& name) const;

private:
    const SOptions m_options;
};
