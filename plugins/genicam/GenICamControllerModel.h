// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "GenICamFeatureModel.h"

#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/IGenICamListener.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/LivePicture.h>

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTimer>

#include <memory>

namespace kiv::cam::ui {

class GuiRelay;

// The model of the GenICam camera's controller panel: the camera's feature tree, its live
// picture, its sensor window and the health of its stream, for every camera the GenICam
// controller operates. Everything it asks of the camera goes through the controller's worker;
// answers come back to the GUI thread, which never waits for the camera.
class GenICamControllerModel : public ControllerModel, private IGenICamListener {
    Q_OBJECT
    Q_PROPERTY(bool connected READ connected NOTIFY connectedChanged)
    // The camera was lost while connected (control taken away, no answer, the stream died);
    // errorMessage says what happened. Cleared by the next connect.
    Q_PROPERTY(bool lost READ lost NOTIFY errorMessageChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    // The answer to the last sensor window or acquisition request that failed; empty after one
    // that worked.
    Q_PROPERTY(QString requestMessage READ requestMessage NOTIFY requestMessageChanged)
    Q_PROPERTY(bool acquiring READ acquiring NOTIFY acquiringChanged)
    Q_PROPERTY(QString cameraName READ cameraName NOTIFY connectedChanged)
    Q_PROPERTY(kiv::cam::ui::GenICamFeatureModel* features READ features CONSTANT)
    Q_PROPERTY(kiv::cam::ui::LivePicture* live READ live CONSTANT)
    // The sensor window as the camera holds it, and its rules.
    Q_PROPERTY(bool hasSensorWindow READ hasSensorWindow NOTIFY sensorChanged)
    Q_PROPERTY(QRect sensorWindow READ sensorWindow NOTIFY sensorChanged)
    Q_PROPERTY(QSize sensorSize READ sensorSize NOTIFY sensorChanged)
    Q_PROPERTY(QSize minSize READ minSize NOTIFY sensorChanged)
    Q_PROPERTY(QPoint sizeIncrement READ sizeIncrement NOTIFY sensorChanged)
    Q_PROPERTY(QPoint offsetIncrement READ offsetIncrement NOTIFY sensorChanged)
    // The stream's figures since it started (see kiv::cam::SFrameStatistics).
    Q_PROPERTY(qint64 completeFrames READ completeFrames NOTIFY statisticsChanged)
    Q_PROPERTY(qint64 incompleteFrames READ incompleteFrames NOTIFY statisticsChanged)
    Q_PROPERTY(qint64 missingPackets READ missingPackets NOTIFY statisticsChanged)
    Q_PROPERTY(qint64 resentPackets READ resentPackets NOTIFY statisticsChanged)
    Q_PROPERTY(qint64 lateFrames READ lateFrames NOTIFY statisticsChanged)

public:
    // The panel model of a GenICam controller (an IGenICamController).
    GenICamControllerModel(TSharedPtr<IController> controller, QObject* parent);
    ~GenICamControllerModel() override;

    bool connected() const { return m_connected; }
    bool lost() const { return !m_errorMessage.isEmpty(); }
    QString errorMessage() const { return m_errorMessage; }
    QString requestMessage() const { return m_requestMessage; }
    bool acquiring() const { return m_acquiring; }
    QString cameraName() const { return m_cameraName; }
    GenICamFeatureModel* features() const { return m_features; }
    LivePicture* live() const { return m_live; }
    bool hasSensorWindow() const { return m_hasSensorWindow; }
    QRect sensorWindow() const { return m_sensorWindow; }
    QSize sensorSize() const { return m_sensorSize; }
    QSize minSize() const { return m_minSize; }
    QPoint sizeIncrement() const { return m_sizeIncrement; }
    QPoint offsetIncrement() const { return m_offsetIncrement; }
    qint64 completeFrames() const { return qint64(m_statistics.completeFrames); }
    qint64 incompleteFrames() const { return qint64(m_statistics.incompleteFrames); }
    qint64 missingPackets() const { return qint64(m_statistics.missingPackets); }
    qint64 resentPackets() const { return qint64(m_statistics.resentPackets); }
    qint64 lateFrames() const { return qint64(m_statistics.lateFrames); }

    // Asks the camera for that window; it is snapped to the camera's increments and limits, and
    // sensorChanged follows with the window the camera took.
    Q_INVOKABLE void setSensorWindow(const QRect& window);
    Q_INVOKABLE void startAcquisition();
    Q_INVOKABLE void stopAcquisition();

signals:
    void connectedChanged();
    void errorMessageChanged();
    void requestMessageChanged();
    void acquiringChanged();
    void sensorChanged();
    void statisticsChanged();

private:
    // IGenICamListener, on the controller's worker.
    void treeChanged() override;
    void featuresChanged(const TArray<SGenICamFeature>& rows) override;
    void connectionLost(const CString& message) override;

    // The GUI thread's side.
    void readCamera();
    void readSensor();
    void readStatistics();
    void answered(const SGenICamResult& result);
    IGenICamController::Done doneOnGuiThread();

    const TSharedPtr<IController> m_controller;
    IGenICamController* const m_genicam; // m_controller, as what it is
    const std::shared_ptr<GuiRelay> m_relay;
    GenICamFeatureModel* const m_features;
    LivePicture* const m_live;
    QTimer m_statisticsTimer;

    bool m_connected = false;
    QString m_errorMessage;
    QString m_requestMessage;
    bool m_acquiring = false;
    QString m_cameraName;
    bool m_hasSensorWindow = false;
    QRect m_sensorWindow;
    QSize m_sensorSize;
    QSize m_minSize;
    QPoint m_sizeIncrement{1, 1};
    QPoint m_offsetIncrement{1, 1};
    SFrameStatistics m_statistics;
};

} // namespace kiv::cam::ui
