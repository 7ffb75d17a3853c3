// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Runs the Qt Quick tests of the kivui module (qml/tst_*.qml) with a fixture that makes lists
// and items from C++, the way the models of kivcamui do.

#include <kivui/InitPlugin.h>
#include <kivui/ObjectListModel.h>

#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

class ListFixture : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    Q_INVOKABLE ObjectListModel* makeList()
    {
        auto* list = new ObjectListModel(true, this);
        QJSEngine::setObjectOwnership(list, QJSEngine::CppOwnership);
        return list;
    }
    Q_INVOKABLE QObject* append(ObjectListModel* list, const QString& name)
    {
        // The fixture is the items' parent, so a detached item is not lost.
        auto* item = new QObject(this);
        item->setObjectName(name);
        list->push_back(item);
        return item;
    }
    Q_INVOKABLE void removeAll(ObjectListModel* list) { list->removeAll(); }
    Q_INVOKABLE void detachAll(ObjectListModel* list) { list->detachAll(); }
};

class Setup : public QObject {
    Q_OBJECT

public slots:
    void applicationAvailable() { kivuiInitPlugin(); }
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->rootContext()->setContextProperty("fixture", new ListFixture(engine));
    }
};

QUICK_TEST_MAIN_WITH_SETUP(kivui, Setup)
#include "qmltest_kivui.moc"
