// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DialogButtonBoxHelper.h"

DialogButtonBoxHelper::DialogButtonBoxHelper(QObject* box) : QObject(box), m_box(box)
{
    // The box is a Quick Controls type whose header is not public, so connect by signature.
    connect(box, SIGNAL(clicked(QQuickAbstractButton*)), this, SLOT(buttonClicked()));
}

void DialogButtonBoxHelper::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    emit enabledChanged();
}

DialogButtonBoxHelper* DialogButtonBoxHelper::qmlAttachedProperties(QObject* box)
{
    return new DialogButtonBoxHelper(box);
}

void DialogButtonBoxHelper::buttonClicked()
{
    // The box emits its role signal right after clicked(), in the same call: silence the box
    // until control is back in the event loop.
    if (!m_enabled || !m_box || m_box->signalsBlocked())
        return;
    m_box->blockSignals(true);
    QMetaObject::invokeMethod(
        this,
        [box = m_box] {
            if (box)
                box->blockSignals(false);
        },
        Qt::QueuedConnection);
}
