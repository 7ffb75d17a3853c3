// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Runs the Qt Quick tests of the kivcamui module over an emulated world (each runner of this
// source names its own folder and world), with a fixture that hands QML the objects the
// library's models would make and a few file helpers. No controller UI plugin is loaded; a
// creator of the test's own gives the "Thermal" controller a ControllerModel with the live
// picture of the controller's stream, and the panel data/ControllerPanel.qml.

#include <kivcam/CCameras.h>
#include <kivcam/IController.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/IControllerModelFactory.h>
#include <kivcamui/plugin/InitPlugin.h>
#include <kivcamui/plugin/LivePicture.h>

#include <QFile>
#include <QQmlContext>
#include <QQmlEngine>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QtQuickTest>

#include <memory>
#include <utility>
#include <vector>

class Fixture : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // A camera description like the ones discovery makes, owned by the fixture.
    Q_INVOKABLE kiv::cam::ui::CameraInfo* makeCamera()
    {
        kiv::cam::SCameraInfo record = kiv::cam::cameras()->cameraByName("Kelvin640")->defaultInfo;
        record.name = "Kelvin640";
        record.iconName = "Kelvin";
        record.controller = "Thermal";
        record.comm.interfaceName = "EmuSerial";
        record.comm.deviceName = "COM1";
        record.comm.baseType = "Serial";
        record.comm.parameters.Add(
            {"Control", "Port", "", kiv::cam::CParameters::EDIT_ALWAYS, kiv::CVariant("COM1")});
        kiv::TArray<kiv::CVariant::SEnumItem> rates;
        rates.add({"9600", 9600});
        rates.add({"115200", 115200});
        record.comm.parameters.Add({"BaudRate", "Baud rate", "", kiv::cam::CParameters::EDIT_CUSTOM,
            kiv::CVariant::Enum(rates, 9600)});
        return new kiv::cam::ui::CameraInfo(record, this);
    }
    // What the camera's record holds now, read natively.
    Q_INVOKABLE QString recordParameter(kiv::cam::ui::CameraInfo* camera, const QString& name)
    {
        return QString::fromUtf8(camera->info()
                                     .comm.parameters[kiv::CString(name.toUtf8().constData())]
                                     .value()
                                     .ToString()
                                     .c_str());
    }
    Q_INVOKABLE int recordWidth(kiv::cam::ui::CameraInfo* camera) { return camera->info().width; }

    // Where the application keeps its local data, as a path.
    Q_INVOKABLE QString appLocalDataDir()
    {
        return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    }
    // A new empty folder, as a file URL; removed when the fixture goes.
    Q_INVOKABLE QString tempDirUrl()
    {
        m_folders.push_back(std::make_unique<QTemporaryDir>());
        return QUrl::fromLocalFile(m_folders.back()->path()).toString();
    }
    Q_INVOKABLE bool fileExists(const QString& url)
    {
        return QFile::exists(QUrl(url).toLocalFile());
    }
    Q_INVOKABLE bool writeText(const QString& url, const QString& text)
    {
        QFile file(QUrl(url).toLocalFile());
        return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) == text.toUtf8().size();
    }
    Q_INVOKABLE QString fileText(const QString& url)
    {
        QFile file(QUrl(url).toLocalFile());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

private:
    std::vector<std::unique_ptr<QTemporaryDir>> m_folders;
};

// The test's panel model: the base, and the live picture of its controller's stream, if the
// controller has one. It keeps its controller, whose stream the picture reads.
class PanelModel : public ControllerModel {
    Q_OBJECT
    Q_PROPERTY(kiv::cam::ui::LivePicture* live READ live CONSTANT)

public:
    PanelModel(kiv::TSharedPtr<kiv::cam::IController> controller, QObject* parent)
        : ControllerModel(parent), m_controller(std::move(controller))
    {
        if (kiv::cam::IFrameSource* source = m_controller->frameSource())
            m_live = new kiv::cam::ui::LivePicture(source, this);
    }
    // The picture leaves the stream before the controller can go.
    ~PanelModel() override { delete m_live; }
    kiv::cam::ui::LivePicture* live() const { return m_live; }

private:
    kiv::TSharedPtr<kiv::cam::IController> m_controller;
    kiv::cam::ui::LivePicture* m_live = nullptr;
};

namespace {

bool createPanel(kiv::TSharedPtr<kiv::cam::IController> controller, QObject* parent,
    QObject** model, QString* qml)
{
    if (!controller || controller->name() != kiv::CString("Thermal"))
        return false;
    *model = new PanelModel(controller, parent);
    *qml = QUrl::fromLocalFile(KIVCAMUI_TEST_DATA "/ControllerPanel.qml").toString();
    return true;
}

} // namespace

class Setup : public QObject {
    Q_OBJECT

public slots:
    void applicationAvailable()
    {
        kivcamuiInitPlugin();
        qputenv("KIVCAMUI_WHITELIST", "no-plugins-in-this-test");
        kiv::cam::ui::controllerModelFactory()->RegisterCreator(createPanel);
    }
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->rootContext()->setContextProperty("fixture", new Fixture(engine));
    }
};

QUICK_TEST_MAIN_WITH_SETUP(kivcamui, Setup)
#include "qmltest_kivcamui.moc"
