// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The texts of the library's QML components that go through qsTr, and only those: the titles,
// buttons, labels and headers meant for translation. Each component is made in a window with a
// translator installed that records what it is asked, by context (a component's qsTr context is
// its file's base name); the texts meant to stay as they are ("Scanning...", "Last Camera",
// "No Parameters", ...) must never be asked for.

#include <kivcamui/plugin/InitPlugin.h>

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QTest>
#include <QTranslator>

#include <memory>

namespace {

// Answers nothing, so every text stays as it is, and remembers what it was asked.
class RecordingTranslator : public QTranslator {
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
        int n) const override
    {
        Q_UNUSED(disambiguation);
        Q_UNUSED(n);
        asked[QString::fromUtf8(context)].insert(QString::fromUtf8(sourceText));
        return {};
    }
    bool isEmpty() const override { return false; }

    mutable QHash<QString, QSet<QString>> asked;
};

} // namespace

class tst_QmlTexts : public QObject {
    Q_OBJECT

private:
    QQmlEngine* m_engine = nullptr;
    RecordingTranslator m_translator;

    // Makes the component inside a window, with the host's icon font, and gives the object
    // made; with emulators on, for the lists to have rows.
    std::unique_ptr<QObject> make(const QString& import, const QString& component)
    {
        QQmlComponent window(m_engine);
        window.setData(
            ("import QtQuick\nimport QtQuick.Controls\nimport kivcamui 1.0\nimport \"" + import
                + "\" as Kiv\nApplicationWindow {\n" + "    width: 1200; height: 800\n"
                + "    QtObject { id: fontAwesome; readonly property string name: "
                  "\"DejaVu Sans\" }\n"
                + "    Kiv." + component + " { objectName: \"component\" }\n}\n")
                .toUtf8(),
            QUrl());
        std::unique_ptr<QObject> made(window.create());
        if (!made)
            qWarning() << window.errorString();
        return made;
    }

    QSet<QString> asked(const QString& context) const { return m_translator.asked.value(context); }

private slots:
    void initTestCase()
    {
        kivcamuiInitPlugin();
        QVERIFY(QCoreApplication::installTranslator(&m_translator));
    }
    void init()
    {
        m_translator.asked.clear();
        m_engine = new QQmlEngine(this);
    }
    void cleanup()
    {
        delete m_engine;
        m_engine = nullptr;
    }
    void cleanupTestCase() { QCoreApplication::removeTranslator(&m_translator); }

    void cameraFinderPopup()
    {
        const std::unique_ptr<QObject> window = make("qrc:/kivcamui/controls", "CameraFinderPopup");
        QVERIFY(window);
        QCOMPARE(asked("CameraFinderPopup"), (QSet<QString>{"Refresh", "Can't Connect"}));
    }

    void cameraFinderDialog()
    {
        const std::unique_ptr<QObject> window = make("qrc:/kivcamui/dialogs", "CameraFinderDialog");
        QVERIFY(window);
        QCOMPARE(asked("CameraFinderDialog"), (QSet<QString>{"Scan", "Connect", "Cancel"}));
    }

    void customCameraSelectorDialog()
    {
        const std::unique_ptr<QObject> window
            = make("qrc:/kivcamui/dialogs", "CustomCameraSelectorDialog");
        QVERIFY(window);
        // The header of the device parameters names the communication device once the dialog
        // uses two devices.
        QObject* dialog = window->findChild<QObject*>("component");
        QVERIFY(dialog);
        QObject* selector = QQmlProperty::read(dialog, "cameraSelector").value<QObject*>();
        QVERIFY(selector);
        QVERIFY(
            selector->setProperty("useSameDevice", !selector->property("useSameDevice").toBool()));

        const QSet<QString> expected{"Custom Camera Selector", "Cancel", "Scan", "Connect",
            "Communications Device", "Video Device", "Use same device for comm and video.",
            "Camera Parameters", "Identity:", "Controller:", "Pixel Type:", "Width:", "Height:",
            "Crop Left:", "Crop Top:", "Crop Right:", "Crop Bottom:", "AD Bits:", "AD Bit Shift:",
            "Device Parameters", "Communications Device Parameters", "Video Device Parameters"};
        QCOMPARE(asked("CustomCameraSelectorDialog"), expected);
    }
};

QTEST_MAIN(tst_QmlTexts)
#include "tst_qmltexts.moc"
