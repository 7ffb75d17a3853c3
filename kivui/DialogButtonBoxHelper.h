// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivui/kivui_export.h>

#include <QObject>
#include <QPointer>
#include <QtQml/qqml.h>

// Attached to a DialogButtonBox, lets every button of the box act through its own onClicked
// handler alone: a click no longer also makes the box emit accepted(), rejected() and the other
// role signals, so an accept-role "Scan" button scans without closing its dialog, and a
// "Connect" button closes it by calling the dialog's accept() itself.
//
//     footer: DialogButtonBox {
//         DialogButtonBoxHelper.enabled: true
//         Button { text: "Scan"; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
//                  onClicked: finder.scan() }
//     }
class KIVUI_EXPORT DialogButtonBoxHelper : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool enabled READ isEnabled WRITE setEnabled NOTIFY enabledChanged)
    QML_ATTACHED(DialogButtonBoxHelper)

public:
    explicit DialogButtonBoxHelper(QObject* box);

    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);

    static DialogButtonBoxHelper* qmlAttachedProperties(QObject* box);

signals:
    void enabledChanged();

private slots:
    void buttonClicked();

private:
    QPointer<QObject> m_box;
    bool m_enabled = true;
};
