// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "PoolBlocker.h"

#include <kivui/ObjectListModel.h>

#include <QByteArray>
#include <QFutureWatcher>
#include <QStringList>
#include <QTest>

#include <functional>

// What the tests of the discovery models share.

// Runs one search of a model to its end.
template <typename Model> bool scanToEnd(Model& model)
{
    model.scan();
    return QTest::qWaitFor([&] { return !model.scanning(); }, 30000);
}

// Starts a search while every thread of the pool is busy, so that its task waits in the queue,
// makes changes meanwhile, lets the task start and waits for the search's end.
template <typename Model>
bool scanWithChangesBeforeTheTaskStarts(Model& model, const std::function<void()>& changes)
{
    PoolBlocker blocker;
    model.scan();
    changes();
    blocker.release();
    return QTest::qWaitFor([&] { return !model.scanning(); }, 30000);
}

// Starts a search while every thread of the pool is busy and cancels its task before it runs,
// through the model's watcher; false when the model has none.
template <typename Model> bool cancelQueuedScan(Model& model)
{
    PoolBlocker blocker;
    model.scan();
    auto* watcher = model.template findChild<QFutureWatcherBase*>();
    if (!watcher)
        return false;
    watcher->cancel();
    return true;
}

// Records what a search announces, in its order: the list's resets and insertions ("rows 0-3"),
// the model's scanning signals with the size of the list then ("idle with 4") and its scanned
// signal. order must outlive the model, whose list announces its end.
template <typename Model>
void recordAnnouncements(Model& model, ObjectListModel& list, QStringList& order)
{
    QObject::connect(&list, &QAbstractItemModel::modelReset, &model, [&] { order << "reset"; });
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, &model,
        [&](const QModelIndex&, int first, int last) {
            order << QStringLiteral("rows %1-%2").arg(first).arg(last);
        });
    QObject::connect(&model, &Model::scanningChanged, &model, [&] {
        order << QStringLiteral("%1 with %2")
                     .arg(model.scanning() ? "scanning" : "idle")
                     .arg(list.size());
    });
    QObject::connect(&model, &Model::scannedChanged, &model, [&] { order << "scanned"; });
}

// A test of "KIVCAM_ENABLE_EMULATORS" read at construction: any content turns emulators on.
inline void addEmulatorEnvironmentRows()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("set");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("absent") << QByteArray() << false << false;
    QTest::newRow("empty") << QByteArray() << true << false;
    QTest::newRow("zero") << QByteArray("0") << true << true;
    QTest::newRow("one") << QByteArray("1") << true << true;
}

// Sets or clears the variable as the current row says; gives whether emulators are to be on.
inline bool applyEmulatorEnvironment()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, set);
    QFETCH(bool, enabled);
    if (set)
        qputenv("KIVCAM_ENABLE_EMULATORS", value);
    else
        qunsetenv("KIVCAM_ENABLE_EMULATORS");
    return enabled;
}
