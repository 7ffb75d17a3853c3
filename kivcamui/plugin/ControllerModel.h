// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/kivcamui_export.h>

#include <QObject>

// The base of every controller panel's model. Controller UI plugins derive their model from it
// and hand it out through their creator (see IControllerModelFactory); the host's QML reaches it
// as StandaloneModel.cameraModel. It is not a QML type of its own.
class KIVCAMUI_EXPORT ControllerModel : public QObject {
    Q_OBJECT
    // uchar, not bool: hosts compare it with numbers as well as test it for truth.
    Q_PROPERTY(uchar hasNucMask READ hasNucMask NOTIFY hasNucMaskChanged)

public:
    explicit ControllerModel(QObject* parent);
    ~ControllerModel() override;

    // Whether the controller offers a NUC mask; 0 here. A derived model that has one overrides
    // this and emits hasNucMaskChanged() when its answer changes.
    virtual unsigned char hasNucMask();

Q_SIGNALS:
    void hasNucMaskChanged();
};
