// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GenICamControllerModel.h"

#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/GuiRelay.h>

#include <algorithm>
#include <cstdlib>

namespace kiv::cam::ui {

namespace {

// The value of an integer feature; 0 when the camera has none of that name.
std::int64_t integerOf(const SGenICamFeature& row)
{
    return std::strtoll(row.value.data(), nullptr, 10);
}

bool isSensorFeature(const CString& name)
{
    for (const char* sensor :
        {"OffsetX", "OffsetY", "Width", "Height", "SensorWidth", "SensorHeight"}) {
        if (name == CString(sensor))
            return true;
    }
    return false;
}

} // namespace

GenICamControllerModel::GenICamControllerModel(TSharedPtr<IController> controller, QObject* parent)
    : ControllerModel(parent),
      m_controller(std::move(controller)),
      m_genicam(dynamic_cast<IGenICamController*>(m_controller.get())),
      m_relay(GuiRelay::Make(this)),
      m_features(new GenICamFeatureModel(m_genicam, this)),
      m_live(new LivePicture(m_controller->frameSource(), this))
{
    m_statisticsTimer.setInterval(500);
    connect(&m_statisticsTimer, &QTimer::timeout, this, &GenICamControllerModel::readStatistics);
    m_genicam->subscribe(this);
    readCamera();
}

GenICamControllerModel::~GenICamControllerModel()
{
    m_genicam->unsubscribe(this);
    m_relay->Detach();
    // They leave the controller, which this model may be the last to hold, before it goes.
    delete m_live;
    delete m_features;
}

void GenICamControllerModel::treeChanged()
{
    m_relay->Post([this] { readCamera(); });
}

void GenICamControllerModel::featuresChanged(const TArray<SGenICamFeature>& rows)
{
    for (const SGenICamFeature& row : rows) {
        if (isSensorFeature(row.name)) {
            m_relay->Post([this] { readSensor(); });
            return;
        }
    }
}

void GenICamControllerModel::connectionLost(const CString& message)
{
    const QString text = toQString(message);
    m_relay->Post([this, text] {
        if (m_errorMessage == text)
            return;
        m_errorMessage = text;
        emit errorMessageChanged();
    });
}

void GenICamControllerModel::readCamera()
{
    const bool connected = m_genicam->isConnected();
    if (connected && !m_errorMessage.isEmpty()) {
        // A new connection: what was lost before is past.
        m_errorMessage.clear();
        emit errorMessageChanged();
    }
    QString name;
    SGenICamFeature row;
    for (const char* feature : {"DeviceVendorName", "DeviceModelName", "DeviceUserID"}) {
        if (m_genicam->feature(feature, row) && !row.value.empty())
            name += (name.isEmpty() ? QString() : QStringLiteral(" ")) + toQString(row.value);
    }
    const bool changed = connected != m_connected || name != m_cameraName;
    m_connected = connected;
    m_cameraName = name;
    if (connected)
        m_statisticsTimer.start();
    else
        m_statisticsTimer.stop();
    if (changed)
        emit connectedChanged();
    readSensor();
    readStatistics();
}

void GenICamControllerModel::readSensor()
{
    SGenICamFeature x, y, width, height, sensorWidth, sensorHeight;
    const bool has = m_genicam->feature("OffsetX", x) && m_genicam->feature("OffsetY", y)
        && m_genicam->feature("Width", width) && m_genicam->feature("Height", height);
    QRect window;
    QSize sensor;
    QSize minimum;
    QPoint sizeIncrement(1, 1);
    QPoint offsetIncrement(1, 1);
    if (has) {
        window = QRect(
            int(integerOf(x)), int(integerOf(y)), int(integerOf(width)), int(integerOf(height)));
        // The sensor's own size where the camera tells it, else the largest window at offset 0.
        sensor = QSize(m_genicam->feature("SensorWidth", sensorWidth)
                ? int(integerOf(sensorWidth))
                : int(width.intMax + integerOf(x)),
            m_genicam->feature("SensorHeight", sensorHeight) ? int(integerOf(sensorHeight))
                                                             : int(height.intMax + integerOf(y)));
        minimum = QSize(int(std::max<std::int64_t>(1, width.intMin)),
            int(std::max<std::int64_t>(1, height.intMin)));
        sizeIncrement = QPoint(int(width.intInc), int(height.intInc));
        offsetIncrement = QPoint(int(x.intInc), int(y.intInc));
    }
    if (has == m_hasSensorWindow && window == m_sensorWindow && sensor == m_sensorSize
        && minimum == m_minSize && sizeIncrement == m_sizeIncrement
        && offsetIncrement == m_offsetIncrement)
        return;
    m_hasSensorWindow = has;
    m_sensorWindow = window;
    m_sensorSize = sensor;
    m_minSize = minimum;
    m_sizeIncrement = sizeIncrement;
    m_offsetIncrement = offsetIncrement;
    emit sensorChanged();
}

void GenICamControllerModel::readStatistics()
{
    const SFrameStatistics now = m_controller->frameSource()->statistics();
    if (now.completeFrames != m_statistics.completeFrames
        || now.incompleteFrames != m_statistics.incompleteFrames
        || now.missingPackets != m_statistics.missingPackets
        || now.resentPackets != m_statistics.resentPackets
        || now.lateFrames != m_statistics.lateFrames) {
        m_statistics = now;
        emit statisticsChanged();
    }
    const bool acquiring = m_genicam->isAcquiring();
    if (acquiring != m_acquiring) {
        m_acquiring = acquiring;
        emit acquiringChanged();
    }
}

IGenICamController::Done GenICamControllerModel::doneOnGuiThread()
{
    return [relay = m_relay, this](
               const SGenICamResult& result) { relay->Post([this, result] { answered(result); }); };
}

void GenICamControllerModel::answered(const SGenICamResult& result)
{
    const QString message = result.ok ? QString() : toQString(result.message);
    readStatistics();
    if (message == m_requestMessage)
        return;
    m_requestMessage = message;
    emit requestMessageChanged();
}

void GenICamControllerModel::setSensorWindow(const QRect& window)
{
    if (!window.isValid())
        return;
    m_genicam->setSensorWindow(
        {window.x(), window.y(), window.width(), window.height()}, doneOnGuiThread());
}

void GenICamControllerModel::startAcquisition()
{
    m_genicam->startAcquisition(doneOnGuiThread());
}

void GenICamControllerModel::stopAcquisition()
{
    m_genicam->stopAcquisition(doneOnGuiThread());
}

} // namespace kiv::cam::ui
