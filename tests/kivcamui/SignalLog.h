// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QStringList>

#include <utility>

// Every signal that an object's own class declares, by name, in the order they come. With from,
// one of the object's base classes, those that class and the classes derived from it declare.
class SignalLog : public QObject {
    Q_OBJECT

public:
    explicit SignalLog(QObject* object, const QMetaObject* from = nullptr)
    {
        const QMetaObject* meta = object->metaObject();
        const QMetaMethod record = metaObject()->method(metaObject()->indexOfSlot("record()"));
        for (int i = (from ? from : meta)->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                connect(object, meta->method(i), this, record);
        }
    }

    // What came since the last take.
    QStringList take() { return std::exchange(m_names, {}); }

private slots:
    void record()
    {
        m_names << QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name());
    }

private:
    QStringList m_names;
};
