// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Times push_back of many items into an ObjectListModel that a visible ListView shows, then
// removeAll, and prints the cost per item. Not a test: run it by hand, e.g.
//   QT_QPA_PLATFORM=offscreen build/bin/bench_objectlistmodel 10000

#include <kivui/ObjectListModel.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10000;

    ObjectListModel list(true);
    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty("list", &list);
    engine.loadData("import QtQuick\n"
                    "Window { width: 300; height: 600; visible: true\n"
                    "  ListView { anchors.fill: parent; model: list\n"
                    "    delegate: Text { required property var model; height: 20\n"
                    "                     text: model.item.objectName } } }");
    if (engine.rootObjects().isEmpty())
        return 1;
    QCoreApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        auto* item = new QObject;
        item->setObjectName(QString::number(i));
        list.push_back(item);
    }
    QCoreApplication::processEvents();
    const double pushed = double(timer.nsecsElapsed()) / count;

    timer.restart();
    list.removeAll();
    QCoreApplication::processEvents();
    const double removed = double(timer.nsecsElapsed()) / count;

    std::printf("push_back: %d items, %.0f ns per item\n", count, pushed);
    std::printf("removeAll: %d items, %.0f ns per item\n", count, removed);
    return 0;
}
