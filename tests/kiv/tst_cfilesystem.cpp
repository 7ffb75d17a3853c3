// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CFileSystem.h>
#include <kiv/IFileSystem.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using kiv::CStringW;
using kiv::IFileSystem;

namespace {

QString toQString(const CStringW& text)
{
    return QString::fromWCharArray(text.c_str(), text.length());
}

CStringW toCStringW(const QString& text)
{
    return CStringW(text.toUtf8().constData());
}

bool touch(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
}

QStringList namesOf(const IFileSystem::CDirectoryListing& listing)
{
    QStringList names;
    for (const IFileSystem::SDirectoryEntry& entry : listing)
        names << toQString(entry.name);
    return names;
}

} // namespace

class tst_CFileSystem : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        const QDir folder(m_folder.path());
        for (const char* name :
            {"libkivcamui.so", "libkivcamuiFoo.so", "libKIVCAMUIBar.so", "other.txt"})
            QVERIFY2(touch(folder.filePath(QString::fromLatin1(name))), name);
        QVERIFY(folder.mkdir(QStringLiteral("libkivcamuiDir.so")));
        QVERIFY(touch(folder.filePath(QStringLiteral("libkivcamuiDir.so/libkivcamuiInner.so"))));
    }

    void sameInstance()
    {
        kiv::CFileSystem* first = kiv::fileSystem();
        QVERIFY(first != nullptr);
        QVERIFY(kiv::fileSystem() == first);
        IFileSystem* asInterface = first;
        QVERIFY(asInterface != nullptr);
    }
    void listsMatchingFilesSortedByName()
    {
        const IFileSystem::CDirectoryListing listing = kiv::fileSystem()->listDirectory(
            toCStringW(m_folder.path()), CStringW(L"libkivcamui*.so"));
        const QStringList names = namesOf(listing);
        // Letter case is ignored in matching and in the order alike.
        QCOMPARE(names,
            QStringList({QStringLiteral("libkivcamui.so"), QStringLiteral("libKIVCAMUIBar.so"),
                QStringLiteral("libkivcamuiFoo.so")}));
    }
    void entriesHaveBareNameAndFullPath()
    {
        const IFileSystem::CDirectoryListing listing = kiv::fileSystem()->listDirectory(
            toCStringW(m_folder.path()), CStringW(L"libkivcamui*.so"));
        QCOMPARE(listing.count(), 3);
        const QDir folder(m_folder.path());
        for (const IFileSystem::SDirectoryEntry& entry : listing) {
            const QString name = toQString(entry.name);
            const QString path = toQString(entry.path);
            QVERIFY(!name.contains(QLatin1Char('/')));
            QVERIFY2(QFileInfo(path).isAbsolute(), qPrintable(path));
            QVERIFY2(QFileInfo::exists(path), qPrintable(path));
            QVERIFY(QFileInfo(path).isFile());
            QCOMPARE(QFileInfo(path).fileName(), name);
            QCOMPARE(QFileInfo(path).canonicalFilePath(),
                QFileInfo(folder.filePath(name)).canonicalFilePath());
        }
    }
    void foldersAreNotListed()
    {
        const QStringList names = namesOf(
            kiv::fileSystem()->listDirectory(toCStringW(m_folder.path()), CStringW(L"*")));
        QVERIFY(!names.contains(QStringLiteral("libkivcamuiDir.so")));
        QVERIFY(!names.contains(QStringLiteral("libkivcamuiInner.so")));
        QVERIFY(!names.contains(QStringLiteral(".")));
        QVERIFY(!names.contains(QStringLiteral("..")));
        QCOMPARE(names.size(), 4);
        QVERIFY(names.contains(QStringLiteral("other.txt")));
    }
    void otherPatterns()
    {
        const CStringW folder = toCStringW(m_folder.path());
        QCOMPARE(namesOf(kiv::fileSystem()->listDirectory(folder, CStringW(L"*.TXT"))),
            QStringList{QStringLiteral("other.txt")});
        QCOMPARE(namesOf(kiv::fileSystem()->listDirectory(folder, CStringW(L"libkivcamui.so"))),
            QStringList{QStringLiteral("libkivcamui.so")});
        QVERIFY(kiv::fileSystem()->listDirectory(folder, CStringW(L"KIVCAMUI*")).empty());
    }
    void trailingSeparatorInFolder()
    {
        const IFileSystem::CDirectoryListing listing = kiv::fileSystem()->listDirectory(
            toCStringW(m_folder.path() + QLatin1Char('/')), CStringW(L"other.txt"));
        QCOMPARE(listing.count(), 1);
        QVERIFY(QFileInfo::exists(toQString(listing[0].path)));
    }
    void nonAsciiNames()
    {
        QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/kiv-\u00e4-XXXXXX"));
        QVERIFY(folder.isValid());
        const QString name = QStringLiteral("libkivcamui\u00c4\u00f6.so");
        QVERIFY(touch(QDir(folder.path()).filePath(name)));
        const IFileSystem::CDirectoryListing listing = kiv::fileSystem()->listDirectory(
            toCStringW(folder.path()), CStringW(L"LIBKIVCAMUI\u00e4*"));
        QCOMPARE(listing.count(), 1);
        QCOMPARE(toQString(listing[0].name), name);
        QVERIFY(QFileInfo::exists(toQString(listing[0].path)));
    }
    void missingFolderListsNothing()
    {
        const QString missing = m_folder.path() + QStringLiteral("/no such folder");
        QVERIFY(!QFileInfo::exists(missing));
        QVERIFY(kiv::fileSystem()->listDirectory(toCStringW(missing), CStringW(L"*")).empty());
        // A file is not a folder either.
        QVERIFY(kiv::fileSystem()
                    ->listDirectory(
                        toCStringW(m_folder.path() + QStringLiteral("/other.txt")), CStringW(L"*"))
                    .empty());
    }
    void emptyFolderListsNothing()
    {
        const QString current = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_folder.path()));
        const IFileSystem::CDirectoryListing listing
            = kiv::fileSystem()->listDirectory(CStringW(), CStringW(L"*"));
        QVERIFY(QDir::setCurrent(current));
        QCOMPARE(listing.count(), 0);
    }
    void emptyPatternListsNothing()
    {
        QVERIFY(kiv::fileSystem()->listDirectory(toCStringW(m_folder.path()), CStringW()).empty());
    }

private:
    QTemporaryDir m_folder;
};

QTEST_APPLESS_MAIN(tst_CFileSystem)
#include "tst_cfilesystem.moc"
