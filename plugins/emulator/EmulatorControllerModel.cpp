// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EmulatorControllerModel.h"

#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/Conversions.h>

#include <utility>

namespace kiv::cam::ui {

namespace {

QString deviceText(const SDeviceInfo& device)
{
    if (device.interfaceName.empty())
        return {};
    return toQString(device.interfaceName) + ": " + toQString(device.deviceName);
}

} // namespace

EmulatorControllerModel::EmulatorControllerModel(
    TSharedPtr<IController> controller, QObject* parent)
    : ControllerModel(parent),
      m_controller(std::move(controller)),
      m_emulator(dynamic_cast<IEmulatorController*>(m_controller.get())),
      m_live(m_emulator->frameSource(), this)
{
    connect(&m_live, &LivePicture::cameraChanged, this, &EmulatorControllerModel::showCamera);
    connect(&m_live, &LivePicture::streamingChanged, this, &EmulatorControllerModel::showStreaming);
    connect(&m_live, &LivePicture::imageChanged, this, &EmulatorControllerModel::imageChanged);
    connect(&m_live, &LivePicture::measuredFrameRateChanged, this,
        &EmulatorControllerModel::measuredFrameRateChanged);
    connect(&m_live, &LivePicture::rangeChanged, this, &EmulatorControllerModel::rangeChanged);
}

unsigned char EmulatorControllerModel::hasNucMask()
{
    return m_hasNucMask;
}

QString EmulatorControllerModel::controllerName() const
{
    return toQString(m_controller->name());
}

double EmulatorControllerModel::frameRate() const
{
    return m_emulator->frameSource()->frameRate();
}

void EmulatorControllerModel::setFrameRate(double rate)
{
    if (rate != frameRate() && m_emulator->frameSource()->setFrameRate(rate))
        emit frameRateChanged();
}

double EmulatorControllerModel::maxFrameRate() const
{
    return IFrameSource::maxFrameRate;
}

bool EmulatorControllerModel::nuc()
{
    return m_emulator->runNuc();
}

void EmulatorControllerModel::showCamera()
{
    const SCameraInfo& camera = m_live.camera();
    m_cameraType = toQString(camera.displayName.empty() ? camera.name : camera.displayName);
    m_model = toQString(camera.model);
    m_serial = toQString(camera.serial);
    m_identity = toQString(camera.identity);
    m_commDevice = deviceText(camera.comm);
    m_videoDevice = deviceText(camera.video);
    emit cameraChanged();
    emit frameRateChanged();
    setHasNucMask(camera.hasNucMask ? 1 : 0);
}

void EmulatorControllerModel::showStreaming()
{
    if (!m_live.streaming())
        setHasNucMask(0);
    emit connectedChanged();
}

void EmulatorControllerModel::setHasNucMask(unsigned char hasNucMask)
{
    if (hasNucMask == m_hasNucMask)
        return;
    m_hasNucMask = hasNucMask;
    emit hasNucMaskChanged();
}

} // namespace kiv::cam::ui
