// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/plugin/LivePicture.h>

#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcam/IEmulatorController.h>
#include <kivcamui/plugin/ControllerModel.h>

#include <QImage>
#include <QString>

namespace kiv::cam::ui {

// The model of the emulated cameras' controller panel: what the panel shows of the camera its
// controller connects, the camera's live picture (a LivePicture, whose properties it passes on),
// and the controls that go to the controller.
class EmulatorControllerModel : public ControllerModel {
    Q_OBJECT
    Q_PROPERTY(bool connected READ connected NOTIFY connectedChanged)
    Q_PROPERTY(QString controllerName READ controllerName CONSTANT)
    // The connected camera, or the last one; empty before the first connect.
    Q_PROPERTY(QString cameraType READ cameraType NOTIFY cameraChanged)
    Q_PROPERTY(QString model READ model NOTIFY cameraChanged)
    Q_PROPERTY(QString serial READ serial NOTIFY cameraChanged)
    Q_PROPERTY(QString identity READ identity NOTIFY cameraChanged)
    Q_PROPERTY(QString commDevice READ commDevice NOTIFY cameraChanged)
    Q_PROPERTY(QString videoDevice READ videoDevice NOTIFY cameraChanged)
    Q_PROPERTY(QString imageFormat READ imageFormat NOTIFY cameraChanged)
    // The live picture, and what has been shown of the stream since it started.
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(qint64 frameCount READ frameCount NOTIFY imageChanged)
    Q_PROPERTY(qint64 droppedFrames READ droppedFrames NOTIFY imageChanged)
    Q_PROPERTY(double measuredFrameRate READ measuredFrameRate NOTIFY measuredFrameRateChanged)
    // The display range of cameras of more than 8 bits (see LivePicture).
    Q_PROPERTY(bool hasRange READ hasRange NOTIFY cameraChanged)
    Q_PROPERTY(int rangeMaximum READ rangeMaximum NOTIFY cameraChanged)
    Q_PROPERTY(bool autoRange READ autoRange WRITE setAutoRange NOTIFY rangeChanged)
    Q_PROPERTY(int rangeLow READ rangeLow WRITE setRangeLow NOTIFY rangeChanged)
    Q_PROPERTY(int rangeHigh READ rangeHigh WRITE setRangeHigh NOTIFY rangeChanged)
    // Controls of the camera.
    Q_PROPERTY(double frameRate READ frameRate WRITE setFrameRate NOTIFY frameRateChanged)
    Q_PROPERTY(double maxFrameRate READ maxFrameRate CONSTANT)

public:
    // The model of an emulated controller's panel, subscribed to its images; controller is an
    // IEmulatorController.
    EmulatorControllerModel(TSharedPtr<IController> controller, QObject* parent);

    // The connected camera's (SCameraInfo::hasNucMask); 0 while none is connected.
    unsigned char hasNucMask() override;

    bool connected() const { return m_live.streaming(); }
    QString controllerName() const;
    QString cameraType() const { return m_cameraType; }
    QString model() const { return m_model; }
    QString serial() const { return m_serial; }
    QString identity() const { return m_identity; }
    QString commDevice() const { return m_commDevice; }
    QString videoDevice() const { return m_videoDevice; }
    QString imageFormat() const { return m_live.imageFormat(); }
    QImage image() const { return m_live.image(); }
    qint64 frameCount() const { return m_live.frameCount(); }
    qint64 droppedFrames() const { return m_live.droppedFrames(); }
    double measuredFrameRate() const { return m_live.measuredFrameRate(); }
    bool hasRange() const { return m_live.hasRange(); }
    int rangeMaximum() const { return m_live.rangeMaximum(); }
    bool autoRange() const { return m_live.autoRange(); }
    int rangeLow() const { return m_live.rangeLow(); }
    int rangeHigh() const { return m_live.rangeHigh(); }
    void setAutoRange(bool automatic) { m_live.setAutoRange(automatic); }
    void setRangeLow(int low) { m_live.setRangeLow(low); }
    void setRangeHigh(int high) { m_live.setRangeHigh(high); }
    double frameRate() const;
    // Refuses, silently, a rate the camera cannot be set to.
    void setFrameRate(double rate);
    double maxFrameRate() const;

    // Runs a NUC on the connected camera; false when there is none or it has no NUC.
    Q_INVOKABLE bool nuc();

signals:
    void connectedChanged();
    void cameraChanged();
    void imageChanged();
    void measuredFrameRateChanged();
    void rangeChanged();
    void frameRateChanged();

private:
    void showCamera();
    void showStreaming();
    void setHasNucMask(unsigned char hasNucMask);

    const TSharedPtr<IController> m_controller;
    IEmulatorController* const m_emulator; // m_controller, as what it is
    // A child, as a panel's parts are; a member, destroyed before m_controller, whose frame
    // source it listens to, and before this object's QObject part, which so never deletes it.
    LivePicture m_live;

    unsigned char m_hasNucMask = 0;
    QString m_cameraType;
    QString m_model;
    QString m_serial;
    QString m_identity;
    QString m_commDevice;
    QString m_videoDevice;
};

} // namespace kiv::cam::ui
