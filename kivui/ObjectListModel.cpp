// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "ObjectListModel.h"

#include <QJSEngine>

ObjectListModel::ObjectListModel(bool owning, QObject* parent)
    : QAbstractListModel(parent), m_owning(owning)
{
}

ObjectListModel::~ObjectListModel()
{
    const QList<QObject*> items = takeAll(m_owning);
    if (m_owning)
        qDeleteAll(items);
}

void ObjectListModel::push_back(QObject* item)
{
    append({item});
}

void ObjectListModel::append(const QList<QObject*>& items)
{
    const qsizetype added = items.size() - items.count(nullptr);
    if (added == 0)
        return;
    beginInsertRows(QModelIndex(), m_items.size(), m_items.size() + added - 1);
    m_items.reserve(m_items.size() + added);
    for (QObject* item : items) {
        if (!item)
            continue;
        QJSEngine::setObjectOwnership(item, QJSEngine::CppOwnership);
        connect(item, &QObject::destroyed, this, &ObjectListModel::itemDestroyed);
        m_items.append(item);
    }
    endInsertRows();
    emit sizeChanged();
}

QObject* ObjectListModel::at(int index) const
{
    return index >= 0 && index < m_items.size() ? m_items.at(index) : nullptr;
}

int ObjectListModel::size() const
{
    return static_cast<int>(m_items.size());
}

void ObjectListModel::removeAll()
{
    const QList<QObject*> items = takeAll(m_owning);
    if (m_owning)
        qDeleteAll(items);
}

void ObjectListModel::detachAll()
{
    takeAll(false);
}

QList<QObject*> ObjectListModel::takeAll(bool deleting)
{
    if (m_items.isEmpty())
        return {};
    beginResetModel();
    const QList<QObject*> items = std::exchange(m_items, {});
    // An item deleted while still watched finds itself no longer listed.
    if (!deleting) {
        for (QObject* item : items)
            disconnect(item, &QObject::destroyed, this, &ObjectListModel::itemDestroyed);
    }
    endResetModel();
    emit sizeChanged();
    return items;
}

void ObjectListModel::itemDestroyed(QObject* item)
{
    const qsizetype row = m_items.indexOf(item);
    if (row < 0)
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_items.removeAt(row);
    endRemoveRows();
    emit sizeChanged();
}

int ObjectListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : size();
}

QVariant ObjectListModel::data(const QModelIndex& index, int role) const
{
    if (role != ItemRole
        || !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return QVariant::fromValue(m_items.at(index.row()));
}

QHash<int, QByteArray> ObjectListModel::roleNames() const
{
    return {{ItemRole, "item"}};
}
