// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CException.h>
#include <kiv/CString.h>
#include <kiv/TArray.h>

#include <QTest>

#include <cstddef>
#include <limits>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

using kiv::CString;
using kiv::TArray;

namespace {

// An element that keeps a register of the live objects by address, so that a second destructor
// call, or one on storage that never held an object, is caught, and logs the order of the
// destructor calls by id.
struct STracked {
    static inline std::set<const void*> live;
    static inline std::vector<int> destroyed;
    static inline int errors = 0;
    // A copy of the element with this id throws.
    static inline int throwOnCopyOf = -1000;

    static void resetRegister()
    {
        live.clear();
        destroyed.clear();
        errors = 0;
        throwOnCopyOf = -1000;
    }

    int id = 0;

    STracked(int value) : id(value) { enter(); }
    STracked(const STracked& other) : id(other.id)
    {
        if (other.id == throwOnCopyOf)
            throw std::runtime_error("copy refused");
        enter();
    }
    STracked(STracked&& other) noexcept : id(other.id)
    {
        other.id = -1;
        enter();
    }
    STracked& operator=(const STracked& other)
    {
        check();
        id = other.id;
        return *this;
    }
    STracked& operator=(STracked&& other) noexcept
    {
        check();
        id = other.id;
        other.id = -1;
        return *this;
    }
    ~STracked()
    {
        if (live.erase(this) != 1)
            ++errors;
        destroyed.push_back(id);
    }
    friend bool operator==(const STracked& a, const STracked& b) { return a.id == b.id; }

private:
    void enter()
    {
        if (!live.insert(this).second)
            ++errors;
    }
    void check() const
    {
        if (!live.count(this))
            ++errors;
    }
};

// Elements so large that no count of them above a few can be held by any address space.
struct SHuge {
    // (2^31 - 1) * 2^33 bytes: less than 2^64 but far beyond PTRDIFF_MAX.
    unsigned char bytes[std::size_t{1} << 33];
};
struct SGiant {
    // (2^31 - 1) * 2^34 bytes: more than 2^64, so the byte count itself overflows.
    unsigned char bytes[std::size_t{1} << 34];
};

template <typename T> std::vector<int> ids(const TArray<T>& array)
{
    std::vector<int> result;
    for (const T& item : array)
        result.push_back(item.id);
    return result;
}

std::vector<int> range(int first, int end)
{
    std::vector<int> result;
    for (int i = first; i < end; ++i)
        result.push_back(i);
    return result;
}

} // namespace

class tst_TArray : public QObject {
    Q_OBJECT

private slots:
    void init() { STracked::resetRegister(); }
    void cleanup()
    {
        QCOMPARE(STracked::errors, 0);
        QVERIFY(STracked::live.empty());
    }

