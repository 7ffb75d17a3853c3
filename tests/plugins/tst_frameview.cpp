// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PluginTest.h"

#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace plugintest;

namespace {

// A picture twice as wide as high: red on the left, blue on the right.
QImage redAndBlue()
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x)
            image.setPixel(x, y, qRgb(255, 0, 0));
    }
    return image;
}

} // namespace

// The plugin's picture item, made from QML as its panel makes it.
class tst_FrameView : public QObject {
    Q_OBJECT

private:
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    QQuickItem* m_view = nullptr;

private slots:
    void initTestCase()
    {
        // The plugin registers the type from its entry.
        loadPlugins();
        QCOMPARE(scanMessages(), QByteArrayList());
    }

    void init()
    {
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\nimport kivcamuiEmulator 1.0\n"
                          "Rectangle { color: \"black\"; FrameView { anchors.fill: parent } }",
            QUrl("qrc:/view.qml"));
        auto* root = qobject_cast<QQuickItem*>(component.create());
        QVERIFY2(root, qPrintable(component.errorString()));
        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(200, 200);
        root->setParent(m_window.get());
        root->setParentItem(m_window->contentItem());
        root->setSize(QSizeF(200, 200));
        m_view = root->childItems().value(0);
        QVERIFY(m_view);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    void nothingWithoutAPicture()
    {
        QVERIFY(m_view->property("image").value<QImage>().isNull());
        QCOMPARE(m_view->property("pictureRect").toRectF(), QRectF());
        const QImage grabbed = m_window->grabWindow();
        QCOMPARE(grabbed.pixel(100, 100), qRgb(0, 0, 0));
    }

    // Fitted with its aspect kept, centred: black bars above and below.
    void pictureIsFittedAndCentred()
    {
        QSignalSpy changed(m_view, SIGNAL(imageChanged()));
        QSignalSpy placed(m_view, SIGNAL(pictureRectChanged()));
        QVERIFY(m_view->setProperty("image", redAndBlue()));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(placed.count(), 1);
        QCOMPARE(m_view->property("pictureRect").toRectF(), QRectF(0, 50, 200, 100));
        QImage grabbed;
        QTRY_VERIFY((grabbed = m_window->grabWindow()).pixel(50, 100) == qRgb(255, 0, 0));
        QCOMPARE(grabbed.pixel(150, 100), qRgb(0, 0, 255));
        QCOMPARE(grabbed.pixel(100, 20), qRgb(0, 0, 0));
        QCOMPARE(grabbed.pixel(100, 180), qRgb(0, 0, 0));
    }

    void resizingRefits()
    {
        m_view->setProperty("image", redAndBlue());
        QSignalSpy placed(m_view, SIGNAL(pictureRectChanged()));
        m_view->parentItem()->setSize(QSizeF(100, 200));
        QCOMPARE(placed.count(), 1);
        QCOMPARE(m_view->property("pictureRect").toRectF(), QRectF(0, 75, 100, 50));
    }

    // Every new picture is drawn; a picture of the same size keeps the place.
    void newPicturesReplaceOldOnes()
    {
        m_view->setProperty("image", redAndBlue());
        QTRY_COMPARE(m_window->grabWindow().pixel(50, 100), qRgb(255, 0, 0));
        QSignalSpy placed(m_view, SIGNAL(pictureRectChanged()));
        for (int i = 0; i < 50; ++i) {
            QImage green(40, 20, QImage::Format_RGB32);
            green.fill(qRgb(0, 5 * i, 0));
            m_view->setProperty("image", green);
            QCoreApplication::processEvents();
        }
        QCOMPARE(placed.count(), 0);
        QTRY_COMPARE(m_window->grabWindow().pixel(50, 100), qRgb(0, 245, 0));
        // Back to no picture: nothing drawn.
        m_view->setProperty("image", QImage());
        QCOMPARE(m_view->property("pictureRect").toRectF(), QRectF());
        QTRY_COMPARE(m_window->grabWindow().pixel(50, 100), qRgb(0, 0, 0));
    }
};

QTEST_MAIN(tst_FrameView)
#include "tst_frameview.moc"
