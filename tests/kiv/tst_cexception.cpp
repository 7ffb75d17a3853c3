// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CException.h>

#include <QTest>

#include <exception>
#include <string>
#include <type_traits>

namespace {

template <typename Throw> QByteArray messageOf(Throw action)
{
    try {
        action();
    } catch (const kiv::COutOfRangeException& error) {
        return QByteArray(error.what());
    }
    return QByteArrayLiteral("<nothing thrown>");
}

} // namespace

class tst_CException : public QObject {
    Q_OBJECT

private slots:
    void hierarchy()
    {
        static_assert(std::is_base_of_v<std::exception, kiv::CException>);
        static_assert(std::is_base_of_v<kiv::CException, kiv::CBadAllocException>);
        static_assert(std::is_base_of_v<kiv::CException, kiv::COutOfRangeException>);
        const kiv::COutOfRangeException outOfRange("range");
        const std::exception& base = outOfRange;
        QCOMPARE(QByteArray(base.what()), QByteArray("range"));
    }
    void whatGivesTheMessage()
    {
        const kiv::CException error("Something failed: 42");
        QCOMPARE(QByteArray(error.what()), QByteArray("Something failed: 42"));
        QCOMPARE(QByteArray(kiv::CException(std::string()).what()), QByteArray(""));
        const kiv::CException copy(error);
        QCOMPARE(QByteArray(copy.what()), QByteArray("Something failed: 42"));
    }
    void badAllocMessage()
    {
        QCOMPARE(QByteArray(kiv::CBadAllocException().what()), QByteArray("Out of memory."));
    }
    void throwBadAlloc()
    {
        QVERIFY_THROWS_EXCEPTION(kiv::CBadAllocException, kiv::ThrowBadAllocException());
        bool thrown = false;
        try {
            kiv::ThrowBadAllocException();
        } catch (const kiv::CException& error) {
            thrown = true;
            QCOMPARE(QByteArray(error.what()), QByteArray("Out of memory."));
        }
        QVERIFY(thrown);
    }
    void throwOutOfRangeFormats()
    {
        QCOMPARE(messageOf([] { kiv::ThrowOutOfRangeException("plain text."); }),
            QByteArray("plain text."));
        QCOMPARE(messageOf([] {
            kiv::ThrowOutOfRangeException("index %d of %u in %s", -5, 3u, "TArray");
        }),
            QByteArray("index -5 of 3 in TArray"));
        QCOMPARE(
            messageOf([] { kiv::ThrowOutOfRangeException("%.2f%% %c %lld", 2.5, 'x', 1LL << 40); }),
            QByteArray("2.50% x 1099511627776"));
        QCOMPARE(messageOf([] { kiv::ThrowOutOfRangeException("%S", L"\u00e4"); }),
            QByteArray("\xc3\xa4"));
    }
    void throwOutOfRangeLongMessage()
    {
        const std::string name(2000, 'n');
        const QByteArray message
            = messageOf([&] { kiv::ThrowOutOfRangeException("<%s>", name.c_str()); });
        QCOMPARE(message.size(), 2002);
        QCOMPARE(message, "<" + QByteArray(2000, 'n') + ">");
    }
    void throwOutOfRangeIsACException()
    {
        bool thrown = false;
        try {
            kiv::ThrowOutOfRangeException("%d", 7);
        } catch (const kiv::CException& error) {
            thrown = true;
            QCOMPARE(QByteArray(error.what()), QByteArray("7"));
        }
        QVERIFY(thrown);
    }
};

QTEST_APPLESS_MAIN(tst_CException)
#include "tst_cexception.moc"