    void defaultIsEmpty()
    {
        const TArray<int> array;
        QCOMPARE(array.count(), 0);
        QVERIFY(array.empty());
        QCOMPARE(array.capacity(), 0);
        QVERIFY(array.begin() == array.end());
    }
    void addAndIndex()
    {
        TArray<int> array;
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(array.add(i * 3), i * 3);
            QCOMPARE(array.count(), i + 1);
            QVERIFY(array.capacity() >= array.count());
        }
        QVERIFY(!array.empty());
        for (int i = 0; i < 100; ++i)
            QCOMPARE(array[i], i * 3);
        array[5] = -7;
        QCOMPARE(array[5], -7);
        const TArray<int>& constant = array;
        QCOMPARE(constant[5], -7);
        QCOMPARE(constant[99], 297);
    }
    void addGivesReferenceToStoredElement()
    {
        TArray<CString> array;
        CString& stored = array.add(CString("one"));
        QVERIFY(&stored == &array[0]);
        stored = "changed";
        QVERIFY(array[0] == CString("changed"));
    }
    void capacityGrowsGeometrically()
    {
        TArray<int> array;
        int changes = 0;
        int capacity = array.capacity();
        for (int i = 0; i < 100000; ++i) {
            array.add(i);
            if (array.capacity() != capacity) {
                QVERIFY(array.capacity() > capacity);
                capacity = array.capacity();
                ++changes;
            }
        }
        QCOMPARE(array.count(), 100000);
        // Growing by a constant factor takes a logarithmic number of steps.
        QVERIFY2(changes <= 20, QByteArray::number(changes).constData());
        for (int i = 0; i < 100000; ++i) {
            if (array[i] != i)
                QFAIL(qPrintable(QStringLiteral("wrong element at %1").arg(i)));
        }
    }
    void reserveKeepsElementsInPlace()
    {
        TArray<int> array;
        array.reserve(50);
        QVERIFY(array.capacity() >= 50);
        QCOMPARE(array.count(), 0);
        array.add(1);
        const int* first = &array[0];
        for (int i = 1; i < 50; ++i)
            array.add(i);
        // Nothing moved while the reserved room lasted.
        QVERIFY(&array[0] == first);
        QCOMPARE(array.count(), 50);
    }
    void reserveSmallerDoesNothing()
    {
        TArray<int> array{1, 2, 3};
        array.reserve(20);
        const int capacity = array.capacity();
        const int* first = &array[0];
        array.reserve(2);
        array.reserve(0);
        array.reserve(-1);
        QCOMPARE(array.capacity(), capacity);
        QVERIFY(&array[0] == first);
        QCOMPARE(array.count(), 3);
    }
    void reserveMovesElementsAcross()
    {
        {
            TArray<STracked> array;
            for (int i = 0; i < 3; ++i)
                array.add(STracked(i));
            array.reserve(1000);
            QVERIFY(ids(array) == range(0, 3));
            QCOMPARE(STracked::live.size(), std::size_t(3));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void indexOutOfRangeThrows()
    {
        TArray<int> array{10, 20, 30};
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array[-1]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array[3]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array[std::numeric_limits<int>::min()]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array[std::numeric_limits<int>::max()]);
        const TArray<int>& constant = array;
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, constant[-1]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, constant[3]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, TArray<int>()[0]);
        QCOMPARE(array[2], 30);
    }
    void outOfRangeMessage()
    {
        TArray<int> array{1};
        bool thrown = false;
        try {
            array[1] = 5;
        } catch (const kiv::COutOfRangeException& error) {
            thrown = true;
            QCOMPARE(QByteArray(error.what()), QByteArray("TArray: index out of range."));
        }
        QVERIFY(thrown);
        thrown = false;
        try {
            array.removeAt(-1);
        } catch (const kiv::CException& error) {
            thrown = true;
            QCOMPARE(QByteArray(error.what()), QByteArray("TArray: index out of range."));
        }
        QVERIFY(thrown);
        QCOMPARE(array.count(), 1);
        QCOMPARE(array[0], 1);
    }
    void copyConstructionIsIndependent()
    {
        TArray<CString> original{CString("a"), CString("b"), CString("c")};
        TArray<CString> copy(original);
        QCOMPARE(copy.count(), 3);
        QVERIFY(copy[1] == CString("b"));
        QVERIFY(&copy[0] != &original[0]);
        copy[1] = "changed";
        copy.add(CString("d"));
        QVERIFY(original[1] == CString("b"));
        QCOMPARE(original.count(), 3);
        original.removeAt(0);
        QVERIFY(copy[0] == CString("a"));
        QCOMPARE(copy.count(), 4);
    }
    void copyOfEmpty()
    {
        const TArray<CString> empty;
        TArray<CString> copy(empty);
        QCOMPARE(copy.count(), 0);
        copy.add(CString("x"));
        QCOMPARE(copy.count(), 1);
        QCOMPARE(empty.count(), 0);
    }
    void copyAssignment()
    {
        TArray<CString> a{CString("a"), CString("b")};
        TArray<CString> b{CString("x"), CString("y"), CString("z")};
        b = a;
        QCOMPARE(b.count(), 2);
        QVERIFY(b[0] == CString("a"));
        QVERIFY(b[1] == CString("b"));
        b[0] = "changed";
        QVERIFY(a[0] == CString("a"));
        // Self-assignment keeps the content.
        TArray<CString>& alias = a;
        a = alias;
        QCOMPARE(a.count(), 2);
        QVERIFY(a[1] == CString("b"));
    }
    void moveConstruction()
    {
        TArray<CString> original{CString("a"), CString("b")};
        const CString* storage = &original[0];
        TArray<CString> moved(std::move(original));
        QCOMPARE(moved.count(), 2);
        QVERIFY(&moved[0] == storage);
        QVERIFY(moved[1] == CString("b"));
        QCOMPARE(original.count(), 0);
        QCOMPARE(original.capacity(), 0);
        // The moved-from array is still usable.
        original.add(CString("new"));
        QCOMPARE(original.count(), 1);
        QVERIFY(original[0] == CString("new"));
    }
    void moveAssignment()
    {
        {
            TArray<STracked> a;
            a.add(STracked(1));
            a.add(STracked(2));
            TArray<STracked> b;
            b.add(STracked(7));
            STracked::destroyed.clear();
            b = std::move(a);
            // b's old element went exactly once.
            QVERIFY(STracked::destroyed == std::vector<int>{7});
            QVERIFY(ids(b) == (std::vector<int>{1, 2}));
            QCOMPARE(a.count(), 0);
            TArray<STracked>& alias = b;
            b = std::move(alias);
            QVERIFY(ids(b) == (std::vector<int>{1, 2}));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void swap()
    {
        TArray<int> a{1, 2};
        TArray<int> b{3};
        a.swap(b);
        QCOMPARE(a.count(), 1);
        QCOMPARE(a[0], 3);
        QCOMPARE(b.count(), 2);
        QCOMPARE(b[1], 2);
    }
    void removeAt()
    {
        TArray<CString> array{CString("a"), CString("b"), CString("c"), CString("d")};
        array.removeAt(1);
        QCOMPARE(array.count(), 3);
        QVERIFY(array[0] == CString("a"));
        QVERIFY(array[1] == CString("c"));
        QVERIFY(array[2] == CString("d"));
        array.removeAt(2);
        QCOMPARE(array.count(), 2);
        QVERIFY(array[1] == CString("c"));
        array.removeAt(0);
        QCOMPARE(array.count(), 1);
        QVERIFY(array[0] == CString("c"));
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array.removeAt(1));
        array.removeAt(0);
        QVERIFY(array.empty());
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array.removeAt(0));
    }
    void removeAtDestroysOneElement()
    {
        {
            TArray<STracked> array;
            array.reserve(4);
            for (int i = 0; i < 4; ++i)
                array.add(STracked(i));
            STracked::destroyed.clear();
            array.removeAt(1);
            QCOMPARE(STracked::destroyed.size(), std::size_t(1));
            QCOMPARE(STracked::live.size(), std::size_t(3));
            QVERIFY(ids(array) == (std::vector<int>{0, 2, 3}));
            QVERIFY(array.contains(STracked(3)));
            QVERIFY(!array.contains(STracked(1)));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void contains()
    {
        TArray<CString> array{CString("Mono8"), CString("Mono16")};
        QVERIFY(array.contains(CString("Mono8")));
        QVERIFY(array.contains(CString("Mono16")));
        QVERIFY(!array.contains(CString("mono8")));
        QVERIFY(!array.contains(CString()));
        QVERIFY(!TArray<CString>().contains(CString("Mono8")));
    }
    void clear()
    {
        TArray<CString> array{CString("a"), CString("b")};
        array.clear();
        QCOMPARE(array.count(), 0);
        QVERIFY(array.empty());
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, array[0]);
        array.add(CString("c"));
        QCOMPARE(array.count(), 1);
        QVERIFY(array[0] == CString("c"));
    }
    void initializerList()
    {
        const TArray<int> array{4, 5, 6};
        QCOMPARE(array.count(), 3);
        QCOMPARE(array[0], 4);
        QCOMPARE(array[2], 6);
        int sum = 0;
        for (int value : array)
            sum += value;
        QCOMPARE(sum, 15);
        const TArray<int> none(std::initializer_list<int>{});
        QCOMPARE(none.count(), 0);
    }
    void destructorsRunOnceInOrder()
    {
        {
            TArray<STracked> array;
            for (int i = 0; i < 10; ++i)
                array.add(STracked(i));
            QCOMPARE(STracked::live.size(), std::size_t(10));
            STracked::destroyed.clear();
        }
        QVERIFY(STracked::destroyed == range(0, 10));
        QVERIFY(STracked::live.empty());
        QCOMPARE(STracked::errors, 0);
    }
    void clearDestroysOnceInOrder()
    {
        TArray<STracked> array;
        for (int i = 0; i < 6; ++i)
            array.add(STracked(i));
        STracked::destroyed.clear();
        array.clear();
        QVERIFY(STracked::destroyed == range(0, 6));
        QVERIFY(STracked::live.empty());
        STracked::destroyed.clear();
        array.add(STracked(42));
        QCOMPARE(STracked::live.size(), std::size_t(1));
    }
    void copiesAreDestroyedSeparately()
    {
        {
            TArray<STracked> a;
            for (int i = 0; i < 5; ++i)
                a.add(STracked(i));
            TArray<STracked> b(a);
            TArray<STracked> c;
            c = b;
            QCOMPARE(STracked::live.size(), std::size_t(15));
        }
        QVERIFY(STracked::live.empty());
        QCOMPARE(STracked::errors, 0);
    }
    void selfAddWhileFull()
    {
        TArray<CString> array;
        // Longer than any short-string buffer, so the text lives on the heap.
        const CString text("a text long enough to live outside the string object itself");
        while (array.count() < 4 || array.count() < array.capacity())
            array.add(text);
        QCOMPARE(array.count(), array.capacity());
        array[0] = "first element, also long enough to live on the heap somewhere";
        array.add(array[0]);
        QVERIFY(array[array.count() - 1] == array[0]);
        QVERIFY(array[array.count() - 1]
            == CString("first element, also long enough to live on the heap somewhere"));
    }
    void selfAddTrackedWhileFull()
    {
        {
            TArray<STracked> array;
            array.reserve(4);
            for (int i = 0; i < 4; ++i)
                array.add(STracked(i));
            QCOMPARE(array.count(), array.capacity());
            array.add(array[2]);
            QVERIFY(ids(array) == (std::vector<int>{0, 1, 2, 3, 2}));
            QCOMPARE(STracked::live.size(), std::size_t(5));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void selfAddWithRoom()
    {
        TArray<CString> array;
        array.reserve(8);
        array.add(CString("a text long enough to live outside the string object itself"));
        array.add(array[0]);
        QCOMPARE(array.count(), 2);
        QVERIFY(array[1] == array[0]);
    }
    void throwingCopyInAddKeepsArray()
    {
        {
            TArray<STracked> array;
            array.reserve(8);
            array.add(STracked(1));
            const STracked refused(99);
            STracked::throwOnCopyOf = 99;
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, array.add(refused));
            QCOMPARE(array.count(), 1);
            QVERIFY(ids(array) == std::vector<int>{1});
            STracked::throwOnCopyOf = -1000;
            array.add(STracked(2));
            QVERIFY(ids(array) == (std::vector<int>{1, 2}));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void throwingCopyInAddWhileFullKeepsArray()
    {
        {
            TArray<STracked> array;
            array.reserve(2);
            array.add(STracked(1));
            array.add(STracked(2));
            const STracked refused(99);
            STracked::throwOnCopyOf = 99;
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, array.add(refused));
            QVERIFY(ids(array) == (std::vector<int>{1, 2}));
        }
        QCOMPARE(STracked::errors, 0);
    }
    void throwingCopyInCopyConstructionLeaksNothing()
    {
        {
            TArray<STracked> original;
            for (int i = 0; i < 5; ++i)
                original.add(STracked(i));
            STracked::throwOnCopyOf = 3;
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, TArray<STracked> copy(original));
            // The three copies made before the failure are gone again.
            QCOMPARE(STracked::live.size(), std::size_t(5));
            TArray<STracked> target;
            target.add(STracked(42));
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, target = original);
            QCOMPARE(STracked::live.size(), std::size_t(6));
            QVERIFY(ids(target) == std::vector<int>{42});
        }
        QCOMPARE(STracked::errors, 0);
    }
    void throwingCopyInInitializerListLeaksNothing()
    {
        STracked::throwOnCopyOf = 3;
        QVERIFY_THROWS_EXCEPTION(std::runtime_error,
            (TArray<STracked>{STracked(1), STracked(2), STracked(3), STracked(4)}));
        QVERIFY(STracked::live.empty());
    }
    void impossibleReserveThrowsBadAlloc()
    {
        TArray<SHuge> huge;
        QVERIFY_THROWS_EXCEPTION(
            kiv::CBadAllocException, huge.reserve(std::numeric_limits<int>::max()));
        QCOMPARE(huge.capacity(), 0);
        QCOMPARE(huge.count(), 0);
        TArray<SGiant> giant;
        QVERIFY_THROWS_EXCEPTION(
            kiv::CBadAllocException, giant.reserve(std::numeric_limits<int>::max()));
        QCOMPARE(giant.capacity(), 0);
    }
    void impossibleReserveMessage()
    {
        TArray<SHuge> huge;
        bool thrown = false;
        try {
            huge.reserve(std::numeric_limits<int>::max());
        } catch (const kiv::CException& error) {
            thrown = true;
            QCOMPARE(QByteArray(error.what()), QByteArray("Out of memory."));
        }
        QVERIFY(thrown);
    }
};

QTEST_APPLESS_MAIN(tst_TArray)
#include "tst_tarray.moc"
