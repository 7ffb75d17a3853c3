// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CameraInfo.h"

#include <kiv/PixelType.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivreduce/CFilterFactory.h>

namespace kiv::cam::ui {

namespace {

QStringList toStringList(const TArray<CString>& texts)
{
    QStringList list;
    for (const CString& text : texts)
        list.append(toQString(text));
    return list;
}

} // namespace

CameraInfo::CameraInfo(const SCameraInfo& info, QObject* parent)
    : CameraInfo(std::make_shared<SCameraInfo>(info), parent)
{
}

CameraInfo::CameraInfo(std::shared_ptr<SCameraInfo> info, QObject* parent)
    : QObject(parent), m_info(std::move(info))
{
    m_userFriendlyInterfaceName
        = generateUserFriendlyInterfaceName(DeviceInfo::BaseTypeOf(m_info->comm));
    // Nobody is connected yet; kept so that the name's signal is honest about every change.
    emit userFriendlyInterfaceNameChanged();
}

std::unique_ptr<DeviceInfo> CameraInfo::MakeDevice(SDeviceInfo& device) const
{
    return std::make_unique<DeviceInfo>(
        std::shared_ptr<SDeviceInfo>(m_info, &device), CParameters::EDIT_CUSTOM);
}

DeviceInfo* CameraInfo::comm()
{
    if (!m_comm)
        m_comm = MakeDevice(m_info->comm);
    return m_comm.get();
}

DeviceInfo* CameraInfo::video()
{
    if (!m_video)
        m_video = MakeDevice(m_info->video);
    return m_video.get();
}

QString CameraInfo::generateUserFriendlyInterfaceName(const QString& baseType)
{
    for (const char* gigE : {"PureGEV", "GEV", "GigE-Vision", "PgrGenTL"}) {
        if (baseType.compare(QLatin1String(gigE), Qt::CaseInsensitive) == 0)
            return QStringLiteral("GigE");
    }
    if (baseType.contains(QLatin1String("USB")))
        return QStringLiteral("USB");
    if (baseType.endsWith(QLatin1String("Emu")))
        return QStringLiteral("Emulator");
    if (baseType == QLatin1String("QUEXRNDIS"))
        return QStringLiteral("ResourceTree");
    if (baseType == QLatin1String("QUEXRTSP"))
        return QStringLiteral("RTSP");
    return baseType;
}

QString CameraInfo::model() const
{
    return toQString(m_info->model);
}

QString CameraInfo::serial() const
{
    return toQString(m_info->serial);
}

QString CameraInfo::identity() const
{
    return toQString(m_info->identity);
}

void CameraInfo::setIdentity(const QString& identity)
{
    if (identity == this->identity())
        return;
    m_info->identity = toCString(identity);
    emit identityChanged();
}

QString CameraInfo::icon() const
{
    return iconUrl(m_info->iconName);
}

bool CameraInfo::iconExists() const
{
    return ui::iconExists(m_info->iconName);
}

QString CameraInfo::name() const
{
    return toQString(m_info->name);
}

QString CameraInfo::displayName() const
{
    return toQString(m_info->displayName);
}

QString CameraInfo::baseModel() const
{
    return toQString(m_info->baseModel);
}

CameraModel* CameraInfo::camera()
{
    if (!m_camera)
        m_camera = new CameraModel(cameras()->cameraByName(m_info->name), this);
    return m_camera;
}

// Compares, stores and announces; a 16-bit crop is compared and stored widened to its field.
template <typename Field, typename Value>
void CameraInfo::update(Field& field, Value value, void (CameraInfo::*changed)())
{
    if (field == value)
        return;
    field = value;
    emit(this->*changed)();
}

void CameraInfo::setWidth(ushort width)
{
    update(m_info->width, width, &CameraInfo::widthChanged);
}

void CameraInfo::setHeight(ushort height)
{
    update(m_info->height, height, &CameraInfo::heightChanged);
}

void CameraInfo::setCropLeft(ushort crop)
{
    update(m_info->cropLeft, crop, &CameraInfo::cropLeftChanged);
}

void CameraInfo::setCropTop(ushort crop)
{
    update(m_info->cropTop, crop, &CameraInfo::cropTopChanged);
}

void CameraInfo::setCropRight(ushort crop)
{
    update(m_info->cropRight, crop, &CameraInfo::cropRightChanged);
}

void CameraInfo::setCropBottom(ushort crop)
{
    update(m_info->cropBottom, crop, &CameraInfo::cropBottomChanged);
}

void CameraInfo::setADBits(int bits)
{
    if (bits == m_info->adBits)
        return;
    m_info->adBits = bits;
    m_info->adMask = 0xFFFFu >> ((16u - static_cast<unsigned>(bits)) & 31u);
    emit adBitsChanged();
}

void CameraInfo::setADBitShift(int shift)
{
    update(m_info->adBitShift, shift, &CameraInfo::adBitShiftChanged);
}

QString CameraInfo::pixelTypeName() const
{
    return toQString(PixelTypeToString(m_info->pixelType));
}

QStringList CameraInfo::pixelTypeNames() const
{
    TArray<CString> names;
    GetPixelTypeNames(names);
    return toStringList(names);
}

int CameraInfo::pixelTypeIndex() const
{
    return static_cast<int>(pixelTypeNames().indexOf(pixelTypeName()));
}

void CameraInfo::setPixelTypeIndex(int index)
{
    const QStringList names = pixelTypeNames();
    if (index < 0 || index >= names.size() || index == names.indexOf(pixelTypeName()))
        return;
    m_info->pixelType = ParsePixelType(toCString(names.at(index)));
    m_info->dataType = PixelTypeToDataType(m_info->pixelType);
    m_info->reduceFilter = reduce::filterFactory()->defaultFilterFor(m_info->pixelType);
    emit pixelTypeChanged();
}

QString CameraInfo::controller() const
{
    return toQString(m_info->controller);
}

void CameraInfo::setController(const QString& controller)
{
    if (controller == this->controller())
        return;
    m_info->controller = toCString(controller);
    emit controllerChanged();
}

int CameraInfo::controllerIndex() const
{
    return static_cast<int>(controllerNames().indexOf(controller()));
}

void CameraInfo::setControllerIndex(int index)
{
    const QStringList names = controllerNames();
    if (index < 0 || index >= names.size() || index == names.indexOf(controller()))
        return;
    m_info->controller = toCString(names.at(index));
    emit controllerChanged();
}

QStringList CameraInfo::controllerNames() const
{
    TArray<CString> names;
    controllerFactory()->getControllerNames(names);
    return toStringList(names);
}

QString CameraInfo::errorSummary() const
{
    return toQString(m_info->errorSummary);
}

QString CameraInfo::errorMessage() const
{
    return toQString(m_info->errorMessage);
}

bool CameraInfo::save(const QString& fname) const
{
    return m_info->Save(toLocalPath(fname));
}

CameraInfo* CameraInfo::clone(QObject* parent) const
{
    return new CameraInfo(*m_info, parent);
}

CameraInfo* CameraInfo::clone() const
{
    return clone(nullptr);
}

} // namespace kiv::cam::ui
