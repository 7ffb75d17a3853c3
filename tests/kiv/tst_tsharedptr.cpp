// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/TSharedPtr.h>

#include <QTest>

#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

using kiv::MakeShared;
using kiv::TSharedPtr;

namespace {

struct SBase {
    virtual ~SBase() = default;
    int baseValue = 1;
};

struct SCounted : SBase {
    static inline int destroyed = 0;
    SCounted() = default;
    explicit SCounted(int first, int second = 0) : value(first + second) { }
    ~SCounted() override { ++destroyed; }
    int value = 0;
};

struct SOther {
    virtual ~SOther() = default;
    long long otherValue = 2;
};

// SBase sits behind SOther here, so a SBase* differs from the address of the whole object.
struct SMulti : SOther, SBase {
    static inline int destroyed = 0;
    ~SMulti() override { ++destroyed; }
};

int deleterCalls = 0;
const void* deletedAddress = nullptr;

void deleteCounted(void* object)
{
    ++deleterCalls;
    deletedAddress = object;
    delete static_cast<SCounted*>(object);
}

void deleteMulti(void* object)
{
    ++deleterCalls;
    deletedAddress = object;
    delete static_cast<SMulti*>(object);
}

void deleteInt(void* object)
{
    ++deleterCalls;
    deletedAddress = object;
    delete static_cast<int*>(object);
}

void recordOnly(void* object)
{
    ++deleterCalls;
    deletedAddress = object;
}

// Conversions exist only where the raw pointers convert implicitly.
static_assert(std::is_convertible_v<TSharedPtr<SCounted>, TSharedPtr<SBase>>);
static_assert(std::is_convertible_v<TSharedPtr<SCounted>, TSharedPtr<const SCounted>>);
static_assert(!std::is_convertible_v<TSharedPtr<SBase>, TSharedPtr<SCounted>>);
static_assert(!std::is_convertible_v<TSharedPtr<SOther>, TSharedPtr<SBase>>);
static_assert(!std::is_convertible_v<TSharedPtr<const SCounted>, TSharedPtr<SCounted>>);
static_assert(!std::is_convertible_v<SCounted*, TSharedPtr<SCounted>>);

} // namespace

