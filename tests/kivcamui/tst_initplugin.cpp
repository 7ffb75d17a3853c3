// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/plugin/InitPlugin.h>

#include <QDir>
#include <QFile>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QResource>
#include <QTest>
#include <QtQml/qqml.h>

namespace {

// Creates an object from QML text; gives the error text when the component fails.
QString qmlErrors(QQmlEngine& engine, const QByteArray& text)
{
    QQmlComponent component(&engine);
    component.setData(text, QUrl("qrc:/test.qml"));
    std::unique_ptr<QObject> object(component.create());
    return object ? QString() : component.errorString();
}

} // namespace

class tst_InitPlugin : public QObject {
    Q_OBJECT

private slots:
    // Runs first: nothing has called kivcamuiInitPlugin yet.
    void resourcesAreThereBeforeTheCall()
    {
        QFile popup(":/kivcamui/controls/CameraFinderPopup.qml");
        QVERIFY(popup.open(QIODevice::ReadOnly));
        QVERIFY(popup.readAll().contains("\nPopup {"));
    }
    // The QML components stored zlib-compressed, the pictures as they are, and nothing else.
    void resourceTree()
    {
        QCOMPARE(QDir(":/kivcamui").entryList(), QStringList({"controls", "dialogs", "images"}));
        const QStringList components{":/kivcamui/controls/CameraFinderPopup.qml",
            ":/kivcamui/dialogs/CameraFinderDialog.qml",
            ":/kivcamui/dialogs/CustomCameraSelectorDialog.qml"};
        QCOMPARE(QDir(":/kivcamui/controls").entryList(), QStringList({"CameraFinderPopup.qml"}));
        QCOMPARE(QDir(":/kivcamui/dialogs").entryList(),
            QStringList({"CameraFinderDialog.qml", "CustomCameraSelectorDialog.qml"}));
        QCOMPARE(QDir(":/kivcamui/images").entryList(), QStringList({"wspreview.png"}));
        for (const QString& path : components) {
            const QResource resource(path);
            QVERIFY2(resource.isValid(), qPrintable(path));
            QCOMPARE(resource.compressionAlgorithm(), QResource::ZlibCompression);
        }

        const QStringList pictures = QDir(":/data/images").entryList();
        QCOMPARE(pictures.size(), 7 + 20);
        QVERIFY(!pictures.contains("Custom.png"));
        QStringList paths{":/kivcamui/images/wspreview.png"};
        for (const QString& picture : pictures)
            paths << ":/data/images/" + picture;
        for (const QString& path : std::as_const(paths)) {
            const QResource resource(path);
            QVERIFY2(resource.isValid(), qPrintable(path));
            QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
        }
    }
    void importFailsBeforeTheCall()
    {
        QQmlEngine engine;
        QVERIFY(!qmlErrors(engine, "import kivcamui 1.0\nimport QtQml\nQtObject {}").isEmpty());
    }
    void importWorksAfterTheCall()
    {
        kivcamuiInitPlugin();
        QQmlEngine engine;
        QCOMPARE(qmlErrors(engine, "import kivcamui 1.0\nimport QtQml\nQtObject {}"), QString());
    }
    void otherVersionsFail()
    {
        QQmlEngine engine;
        const QString errors = qmlErrors(engine, "import kivcamui 2.0\nimport QtQml\nQtObject {}");
        QVERIFY2(errors.contains("kivcamui"), qPrintable(errors));
    }
    void typesAreRegisteredInTheirOrder()
    {
        // Type ids are handed out in registration order.
        int previous = -1;
        for (const char* name :
            {"StandaloneModel", "CameraFinderModel", "CameraInfo", "WindowEditor", "DisplayEditor",
                "DeviceFinderModel", "DeviceInfo", "CustomCameraSelectorModel", "CameraModel"}) {
            const int id = qmlTypeId("kivcamui", 1, 0, name);
            QVERIFY2(id > previous, name);
            previous = id;
        }
    }
    void creatableTypesCanBeCreated()
    {
        QQmlEngine engine;
        for (const char* type : {"StandaloneModel", "CameraFinderModel", "DeviceFinderModel",
                 "CustomCameraSelectorModel"}) {
            QCOMPARE(
                qmlErrors(engine, QByteArray("import kivcamui 1.0\n") + type + " {}"), QString());
        }
    }
    void initialisesTheUiLibrary()
    {
        QQmlEngine engine;
        QCOMPARE(qmlErrors(engine, "import kivui 1.0\nimport QtQml\nQtObject {}"), QString());
    }
    void callingAgainIsHarmless()
    {
        kivcamuiInitPlugin();
        QVERIFY(QFile::exists(":/kivcamui/images/wspreview.png"));
        QQmlEngine engine;
        QCOMPARE(qmlErrors(engine, "import kivcamui 1.0\nimport QtQml\nQtObject {}"), QString());
    }
};

QTEST_MAIN(tst_InitPlugin)
#include "tst_initplugin.moc"
