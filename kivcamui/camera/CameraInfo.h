// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/SCameraInfo.h>
#include <kivcamui/custom/CameraModel.h>
#include <kivcamui/device/DeviceInfo.h>
#include <kivcamui/kivcamui_export.h>

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace kiv::cam::ui {

// The QML face of one camera description. It owns a copy of the record, or shares one with the
// other cameras of a search; its control and video devices are shown by DeviceInfo objects that
// edit that record in place, so what QML edits is what save() writes and what a connection
// uses. The device objects are made when first read, so that a camera nobody looks into costs
// one object; a camera that nobody has read yet may be made on any thread and moved to the
// thread that shows it.
class KIVCAMUI_EXPORT CameraInfo : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString model READ model CONSTANT)
    Q_PROPERTY(QString serial READ serial CONSTANT)
    Q_PROPERTY(QString identity READ identity WRITE setIdentity NOTIFY identityChanged)
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(bool iconExists READ iconExists CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString displayName READ displayName CONSTANT)
    Q_PROPERTY(QString baseModel READ baseModel CONSTANT)
    Q_PROPERTY(QString userFriendlyInterfaceName READ userFriendlyInterfaceName NOTIFY
            userFriendlyInterfaceNameChanged)
    Q_PROPERTY(DeviceInfo* comm READ comm CONSTANT)
    Q_PROPERTY(DeviceInfo* video READ video CONSTANT)
    Q_PROPERTY(kiv::cam::ui::CameraModel* camera READ camera CONSTANT)
    Q_PROPERTY(ushort width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(ushort height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(ushort cropLeft READ cropLeft WRITE setCropLeft NOTIFY cropLeftChanged)
    Q_PROPERTY(ushort cropTop READ cropTop WRITE setCropTop NOTIFY cropTopChanged)
    Q_PROPERTY(ushort cropRight READ cropRight WRITE setCropRight NOTIFY cropRightChanged)
    Q_PROPERTY(ushort cropBottom READ cropBottom WRITE setCropBottom NOTIFY cropBottomChanged)
    Q_PROPERTY(int adBits READ adBits WRITE setADBits NOTIFY adBitsChanged)
    Q_PROPERTY(int adBitShift READ adBitShift WRITE setADBitShift NOTIFY adBitShiftChanged)
    Q_PROPERTY(QString pixelTypeName READ pixelTypeName NOTIFY pixelTypeChanged)
    Q_PROPERTY(QStringList pixelTypeNames READ pixelTypeNames CONSTANT)
    Q_PROPERTY(
        int pixelTypeIndex READ pixelTypeIndex WRITE setPixelTypeIndex NOTIFY pixelTypeChanged)
    Q_PROPERTY(QString controller READ controller WRITE setController NOTIFY controllerChanged)
    Q_PROPERTY(
        int controllerIndex READ controllerIndex WRITE setControllerIndex NOTIFY controllerChanged)
    Q_PROPERTY(QStringList controllerNames READ controllerNames CONSTANT)
    Q_PROPERTY(bool canConnect READ canConnect CONSTANT)
    Q_PROPERTY(QString errorSummary READ errorSummary CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessage CONSTANT)

public:
    CameraInfo(const SCameraInfo& info, QObject* parent);
    // Shows and edits info, which the object keeps alive.
    CameraInfo(std::shared_ptr<SCameraInfo> info, QObject* parent);

    QString model() const;
    QString serial() const;
    QString identity() const;
    void setIdentity(const QString& identity);
    QString icon() const;
    bool iconExists() const;
    QString name() const;
    QString displayName() const;
    QString baseModel() const;
    QString userFriendlyInterfaceName() const { return m_userFriendlyInterfaceName; }
    // The devices, made on the first read.
    DeviceInfo* comm();
    DeviceInfo* video();
    // The camera type, made on first read, also for a type the catalogue does not know.
    CameraModel* camera();
    ushort width() const { return m_info->width; }
    void setWidth(ushort width);
    ushort height() const { return m_info->height; }
    void setHeight(ushort height);
    ushort cropLeft() const { return static_cast<ushort>(m_info->cropLeft); }
    void setCropLeft(ushort crop);
    ushort cropTop() const { return static_cast<ushort>(m_info->cropTop); }
    void setCropTop(ushort crop);
    ushort cropRight() const { return static_cast<ushort>(m_info->cropRight); }
    void setCropRight(ushort crop);
    ushort cropBottom() const { return static_cast<ushort>(m_info->cropBottom); }
    void setCropBottom(ushort crop);
    int adBits() const { return m_info->adBits; }
    // Also keeps the mask of significant bits: 0xFFFF >> (16 - bits), the shift modulo 32.
    void setADBits(int bits);
    int adBitShift() const { return m_info->adBitShift; }
    void setADBitShift(int shift);
    QString pixelTypeName() const;
    QStringList pixelTypeNames() const;
    int pixelTypeIndex() const;
    // Also sets the data type and the reduction filter that suit the new pixel type.
    void setPixelTypeIndex(int index);
    QString controller() const;
    void setController(const QString& controller);
    int controllerIndex() const;
    void setControllerIndex(int index);
    QStringList controllerNames() const;
    bool canConnect() const { return m_info->canConnect; }
    QString errorSummary() const;
    QString errorMessage() const;

    // Writes the description to a file given as a URL; false when it could not be written.
    Q_INVOKABLE bool save(const QString& fname) const;
    Q_INVOKABLE kiv::cam::ui::CameraInfo* clone(QObject* parent) const;
    Q_INVOKABLE kiv::cam::ui::CameraInfo* clone() const;

    // The record itself, for native callers; writing through it emits nothing.
    SCameraInfo& info() { return *m_info; }
    const SCameraInfo& info() const { return *m_info; }

signals:
    void userFriendlyInterfaceNameChanged();
    void identityChanged();
    void widthChanged();
    void heightChanged();
    void cropLeftChanged();
    void cropTopChanged();
    void cropRightChanged();
    void cropBottomChanged();
    void adBitsChanged();
    void adBitShiftChanged();
    void pixelTypeChanged();
    void controllerChanged();

private:
    // From the base type of the control device.
    static QString generateUserFriendlyInterfaceName(const QString& baseType);
    template <typename Field, typename Value>
    void update(Field& field, Value value, void (CameraInfo::*changed)());
    // A device of the record, at the level of found devices.
    std::unique_ptr<DeviceInfo> MakeDevice(SDeviceInfo& device) const;

    std::shared_ptr<SCameraInfo> m_info;
    // Made on the first read; destroyed before the record they edit.
    std::unique_ptr<DeviceInfo> m_comm;
    std::unique_ptr<DeviceInfo> m_video;
    QString m_userFriendlyInterfaceName;
    CameraModel* m_camera = nullptr;
};

} // namespace kiv::cam::ui
