// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivui/ObjectListModel.h>

#include <QAbstractItemModelTester>
#include <QJSEngine>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

class tst_ObjectListModel : public QObject {
    Q_OBJECT

private:
    static QObject* named(const char* name, QObject* parent = nullptr)
    {
        auto* object = new QObject(parent);
        object->setObjectName(name);
        return object;
    }

private slots:
    void startsEmpty()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(list.size(), 0);
        QCOMPARE(list.rowCount(), 0);
        QCOMPARE(list.at(0), nullptr);
        QCOMPARE(list.roleNames().value(ObjectListModel::ItemRole), QByteArray("item"));
    }
    void pushBackAnnouncesTheRow()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        QObject* a = named("a");
        QObject* b = named("b");
        list.push_back(a);
        list.push_back(b);
        QCOMPARE(inserted.count(), 2);
        QCOMPARE(inserted.at(1).at(1).toInt(), 1);
        QCOMPARE(inserted.at(1).at(2).toInt(), 1);
        QCOMPARE(size.count(), 2);
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0), a);
        QCOMPARE(list.at(1), b);
        QCOMPARE(list.data(list.index(1), ObjectListModel::ItemRole).value<QObject*>(), b);
        QVERIFY(!list.data(list.index(1), Qt::DisplayRole).isValid());
    }
    void nullIsNotAdded()
    {
        ObjectListModel list(true);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        list.push_back(nullptr);
        QCOMPARE(list.size(), 0);
        QCOMPARE(size.count(), 0);
    }
    void outOfRangeGivesNull()
    {
        ObjectListModel list(true);
        list.push_back(named("a"));
        QCOMPARE(list.at(-1), nullptr);
        QCOMPARE(list.at(1), nullptr);
    }
    void itemsStayWithCpp()
    {
        ObjectListModel list(true);
        QObject* a = named("a");
        list.push_back(a);
        QCOMPARE(QJSEngine::objectOwnership(a), QJSEngine::CppOwnership);
    }
    void removeAllDeletesOwnedItems()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QPointer<QObject> a = named("a");
        QPointer<QObject> b = named("b", this); // a parent of its own does not matter
        list.push_back(a);
        list.push_back(b);
        QSignalSpy reset(&list, &QAbstractItemModel::modelReset);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        list.removeAll();
        QCOMPARE(reset.count(), 1);
        QCOMPARE(size.count(), 1);
        QCOMPARE(list.size(), 0);
        QVERIFY(a.isNull());
        QVERIFY(b.isNull());
    }
    void removeAllOfAnEmptyListSaysNothing()
    {
        ObjectListModel list(true);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        QSignalSpy reset(&list, &QAbstractItemModel::modelReset);
        list.removeAll();
        list.detachAll();
        QCOMPARE(size.count(), 0);
        QCOMPARE(reset.count(), 0);
    }
    void detachAllKeepsItems()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QObject parent;
        QPointer<QObject> a = named("a", &parent);
        list.push_back(a);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        list.detachAll();
        QCOMPARE(size.count(), 1);
        QCOMPARE(list.size(), 0);
        QVERIFY(!a.isNull());
        QCOMPARE(a->objectName(), QStringLiteral("a"));
        delete a; // no longer watched: the list must not react
        QCOMPARE(list.size(), 0);
    }
    void nonOwningListNeverDeletes()
    {
        QObject parent;
        QPointer<QObject> a = named("a", &parent);
        {
            ObjectListModel list(false);
            list.push_back(a);
            list.removeAll();
            QVERIFY(!a.isNull());
            list.push_back(a);
        }
        QVERIFY(!a.isNull());
    }
    void destructionDeletesOwnedItems()
    {
        QPointer<QObject> a = named("a");
        {
            ObjectListModel list(true);
            list.push_back(a);
        }
        QVERIFY(a.isNull());
    }
    void itemDeletedElsewhereLeavesTheList()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QObject* a = named("a");
        QObject* b = named("b");
        QObject* c = named("c");
        list.push_back(a);
        list.push_back(b);
        list.push_back(c);
        QSignalSpy removed(&list, &QAbstractItemModel::rowsRemoved);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        delete b;
        QCOMPARE(removed.count(), 1);
        QCOMPARE(removed.at(0).at(1).toInt(), 1);
        QCOMPARE(size.count(), 1);
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(0), a);
        QCOMPARE(list.at(1), c);
    }
    void itemInTwoListsDeletedByOne()
    {
        // An object may stand in several lists; the owning one deletes it and the others follow.
        ObjectListModel owner(true);
        ObjectListModel viewer(false);
        QAbstractItemModelTester tester(
            &viewer, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QObject* a = named("a");
        owner.push_back(a);
        viewer.push_back(a);
        owner.removeAll();
        QCOMPARE(viewer.size(), 0);
    }
    void appendAnnouncesOneBlock()
    {
        QStringList order; // outlives the list, which announces its end
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        list.push_back(named("a"));
        QSignalSpy aboutToInsert(&list, &QAbstractItemModel::rowsAboutToBeInserted);
        QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        connect(&list, &QAbstractItemModel::rowsInserted, this, [&] { order << "rows"; });
        connect(&list, &ObjectListModel::sizeChanged, this, [&] { order << "size"; });
        QObject* b = named("b");
        QObject* c = named("c");
        QObject* d = named("d");
        list.append({b, c, d});
        QCOMPARE(aboutToInsert.count(), 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 1);
        QCOMPARE(inserted.at(0).at(2).toInt(), 3);
        QCOMPARE(size.count(), 1);
        QCOMPARE(order, (QStringList{"rows", "size"}));
        QCOMPARE(list.size(), 4);
        QCOMPARE(list.at(1), b);
        QCOMPARE(list.at(2), c);
        QCOMPARE(list.at(3), d);
    }
    void appendLeavesNullsOut()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
        QSignalSpy size(&list, &ObjectListModel::sizeChanged);
        list.append({});
        list.append({nullptr, nullptr});
        QCOMPARE(inserted.count(), 0);
        QCOMPARE(size.count(), 0);
        QObject* a = named("a");
        list.append({nullptr, a, nullptr});
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 0);
        QCOMPARE(inserted.at(0).at(2).toInt(), 0);
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.at(0), a);
    }
    void appendedItemsAreTheListsLikePushedOnes()
    {
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QPointer<QObject> a = named("a");
        QPointer<QObject> b = named("b");
        QObject* c = named("c");
        list.append({a, b, c});
        QCOMPARE(QJSEngine::objectOwnership(a), QJSEngine::CppOwnership);
        QCOMPARE(QJSEngine::objectOwnership(c), QJSEngine::CppOwnership);
        // Deleted elsewhere, an item leaves the list.
        delete b;
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(1), c);
        // Removed, they are deleted.
        list.removeAll();
        QVERIFY(a.isNull());
    }
    void removedItemsAreNotWatchedWhileDeleted()
    {
        // removeAll deletes what it removed after the list is empty: an item that deletes
        // another as it goes finds neither listed any more.
        ObjectListModel list(true);
        QAbstractItemModelTester tester(
            &list, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QObject* a = named("a");
        QObject* b = named("b");
        list.append({a, b});
        QSignalSpy removed(&list, &QAbstractItemModel::rowsRemoved);
        QSignalSpy reset(&list, &QAbstractItemModel::modelReset);
        list.removeAll();
        QCOMPARE(reset.count(), 1);
        QCOMPARE(removed.count(), 0);
        QCOMPARE(list.size(), 0);
        // Items put in again after a removal are watched again.
        QObject* c = named("c");
        list.push_back(c);
        delete c;
        QCOMPARE(removed.count(), 1);
        QCOMPARE(list.size(), 0);
    }
    void rowCountOfAChildIsZero()
    {
        ObjectListModel list(true);
        list.push_back(named("a"));
        QCOMPARE(list.rowCount(list.index(0)), 0);
    }
};

QTEST_MAIN(tst_ObjectListModel)
#include "tst_objectlistmodel.moc"
