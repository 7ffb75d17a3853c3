// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CReferenceCounter.h>

#include <QTest>

#include <thread>
#include <vector>

using kiv::CReferenceCounter;

class tst_CReferenceCounter : public QObject {
    Q_OBJECT

private slots:
    void startsAtOne()
    {
        const CReferenceCounter counter;
        QCOMPARE(counter.count(), 1);
    }
    void addRefAndRelease()
    {
        CReferenceCounter counter;
        counter.AddRef();
        QCOMPARE(counter.count(), 2);
        counter.AddRef();
        QCOMPARE(counter.count(), 3);
        QVERIFY(!counter.Release());
        QCOMPARE(counter.count(), 2);
        QVERIFY(!counter.Release());
        QCOMPARE(counter.count(), 1);
        // Only the release of the last reference says so.
        QVERIFY(counter.Release());
        QCOMPARE(counter.count(), 0);
    }
    void lastReleaseOnItsOwn()
    {
        CReferenceCounter counter;
        QVERIFY(counter.Release());
    }
    void concurrentCountingIsExact()
    {
        CReferenceCounter counter;
        const int perThread = 100000;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&counter] {
                for (int i = 0; i < perThread; ++i)
                    counter.AddRef();
                for (int i = 0; i < perThread; ++i)
                    counter.Release();
                for (int i = 0; i < perThread; ++i)
                    counter.AddRef();
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(counter.count(), 1 + 4 * perThread);
    }
};

QTEST_APPLESS_MAIN(tst_CReferenceCounter)
#include "tst_creferencecounter.moc"
