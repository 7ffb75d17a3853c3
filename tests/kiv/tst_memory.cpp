// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/Memory.h>

#include <QTest>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

class tst_Memory : public QObject {
    Q_OBJECT

private slots:
    void allocGivesWritableAlignedStorage()
    {
        void* pointer = kiv::Alloc(16);
        QVERIFY(pointer != nullptr);
        QCOMPARE(reinterpret_cast<std::uintptr_t>(pointer) % alignof(std::max_align_t),
            std::uintptr_t(0));
        std::memset(pointer, 0xab, 16);
        QCOMPARE(static_cast<unsigned char*>(pointer)[15], static_cast<unsigned char>(0xab));
        kiv::Free(pointer);
    }
    void allocationsAreDistinct()
    {
        void* a = kiv::Alloc(16);
        void* b = kiv::Alloc(16);
        QVERIFY(a != nullptr);
        QVERIFY(b != nullptr);
        QVERIFY(a != b);
        std::memset(a, 1, 16);
        std::memset(b, 2, 16);
        QCOMPARE(static_cast<unsigned char*>(a)[0], static_cast<unsigned char>(1));
        kiv::Free(a);
        kiv::Free(b);
    }
    void largerAllocation()
    {
        const std::size_t size = 1 << 20;
        auto* pointer = static_cast<unsigned char*>(kiv::Alloc(size));
        QVERIFY(pointer != nullptr);
        pointer[0] = 1;
        pointer[size - 1] = 2;
        QCOMPARE(pointer[size - 1], static_cast<unsigned char>(2));
        kiv::Free(pointer);
    }
    void impossibleSizesGiveNull()
    {
        QVERIFY(kiv::Alloc(~0ull) == nullptr);
        QVERIFY(kiv::Alloc(std::numeric_limits<std::uint64_t>::max() - 15) == nullptr);
        // The first size beyond what an address space can hold.
        const auto tooLarge
            = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) + 1;
        QVERIFY(kiv::Alloc(tooLarge) == nullptr);
    }
    void freeOfNullIsHarmless()
    {
        kiv::Free(nullptr);
        // A zero-byte request gives storage that goes back like any other.
        kiv::Free(kiv::Alloc(0));
        void* pointer = kiv::Alloc(8);
        QVERIFY(pointer != nullptr);
        kiv::Free(pointer);
    }
};

QTEST_APPLESS_MAIN(tst_Memory)
#include "tst_memory.moc"
