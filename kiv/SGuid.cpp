// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "SGuid.h"

#include <QUuid>

namespace kiv {

CString SGuid::ToString() const
{
    const QUuid uuid(data1, data2, data3, data4[0], data4[1], data4[2], data4[3], data4[4],
        data4[5], data4[6], data4[7]);
    return CString(uuid.toByteArray(QUuid::WithBraces).toStdString());
}

SGuid SGuid::Parse(const CString& text, bool* ok)
{
    QByteArray normalized = QByteArray(text.view().data(), text.length()).toLower();
    if (!normalized.startsWith('{'))
        normalized = '{' + normalized + '}';
    const QUuid uuid = QUuid::fromString(QLatin1StringView(normalized));
    // QUuid reads a malformed text as the null identifier, so compare the round trip.
    const bool valid = uuid.toByteArray(QUuid::WithBraces) == normalized;
    if (ok)
        *ok = valid;
    SGuid guid;
    if (valid) {
        guid.data1 = uuid.data1;
        guid.data2 = uuid.data2;
        guid.data3 = uuid.data3;
        for (int i = 0; i < 8; ++i)
            guid.data4[i] = uuid.data4[i];
    }
    return guid;
}

} // namespace kiv
