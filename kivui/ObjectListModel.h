// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivui/kivui_export.h>

#include <QAbstractListModel>
#include <QList>

// A list model of QObject pointers that a QML ListView uses as its model (each delegate reads
// its object as `model.item`) and that QML script reads by index with at(). An owning list
// deletes the items it removes with removeAll(), and those it still holds when it is
// destroyed; detachAll() only forgets them. An item deleted elsewhere leaves the list by itself.
class KIVUI_EXPORT ObjectListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int size READ size NOTIFY sizeChanged)

public:
    enum Role { ItemRole = Qt::UserRole + 1 };

    explicit ObjectListModel(bool owning, QObject* parent = nullptr);
    ~ObjectListModel() override;

    // Appends an item. The QML engine never takes ownership of it, whatever its parent.
    void push_back(QObject* item);
    // Appends items, in their order, as push_back would one by one, but announces them as one
    // block of rows and the size once: a view bound to the list reacts once, however many
    // there are. Null items are left out; nothing is announced when none is left.
    void append(const QList<QObject*>& items);
    // The item at index, or null outside [0, size()).
    Q_INVOKABLE QObject* at(int index) const;
    int size() const;
    void removeAll();
    void detachAll();

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = ItemRole) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void sizeChanged();

private:
    // Empties the list and gives back what it held; the items are watched no longer unless they
    // are about to be deleted (which ends the watch by itself, and sooner).
    QList<QObject*> takeAll(bool deleting);
    void itemDestroyed(QObject* item);

    QList<QObject*> m_items;
    bool m_owning;
};
