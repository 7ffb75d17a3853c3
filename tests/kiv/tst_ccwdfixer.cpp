// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CCWDFixer.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString canonical(const QString& path)
{
    return QFileInfo(path).canonicalFilePath();
}

} // namespace

class tst_CCWDFixer : public QObject {
    Q_OBJECT

private slots:
    void init() { m_start = QDir::currentPath(); }
    void cleanup()
    {
        QDir::setCurrent(m_start);
        QCOMPARE(QDir::currentPath(), m_start);
    }

    void restoresFolderAfterScope()
    {
        QTemporaryDir other;
        QVERIFY(other.isValid());
        QVERIFY(canonical(other.path()) != canonical(m_start));
        {
            const kiv::CCWDFixer fixer;
            QVERIFY(QDir::setCurrent(other.path()));
            QCOMPARE(canonical(QDir::currentPath()), canonical(other.path()));
        }
        QCOMPARE(canonical(QDir::currentPath()), canonical(m_start));
    }
    void restoresAfterSeveralChanges()
    {
        QTemporaryDir first;
        QTemporaryDir second;
        QVERIFY(first.isValid() && second.isValid());
        {
            const kiv::CCWDFixer fixer;
            QVERIFY(QDir::setCurrent(first.path()));
            QVERIFY(QDir::setCurrent(second.path()));
            QVERIFY(QDir::setCurrent(QStringLiteral("/")));
        }
        QCOMPARE(canonical(QDir::currentPath()), canonical(m_start));
    }
    void nestedGuards()
    {
        QTemporaryDir first;
        QTemporaryDir second;
        QVERIFY(first.isValid() && second.isValid());
        {
            const kiv::CCWDFixer outer;
            QVERIFY(QDir::setCurrent(first.path()));
            {
                const kiv::CCWDFixer inner;
                QVERIFY(QDir::setCurrent(second.path()));
            }
            QCOMPARE(canonical(QDir::currentPath()), canonical(first.path()));
        }
        QCOMPARE(canonical(QDir::currentPath()), canonical(m_start));
    }
    void unchangedFolderStays()
    {
        {
            const kiv::CCWDFixer fixer;
        }
        QCOMPARE(canonical(QDir::currentPath()), canonical(m_start));
    }
    void vanishedFolderIsNoError()
    {
        QTemporaryDir parent;
        QTemporaryDir elsewhere;
        QVERIFY(parent.isValid() && elsewhere.isValid());
        const QString doomed = parent.path() + QStringLiteral("/doomed");
        QVERIFY(QDir().mkdir(doomed));
        QVERIFY(QDir::setCurrent(doomed));
        {
            const kiv::CCWDFixer fixer;
            QVERIFY(QDir::setCurrent(elsewhere.path()));
            QVERIFY(QDir().rmdir(doomed));
        }
        // The guard could not go back, and stayed quiet about it.
        QCOMPARE(canonical(QDir::currentPath()), canonical(elsewhere.path()));
    }

private:
    QString m_start;
};

QTEST_APPLESS_MAIN(tst_CCWDFixer)
#include "tst_ccwdfixer.moc"