class tst_TSharedPtr : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        SCounted::destroyed = 0;
        SMulti::destroyed = 0;
        deleterCalls = 0;
        deletedAddress = nullptr;
    }

    void emptyPointer()
    {
        TSharedPtr<SCounted> empty;
        QVERIFY(!empty);
        QVERIFY(empty.get() == nullptr);
        QCOMPARE(empty.useCount(), 0);
        empty.reset();
        empty.reset();
        QVERIFY(!empty);
        TSharedPtr<SCounted> copy(empty);
        QCOMPARE(copy.useCount(), 0);
        QVERIFY(!copy);
        const TSharedPtr<SCounted> fromNull(nullptr);
        QVERIFY(!fromNull);
        QCOMPARE(fromNull.useCount(), 0);
        const TSharedPtr<SCounted> fromNullObject(static_cast<SCounted*>(nullptr));
        QVERIFY(!fromNullObject);
        QCOMPARE(fromNullObject.useCount(), 0);
        QVERIFY(empty == fromNull);
    }
    void nullObjectWithDeleterNeverCallsIt()
    {
        {
            TSharedPtr<SCounted> pointer(nullptr, recordOnly);
            TSharedPtr<SCounted> copy(pointer);
            QCOMPARE(copy.useCount(), 0);
        }
        QCOMPARE(deleterCalls, 0);
    }
    void noDeleterDestroysThroughVirtualDestructor()
    {
        {
            TSharedPtr<SBase> pointer(new SCounted);
            QVERIFY(pointer);
            QCOMPARE(pointer.useCount(), 1);
            TSharedPtr<SBase> copy(pointer);
            pointer.reset();
            QVERIFY(!pointer);
            QCOMPARE(SCounted::destroyed, 0);
            QCOMPARE(copy.useCount(), 1);
        }
        QCOMPARE(SCounted::destroyed, 1);
    }
    void noDeleterWithBaseBehindAnother()
    {
        {
            auto* object = new SMulti;
            TSharedPtr<SBase> pointer(object);
            QVERIFY(static_cast<const void*>(pointer.get()) != static_cast<const void*>(object));
        }
        QCOMPARE(SMulti::destroyed, 1);
    }
    void notOwnedIsNeverDestroyed()
    {
        {
            SCounted onStack(7);
            {
                TSharedPtr<SCounted> pointer(&onStack, TSharedPtr<SCounted>::NotOwned());
                QVERIFY(pointer.get() == &onStack);
                QCOMPARE(pointer.useCount(), 1);
                TSharedPtr<SCounted> copy(pointer);
                QCOMPARE(copy.useCount(), 2);
                const TSharedPtr<SBase> base(copy);
                QCOMPARE(base.useCount(), 3);
                QCOMPARE(copy->value, 7);
            }
            QCOMPARE(SCounted::destroyed, 0);
            QCOMPARE(onStack.value, 7);
        }
        // Only the stack object's own end destroyed it.
        QCOMPARE(SCounted::destroyed, 1);
    }
    void notOwnedDiffersFromOtherDeleters()
    {
        QVERIFY(TSharedPtr<SCounted>::NotOwned() != nullptr);
        QVERIFY(TSharedPtr<SCounted>::NotOwned() == TSharedPtr<SCounted>::NotOwned());
        QVERIFY(TSharedPtr<SCounted>::NotOwned() != &recordOnly);
    }
    void functionDeleterCalledOnceWithAddress()
    {
        auto* object = new SCounted;
        {
            TSharedPtr<SCounted> pointer(object, deleteCounted);
            TSharedPtr<SCounted> copy(pointer);
            TSharedPtr<SCounted> third;
            third = copy;
            QCOMPARE(pointer.useCount(), 3);
            pointer.reset();
            copy.reset();
            QCOMPARE(deleterCalls, 0);
        }
        QCOMPARE(deleterCalls, 1);
        QVERIFY(deletedAddress == object);
        QCOMPARE(SCounted::destroyed, 1);
    }
    void functionDeleterOnNonPolymorphicType()
    {
        int* object = new int(5);
        {
            TSharedPtr<int> pointer(object, deleteInt);
            QCOMPARE(*pointer, 5);
        }
        QCOMPARE(deleterCalls, 1);
        QVERIFY(deletedAddress == object);
    }
    void functionDeleterOnStackObject()
    {
        SCounted onStack;
        {
            TSharedPtr<SCounted> pointer(&onStack, recordOnly);
        }
        QCOMPARE(deleterCalls, 1);
        QVERIFY(deletedAddress == &onStack);
        QCOMPARE(SCounted::destroyed, 0);
    }
    void copyCountsAndDropDecrements()
    {
        TSharedPtr<SCounted> pointer(new SCounted);
        QCOMPARE(pointer.useCount(), 1);
        {
            TSharedPtr<SCounted> a(pointer);
            QCOMPARE(pointer.useCount(), 2);
            QCOMPARE(a.useCount(), 2);
            TSharedPtr<SCounted> b;
            b = a;
            QCOMPARE(pointer.useCount(), 3);
            QVERIFY(b.get() == pointer.get());
        }
        QCOMPARE(pointer.useCount(), 1);
        QCOMPARE(SCounted::destroyed, 0);
        pointer.reset();
        QCOMPARE(SCounted::destroyed, 1);
        QCOMPARE(pointer.useCount(), 0);
    }
    void moveTransfersWithoutCounting()
    {
        auto* object = new SCounted;
        TSharedPtr<SCounted> source(object);
        TSharedPtr<SCounted> copy(source);
        QCOMPARE(copy.useCount(), 2);
        TSharedPtr<SCounted> moved(std::move(source));
        QVERIFY(!source);
        QVERIFY(source.get() == nullptr);
        QCOMPARE(source.useCount(), 0);
        QVERIFY(moved.get() == object);
        QCOMPARE(moved.useCount(), 2);
        TSharedPtr<SCounted> assigned;
        assigned = std::move(moved);
        QVERIFY(!moved);
        QCOMPARE(assigned.useCount(), 2);
        QVERIFY(assigned.get() == object);
        copy.reset();
        QCOMPARE(assigned.useCount(), 1);
        QCOMPARE(SCounted::destroyed, 0);
        assigned.reset();
        QCOMPARE(SCounted::destroyed, 1);
    }
    void assignmentReleasesOldObject()
    {
        TSharedPtr<SCounted> pointer(new SCounted(1));
        TSharedPtr<SCounted> other(new SCounted(2));
        pointer = other;
        QCOMPARE(SCounted::destroyed, 1);
        QCOMPARE(pointer->value, 2);
        QCOMPARE(other.useCount(), 2);
        pointer = nullptr;
        QVERIFY(!pointer);
        QCOMPARE(other.useCount(), 1);
        QCOMPARE(SCounted::destroyed, 1);
    }
    void selfAssignment()
    {
        TSharedPtr<SCounted> pointer(new SCounted(3));
        TSharedPtr<SCounted>& alias = pointer;
        pointer = alias;
        QCOMPARE(pointer.useCount(), 1);
        QCOMPARE(pointer->value, 3);
        QCOMPARE(SCounted::destroyed, 0);
        pointer = std::move(alias);
        QVERIFY(pointer);
        QCOMPARE(pointer.useCount(), 1);
        QCOMPARE(pointer->value, 3);
        QCOMPARE(SCounted::destroyed, 0);
        pointer.reset();
        QCOMPARE(SCounted::destroyed, 1);
    }
    void derivedToBaseCopySharesCounter()
    {
        {
            TSharedPtr<SCounted> derived(new SCounted(4));
            TSharedPtr<SBase> base(derived);
            QCOMPARE(derived.useCount(), 2);
            QCOMPARE(base.useCount(), 2);
            QVERIFY(base.get() == static_cast<SBase*>(derived.get()));
            QVERIFY(base == derived);
            TSharedPtr<SBase> assigned;
            assigned = derived;
            QCOMPARE(derived.useCount(), 3);
            assigned.reset();
            derived.reset();
            QCOMPARE(SCounted::destroyed, 0);
            QCOMPARE(base.useCount(), 1);
        }
        QCOMPARE(SCounted::destroyed, 1);
    }
    void derivedToBaseMoveSharesCounter()
    {
        {
            auto* object = new SCounted;
            TSharedPtr<SCounted> derived(object);
            TSharedPtr<SCounted> keep(derived);
            TSharedPtr<SBase> base(std::move(derived));
            QVERIFY(!derived);
            QCOMPARE(derived.useCount(), 0);
            QCOMPARE(base.useCount(), 2);
            QCOMPARE(keep.useCount(), 2);
            QVERIFY(base.get() == static_cast<SBase*>(object));
            TSharedPtr<SBase> assigned;
            assigned = std::move(keep);
            QVERIFY(!keep);
            QCOMPARE(base.useCount(), 2);
            base.reset();
            QCOMPARE(SCounted::destroyed, 0);
        }
        QCOMPARE(SCounted::destroyed, 1);
    }
    void conversionToConst()
    {
        TSharedPtr<SCounted> pointer(new SCounted(9));
        const TSharedPtr<const SCounted> constant(pointer);
        QCOMPARE(constant.useCount(), 2);
        QCOMPARE(constant->value, 9);
        pointer.reset();
        QCOMPARE(SCounted::destroyed, 0);
    }
    void deleterReceivesCompleteObjectAfterConversion()
    {
        auto* object = new SMulti;
        const void* baseAddress = static_cast<SBase*>(object);
        QVERIFY(baseAddress != static_cast<const void*>(object));
        {
            TSharedPtr<SMulti> derived(object, deleteMulti);
            TSharedPtr<SBase> base(derived);
            derived.reset();
            QCOMPARE(deleterCalls, 0);
            QVERIFY(base.get() == baseAddress);
        }
        QCOMPARE(deleterCalls, 1);
        QVERIFY(deletedAddress == object);
        QCOMPARE(SMulti::destroyed, 1);
    }
    void deleterReceivesCompleteObjectFromBasePointer()
    {
        auto* object = new SMulti;
        {
            TSharedPtr<SBase> base(static_cast<SBase*>(object), deleteMulti);
            TSharedPtr<SBase> moved(std::move(base));
        }
        QCOMPARE(deleterCalls, 1);
        QVERIFY(deletedAddress == object);
        QCOMPARE(SMulti::destroyed, 1);
    }
    void makeShared()
    {
        {
            TSharedPtr<SCounted> pointer = MakeShared<SCounted>(40, 2);
            QVERIFY(pointer);
            QCOMPARE(pointer.useCount(), 1);
            QCOMPARE(pointer->value, 42);
            QCOMPARE((*pointer).value, 42);
            TSharedPtr<SBase> base = MakeShared<SCounted>();
            QCOMPARE(base.useCount(), 1);
            QCOMPARE(base->baseValue, 1);
        }
        QCOMPARE(SCounted::destroyed, 2);
        TSharedPtr<int> number = MakeShared<int>(5);
        QCOMPARE(*number, 5);
    }
    void swap()
    {
        TSharedPtr<SCounted> a(new SCounted(1));
        TSharedPtr<SCounted> b(new SCounted(2));
        TSharedPtr<SCounted> keep(b);
        a.swap(b);
        QCOMPARE(a->value, 2);
        QCOMPARE(b->value, 1);
        QCOMPARE(a.useCount(), 2);
        QCOMPARE(b.useCount(), 1);
        QCOMPARE(SCounted::destroyed, 0);
    }
    void comparison()
    {
        TSharedPtr<SCounted> a(new SCounted);
        TSharedPtr<SCounted> b(new SCounted);
        TSharedPtr<SCounted> copy(a);
        QVERIFY(a == copy);
        QVERIFY(!(a == b));
        QVERIFY(!(a == TSharedPtr<SCounted>()));
        const TSharedPtr<SBase> base(a);
        QVERIFY(base == a);
        QVERIFY(a == base);
        QVERIFY(!(base == b));
    }
    void concurrentCopiesDestroyOnce()
    {
        TSharedPtr<SCounted> pointer(new SCounted);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([pointer] {
                for (int i = 0; i < 20000; ++i) {
                    TSharedPtr<SCounted> copy(pointer);
                    TSharedPtr<SBase> base(copy);
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(pointer.useCount(), 1);
        QCOMPARE(SCounted::destroyed, 0);
        pointer.reset();
        QCOMPARE(SCounted::destroyed, 1);
    }
};

QTEST_APPLESS_MAIN(tst_TSharedPtr)
#include "tst_tsharedptr.moc"
