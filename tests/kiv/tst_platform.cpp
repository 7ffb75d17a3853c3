// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "../HostileFiles.h"

#include <kiv/CFileSystem.h>
#include <kiv/Platform.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#if !defined(KIV_LIBRARY) || !defined(PLATFORM_MODULE) || !defined(PLATFORM_UNRESOLVED_MODULE)
#error "KIV_LIBRARY, PLATFORM_MODULE and PLATFORM_UNRESOLVED_MODULE must name the files"
#endif

using kiv::CString;
using kiv::CStringW;
namespace platform = kiv::platform;

namespace {

QString toQString(const CStringW& text)
{
    return QString::fromWCharArray(text.c_str(), text.length());
}

CStringW toCStringW(const QString& text)
{
    return CStringW(text.toUtf8().constData());
}

QByteArray captured;
int handlerCalls = 0;

void captureOutput(const char* text)
{
    captured += text;
    ++handlerCalls;
}

void otherHandler(const char*)
{
}

// A function that lives in the test executable itself.
__attribute__((noinline)) int functionInExecutable()
{
    return 7;
}

using AnswerFunction = int (*)();

} // namespace

class tst_Platform : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

private slots:
    void init()
    {
        captured.clear();
        handlerCalls = 0;
    }
    void cleanup() { platform::SetDebugOutputHandler(nullptr); }

    void moduleExists() { QVERIFY2(QFileInfo::exists(modulePath()), PLATFORM_MODULE); }
    void openFindCallClose()
    {
        void* library = platform::OpenLibrary(toCStringW(modulePath()));
        QVERIFY(library != nullptr);
        void* symbol = platform::FindSymbol(library, "kivTestAnswer");
        QVERIFY(symbol != nullptr);
        const auto answer = reinterpret_cast<AnswerFunction>(symbol);
        QCOMPARE(answer(), 42);
        QVERIFY(platform::FindSymbol(library, "kivNoSuchSymbol") == nullptr);
        QVERIFY(platform::FindSymbol(library, "") == nullptr);
        QVERIFY(platform::FindSymbol(library, nullptr) == nullptr);
        platform::CloseLibrary(library);
    }
    void openTwiceGivesWorkingHandles()
    {
        void* first = platform::OpenLibrary(toCStringW(modulePath()));
        void* second = platform::OpenLibrary(toCStringW(modulePath()));
        QVERIFY(first && second);
        platform::CloseLibrary(first);
        // The second reference keeps the module loaded and usable.
        const auto answer
            = reinterpret_cast<AnswerFunction>(platform::FindSymbol(second, "kivTestAnswer"));
        QVERIFY(answer != nullptr);
        QCOMPARE(answer(), 42);
        platform::CloseLibrary(second);
    }
    void modulePathOfLibraryFunction()
    {
        void* library = platform::OpenLibrary(toCStringW(modulePath()));
        QVERIFY(library != nullptr);
        const void* symbol = platform::FindSymbol(library, "kivTestAnswer");
        QVERIFY(symbol != nullptr);
        const QString path = toQString(platform::ModulePath(symbol));
        QVERIFY(QFileInfo(path).isAbsolute());
        QCOMPARE(QFileInfo(path).canonicalFilePath(), QFileInfo(modulePath()).canonicalFilePath());
        QCOMPARE(path, QFileInfo(modulePath()).canonicalFilePath());
        platform::CloseLibrary(library);
    }
    void modulePathResolvesLinks()
    {
        // Loaded by a link's name, the module is still reported by its real file.
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString link = QDir(folder.path()).filePath(QStringLiteral("libkivcamuiLink.so"));
        QVERIFY(QFile::link(modulePath(), link));
        void* library = platform::OpenLibrary(toCStringW(link));
        QVERIFY(library != nullptr);
        const void* symbol = platform::FindSymbol(library, "kivTestAnswer");
        QVERIFY(symbol != nullptr);
        QCOMPARE(
            toQString(platform::ModulePath(symbol)), QFileInfo(modulePath()).canonicalFilePath());
        platform::CloseLibrary(library);
    }
    void modulePathOfExecutableFunction()
    {
        QCOMPARE(functionInExecutable(), 7);
        const QString path
            = toQString(platform::ModulePath(reinterpret_cast<const void*>(&functionInExecutable)));
        QVERIFY(QFileInfo(path).isAbsolute());
        QCOMPARE(QFileInfo(path).canonicalFilePath(),
            QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());
    }
    void modulePathOfDataInExecutable()
    {
        static int dataInExecutable = 0;
        const QString path = toQString(platform::ModulePath(&dataInExecutable));
        QCOMPARE(QFileInfo(path).canonicalFilePath(),
            QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());
    }
    void modulePathOfCoreLibrary()
    {
        // The file system object is a static of the kiv library, not of the executable; the
        // library's own file, not the link by its SONAME that the program loaded.
        const QString path = toQString(platform::ModulePath(kiv::fileSystem()));
        QVERIFY(QFileInfo(path).isAbsolute());
        QCOMPARE(path, QFileInfo(KIV_LIBRARY).canonicalFilePath());
        QVERIFY(QFileInfo(path).canonicalFilePath()
            != QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());
    }
    void modulePathOfUnknownAddressIsExecutable()
    {
        const QString path = toQString(platform::ModulePath(nullptr));
        QCOMPARE(QFileInfo(path).canonicalFilePath(),
            QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());
    }
    void openTextFileFails()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = QDir(folder.path()).filePath(QStringLiteral("libkivcamuiText.so"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("this is not a library\n") > 0);
        file.close();
        QVERIFY(platform::OpenLibrary(toCStringW(path)) == nullptr);
    }
    void openMissingFails()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString path = QDir(folder.path()).filePath(QStringLiteral("libkivcamuiMissing.so"));
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(platform::OpenLibrary(toCStringW(path)) == nullptr);
    }
    void openWithUnresolvedSymbolFails()
    {
        const QString path = QString::fromUtf8(PLATFORM_UNRESOLVED_MODULE);
        QVERIFY2(QFileInfo::exists(path), PLATFORM_UNRESOLVED_MODULE);
        // All symbols are resolved at load time, so the missing function is found out now.
        QVERIFY(platform::OpenLibrary(toCStringW(path)) == nullptr);
    }
    void openEmptyFails()
    {
        QVERIFY(platform::OpenLibrary(CStringW()) == nullptr);
        QVERIFY(platform::OpenLibrary(CStringW("")) == nullptr);
    }
    void findAndCloseWithNullLibrary()
    {
        QVERIFY(platform::FindSymbol(nullptr, "kivTestAnswer") == nullptr);
        platform::CloseLibrary(nullptr);
    }
    void readsARegularFileWhole()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath("six.txt");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("hello\n") == 6);
        file.close();
        std::string content = "old";
        CString error;
        QVERIFY(platform::ReadRegularFile(toCStringW(path), 6, content, error));
        QCOMPARE(QByteArray::fromStdString(content), QByteArray("hello\n"));
        QVERIFY(!platform::ReadRegularFile(toCStringW(path), 5, content, error));
        QVERIFY(content.empty());
        QCOMPARE(QByteArray(error.c_str()), QByteArray("larger than 5 bytes"));
    }
    void fileLargerThanItsSizeSaysIsRefused()
    {
        // A file of the proc file system tells size 0 and has more: its reading is bounded all
        // the same.
        std::string content;
        CString error;
        QVERIFY(platform::ReadRegularFile(CStringW("/proc/self/status"), 1 << 20, content, error));
        QVERIFY(QByteArray::fromStdString(content).contains("Name:"));
        QVERIFY(!platform::ReadRegularFile(CStringW("/proc/self/status"), 10, content, error));
        QVERIFY(content.empty());
        QCOMPARE(QByteArray(error.c_str()), QByteArray("larger than 10 bytes"));
    }
    void refusesWhatIsNotARegularFile_data() { hostile::addPathRows(m_folder); }
    void refusesWhatIsNotARegularFile()
    {
        // A FIFO would block in open and a device read without end: refused before either.
        QFETCH(QString, path);
        std::string content;
        CString error;
        QVERIFY(!platform::ReadRegularFile(toCStringW(path), 1 << 20, content, error));
        QVERIFY(content.empty());
        QCOMPARE(QByteArray(error.c_str()), QByteArray("not a regular file"));
    }
    void missingFileSaysWhy()
    {
        std::string content;
        CString error;
        QVERIFY(!platform::ReadRegularFile(
            toCStringW(m_folder.filePath("missing.txt")), 100, content, error));
        QCOMPARE(QByteArray(error.c_str()), QByteArray("No such file or directory"));
        QVERIFY(!platform::ReadRegularFile(CStringW(), 100, content, error));
    }
    void syncsFolders()
    {
        QVERIFY(platform::SyncFolder(toCStringW(m_folder.path())));
        QVERIFY(!platform::SyncFolder(toCStringW(m_folder.filePath("missing"))));
        QVERIFY(!platform::SyncFolder(CStringW("/proc/self/status")));
        QVERIFY(!platform::SyncFolder(CStringW()));
    }
    void owningGroupNamesTheFilesGroup()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        const QByteArray path = QFile::encodeName(file.fileName());
        const QByteArray group = QFileInfo(file.fileName()).group().toUtf8();
        QCOMPARE(QByteArray(platform::OwningGroup(CString(path.constData())).data()), group);
        QVERIFY(platform::OwningGroup("/no/such/file").empty());
    }

    void debugOutputReachesHandler()
    {
        QVERIFY(platform::SetDebugOutputHandler(captureOutput) == nullptr);
        platform::DebugOutput("first line\n");
        platform::DebugOutput("second \xc3\xa4\n");
        QCOMPARE(captured, QByteArray("first line\nsecond \xc3\xa4\n"));
        QCOMPARE(handlerCalls, 2);
        // A null text is nothing to pass on.
        platform::DebugOutput(nullptr);
        QCOMPARE(handlerCalls, 2);
    }
    void setHandlerGivesPrevious()
    {
        QVERIFY(platform::SetDebugOutputHandler(captureOutput) == nullptr);
        QVERIFY(platform::SetDebugOutputHandler(otherHandler) == &captureOutput);
        platform::DebugOutput("to the other handler\n");
        QVERIFY(captured.isEmpty());
        QVERIFY(platform::SetDebugOutputHandler(captureOutput) == &otherHandler);
        QVERIFY(platform::SetDebugOutputHandler(nullptr) == &captureOutput);
        QVERIFY(platform::SetDebugOutputHandler(nullptr) == nullptr);
    }
    void restoredHandlerIsNoLongerCalled()
    {
        platform::SetDebugOutputHandler(captureOutput);
        platform::DebugOutput("captured\n");
        QCOMPARE(handlerCalls, 1);
        QVERIFY(platform::SetDebugOutputHandler(nullptr) == &captureOutput);
        // Goes to standard error now.
        platform::DebugOutput("tst_platform: this line goes to standard error\n");
        QCOMPARE(handlerCalls, 1);
        QCOMPARE(captured, QByteArray("captured\n"));
    }

private:
    static QString modulePath() { return QString::fromUtf8(PLATFORM_MODULE); }
};

QTEST_GUILESS_MAIN(tst_Platform)
#include "tst_platform.moc"
