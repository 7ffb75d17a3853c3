// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CMemFile.h>
#include <kiv/IFile.h>
#include <kiv/Memory.h>
#include <kiv/TSharedPtr.h>

#include <QTest>

#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

using kiv::CMemFile;
using kiv::IFile;
using kiv::TSharedPtr;

namespace {

QByteArray readAll(IFile& file)
{
    QByteArray result(static_cast<qsizetype>(file.Size()), '\0');
    if (!file.Seek(0, IFile::SEEK_FROM_BEGIN))
        return QByteArrayLiteral("<seek failed>");
    const std::uint64_t count = file.Read(result.data(), file.Size());
    result.truncate(static_cast<qsizetype>(count));
    return result;
}

std::uint64_t write(IFile& file, const char* text)
{
    return file.Write(text, std::strlen(text));
}

} // namespace

class tst_CMemFile : public QObject {
    Q_OBJECT

private slots:
    void createdEmpty()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        QVERIFY(file);
        QCOMPARE(file.useCount(), 1);
        QCOMPARE(file->Size(), std::uint64_t(0));
        QCOMPARE(file->Tell(), std::uint64_t(0));
        char buffer[4] = {'x', 'x', 'x', 'x'};
        QCOMPARE(file->Read(buffer, sizeof buffer), std::uint64_t(0));
        QCOMPARE(buffer[0], 'x');
    }
    void writeSeekRead()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        QCOMPARE(write(*file, "camera data"), std::uint64_t(11));
        QCOMPARE(file->Size(), std::uint64_t(11));
        QCOMPARE(file->Tell(), std::uint64_t(11));
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_BEGIN));
        QCOMPARE(file->Tell(), std::uint64_t(0));
        char buffer[32] = {};
        QCOMPARE(file->Read(buffer, 6), std::uint64_t(6));
        QCOMPARE(QByteArray(buffer, 6), QByteArray("camera"));
        QCOMPARE(file->Tell(), std::uint64_t(6));
        // Reading more than is left gives what there is.
        QCOMPARE(file->Read(buffer, sizeof buffer), std::uint64_t(5));
        QCOMPARE(QByteArray(buffer, 5), QByteArray(" data"));
        QCOMPARE(file->Read(buffer, sizeof buffer), std::uint64_t(0));
        QCOMPARE(
            QByteArray(reinterpret_cast<const char*>(file->Data()), 11), QByteArray("camera data"));
    }
    void manyWritesGrow()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        QByteArray expected;
        for (int i = 0; i < 5000; ++i) {
            const QByteArray piece = QByteArray::number(i) + ',';
            QCOMPARE(file->Write(piece.constData(), std::uint64_t(piece.size())),
                std::uint64_t(piece.size()));
            expected += piece;
        }
        QCOMPARE(file->Size(), std::uint64_t(expected.size()));
        QCOMPARE(readAll(*file), expected);
    }
    void overwriteInTheMiddle()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789");
        QVERIFY(file->Seek(3, IFile::SEEK_FROM_BEGIN));
        write(*file, "abc");
        QCOMPARE(file->Size(), std::uint64_t(10));
        QCOMPARE(file->Tell(), std::uint64_t(6));
        // A write across the end overwrites and extends.
        QVERIFY(file->Seek(-2, IFile::SEEK_FROM_END));
        write(*file, "XYZ");
        QCOMPARE(file->Size(), std::uint64_t(11));
        QCOMPARE(readAll(*file), QByteArray("012abc67XYZ"));
    }
    void zeroLengthWrite()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        QCOMPARE(file->Write("", 0), std::uint64_t(0));
        QCOMPARE(file->Size(), std::uint64_t(0));
        QCOMPARE(file->Tell(), std::uint64_t(0));
    }
    void seekOrigins()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789");
        QVERIFY(file->Seek(4, IFile::SEEK_FROM_BEGIN));
        QCOMPARE(file->Tell(), std::uint64_t(4));
        QVERIFY(file->Seek(2, IFile::SEEK_FROM_CURRENT));
        QCOMPARE(file->Tell(), std::uint64_t(6));
        QVERIFY(file->Seek(-5, IFile::SEEK_FROM_CURRENT));
        QCOMPARE(file->Tell(), std::uint64_t(1));
        QVERIFY(file->Seek(-3, IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(7));
        char c = 0;
        QCOMPARE(file->Read(&c, 1), std::uint64_t(1));
        QCOMPARE(c, '7');
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(10));
    }
    void seekBeforeStartRefused()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789");
        QVERIFY(file->Seek(5, IFile::SEEK_FROM_BEGIN));
        QVERIFY(!file->Seek(-1, IFile::SEEK_FROM_BEGIN));
        QCOMPARE(file->Tell(), std::uint64_t(5));
        QVERIFY(!file->Seek(-6, IFile::SEEK_FROM_CURRENT));
        QCOMPARE(file->Tell(), std::uint64_t(5));
        QVERIFY(!file->Seek(-11, IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(5));
        QVERIFY(!file->Seek(std::numeric_limits<std::int64_t>::min(), IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(5));
        QVERIFY(file->Seek(-5, IFile::SEEK_FROM_CURRENT));
        QCOMPARE(file->Tell(), std::uint64_t(0));
        QVERIFY(file->Seek(-10, IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(0));
    }
    void seekPastEndThenWriteLeavesZeroGap()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "abc");
        QVERIFY(file->Seek(5, IFile::SEEK_FROM_END));
        QCOMPARE(file->Tell(), std::uint64_t(8));
        // Moving alone does not grow the file, and there is nothing to read out there.
        QCOMPARE(file->Size(), std::uint64_t(3));
        char c = 'x';
        QCOMPARE(file->Read(&c, 1), std::uint64_t(0));
        write(*file, "z");
        QCOMPARE(file->Size(), std::uint64_t(9));
        QCOMPARE(readAll(*file), QByteArray("abc\0\0\0\0\0z", 9));
    }
    void gapInsideSpareRoomIsZeroed()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789");
        // Growing by one byte leaves spare room behind the end (fresh storage, which the
        // sanitizers fill with garbage); a gap inside it must still read as zeros.
        write(*file, "a");
        QVERIFY(file->Seek(4, IFile::SEEK_FROM_END));
        write(*file, "!");
        QCOMPARE(file->Size(), std::uint64_t(16));
        QCOMPARE(readAll(*file), QByteArray("0123456789a\0\0\0\0!", 16));
    }
    void gapAfterGrowthIsZeroed()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789abcdef");
        QVERIFY(file->Seek(1000, IFile::SEEK_FROM_BEGIN));
        write(*file, "end");
        const QByteArray content = readAll(*file);
        QCOMPARE(content.size(), qsizetype(1003));
        QCOMPARE(content.left(16), QByteArray("0123456789abcdef"));
        QCOMPARE(content.mid(16, 984), QByteArray(984, '\0'));
        QCOMPARE(content.right(3), QByteArray("end"));
    }
    void attachReadsCallerBytesInPlace()
    {
        unsigned char bytes[] = {'p', 'i', 'x', 'e', 'l', 's'};
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "old content that goes away");
        file->Attach(bytes, sizeof bytes, false);
        QVERIFY(file->Data() == bytes);
        QCOMPARE(file->Size(), std::uint64_t(6));
        QCOMPARE(file->Tell(), std::uint64_t(0));
        char buffer[8] = {};
        QCOMPARE(file->Read(buffer, sizeof buffer), std::uint64_t(6));
        QCOMPARE(QByteArray(buffer, 6), QByteArray("pixels"));
        // A write inside the attached bytes goes straight into them.
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_BEGIN));
        write(*file, "P");
        QCOMPARE(bytes[0], static_cast<unsigned char>('P'));
        QVERIFY(file->Data() == bytes);
    }
    void attachedStackBytesOutliveFile()
    {
        unsigned char bytes[] = {1, 2, 3};
        {
            const TSharedPtr<CMemFile> file = CMemFile::Create();
            file->Attach(bytes, sizeof bytes, false);
        }
        // Still ours, and unchanged; freeing them would have been caught by the sanitizers.
        QCOMPARE(bytes[2], static_cast<unsigned char>(3));
        std::vector<unsigned char> heap{4, 5, 6};
        {
            const TSharedPtr<CMemFile> file = CMemFile::Create();
            file->Attach(heap.data(), heap.size(), false);
            char c = 0;
            file->Read(&c, 1);
            QCOMPARE(c, char(4));
        }
        heap.push_back(7);
        QCOMPARE(heap.size(), std::size_t(4));
        QCOMPARE(heap[0], static_cast<unsigned char>(4));
    }
    void writePastAttachedBytesMovesToOwnStorage()
    {
        // Eight bytes of which the file gets the first four; the rest must stay as they are.
        std::vector<unsigned char> bytes{'a', 'b', 'c', 'd', '#', '#', '#', '#'};
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        file->Attach(bytes.data(), 4, false);
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_END));
        QCOMPARE(write(*file, "efgh"), std::uint64_t(4));
        QCOMPARE(file->Size(), std::uint64_t(8));
        QVERIFY(file->Data() != bytes.data());
        QCOMPARE(readAll(*file), QByteArray("abcdefgh"));
        QCOMPARE(
            QByteArray(reinterpret_cast<const char*>(bytes.data()), 8), QByteArray("abcd####"));
        // Later writes stay in the file's own storage too.
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_BEGIN));
        write(*file, "A");
        QCOMPARE(bytes[0], static_cast<unsigned char>('a'));
        QCOMPARE(readAll(*file), QByteArray("Abcdefgh"));
    }
    void writeAcrossAttachedEnd()
    {
        std::vector<unsigned char> bytes{'a', 'b', 'c', 'd', '#', '#'};
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        file->Attach(bytes.data(), 4, false);
        QVERIFY(file->Seek(2, IFile::SEEK_FROM_BEGIN));
        write(*file, "XYZ");
        QCOMPARE(readAll(*file), QByteArray("abXYZ"));
        QCOMPARE(bytes[4], static_cast<unsigned char>('#'));
        QCOMPARE(bytes[5], static_cast<unsigned char>('#'));
    }
    void attachWithOwnershipFreesBytes()
    {
        auto* bytes = static_cast<unsigned char*>(kiv::Alloc(5));
        QVERIFY(bytes != nullptr);
        std::memcpy(bytes, "owned", 5);
        {
            const TSharedPtr<CMemFile> file = CMemFile::Create();
            file->Attach(bytes, 5, true);
            QVERIFY(file->Data() == bytes);
            QCOMPARE(readAll(*file), QByteArray("owned"));
        }
        // The leak checker reports the five bytes if the file did not give them back.
    }
    void ownedBytesFreedWhenGrowing()
    {
        auto* bytes = static_cast<unsigned char*>(kiv::Alloc(3));
        QVERIFY(bytes != nullptr);
        std::memcpy(bytes, "abc", 3);
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        file->Attach(bytes, 3, true);
        QVERIFY(file->Seek(0, IFile::SEEK_FROM_END));
        write(*file, "defghijklmnop");
        QCOMPARE(readAll(*file), QByteArray("abcdefghijklmnop"));
    }
    void reattachFreesOwnedBytes()
    {
        auto* first = static_cast<unsigned char*>(kiv::Alloc(4));
        auto* second = static_cast<unsigned char*>(kiv::Alloc(4));
        QVERIFY(first && second);
        std::memcpy(first, "one!", 4);
        std::memcpy(second, "two!", 4);
        unsigned char third[] = {'3', '3', '3'};
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        file->Attach(first, 4, true);
        file->Attach(second, 4, true);
        QCOMPARE(readAll(*file), QByteArray("two!"));
        file->Attach(third, sizeof third, false);
        QCOMPARE(readAll(*file), QByteArray("333"));
        QVERIFY(file->Data() == third);
    }
    void attachNull()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "something");
        file->Attach(nullptr, 100, false);
        QCOMPARE(file->Size(), std::uint64_t(0));
        QCOMPARE(file->Tell(), std::uint64_t(0));
        write(*file, "new");
        QCOMPARE(readAll(*file), QByteArray("new"));
    }
    void writeOwnContentIntoItself()
    {
        const TSharedPtr<CMemFile> file = CMemFile::Create();
        write(*file, "0123456789");
        // Appending the file's own bytes, which may move while they are copied.
        while (file->Size() < 1000) {
            QVERIFY(file->Seek(0, IFile::SEEK_FROM_END));
            const std::uint64_t size = file->Size();
            QCOMPARE(file->Write(file->Data(), size), size);
        }
        const QByteArray content = readAll(*file);
        QCOMPARE(content.size(), qsizetype(1280));
        QCOMPARE(content, QByteArray("0123456789").repeated(128));
        // Overlapping in place.
        QVERIFY(file->Seek(1, IFile::SEEK_FROM_BEGIN));
        file->Write(file->Data(), 5);
        QCOMPARE(readAll(*file).left(8), QByteArray("00123467"));
    }
    void usedThroughInterface()
    {
        TSharedPtr<CMemFile> memFile = CMemFile::Create();
        write(*memFile, "through the interface");
        TSharedPtr<IFile> file(memFile);
        QCOMPARE(memFile.useCount(), 2);
        QVERIFY(static_cast<IFile*>(memFile.get()) == file.get());
        memFile.reset();
        QCOMPARE(file.useCount(), 1);
        QCOMPARE(file->Size(), std::uint64_t(21));
        QCOMPARE(readAll(*file), QByteArray("through the interface"));
        TSharedPtr<IFile> moved(CMemFile::Create());
        QCOMPARE(moved.useCount(), 1);
        QVERIFY(moved->Write("x", 1) == 1);
        QCOMPARE(moved->Size(), std::uint64_t(1));
    }
};

QTEST_APPLESS_MAIN(tst_CMemFile)
#include "tst_cmemfile.moc"
