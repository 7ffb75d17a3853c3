// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GenICamFeatureModel.h"

#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/GuiRelay.h>

#include <QStringList>

#include <algorithm>
#include <utility>

namespace kiv::cam::ui {

namespace {

using Model = GenICamFeatureModel;

// The roles a feature's row answers by itself; the others are the panel's writes.
constexpr int featureRoles[]
    = {Qt::DisplayRole, Model::NameRole, Model::DisplayNameRole, Model::DescriptionRole,
        Model::TypeRole, Model::VisibilityRole, Model::WritableRole, Model::AccessReasonRole,
        Model::ValueRole, Model::MinimumRole, Model::MaximumRole, Model::IncrementRole,
        Model::UnitRole, Model::EntriesRole, Model::EntryNamesRole, Model::ReadErrorRole};

QStringList toQStringList(const TArray<CString>& texts)
{
    QStringList converted;
    converted.reserve(texts.count());
    for (const CString& text : texts)
        converted << toQString(text);
    return converted;
}

// A limit as the feature's type has it: qint64 for integers, double for floats.
QVariant limit(const SGenICamFeature& row, std::int64_t integer, double real)
{
    if (row.type == SGenICamFeature::INTEGER)
        return QVariant::fromValue(qint64(integer));
    if (row.type == SGenICamFeature::FLOAT)
        return real;
    return {};
}

QVariant featureData(const SGenICamFeature& row, int role)
{
    switch (role) {
    case Qt::DisplayRole:
    case Model::DisplayNameRole:
        return toQString(row.displayName);
    case Model::NameRole:
        return toQString(row.name);
    case Model::DescriptionRole:
        return toQString(row.description);
    case Model::TypeRole:
        return int(row.type);
    case Model::VisibilityRole:
        return int(row.visibility);
    case Model::WritableRole:
        return row.isWritable();
    case Model::AccessReasonRole:
        return toQString(row.accessReason);
    case Model::ValueRole:
        return toQString(row.value);
    case Model::MinimumRole:
        return limit(row, row.intMin, row.floatMin);
    case Model::MaximumRole:
        return limit(row, row.intMax, row.floatMax);
    case Model::IncrementRole:
        return limit(row, row.intInc, row.floatInc);
    case Model::UnitRole:
        return toQString(row.unit);
    case Model::EntriesRole:
        return toQStringList(row.entries);
    case Model::EntryNamesRole:
        return toQStringList(row.entryDisplayNames);
    case Model::ReadErrorRole:
        return toQString(row.error);
    }
    return {};
}

QList<int> changedRoles(const SGenICamFeature& before, const SGenICamFeature& after)
{
    QList<int> roles;
    for (const int role : featureRoles) {
        if (featureData(before, role) != featureData(after, role))
            roles << role;
    }
    return roles;
}

bool contains(const CString& text, const QString& part)
{
    return toQString(text).contains(part, Qt::CaseInsensitive);
}

} // namespace

GenICamFeatureModel::GenICamFeatureModel(IGenICamController* controller, QObject* parent)
    : QAbstractItemModel(parent), m_controller(controller), m_relay(GuiRelay::Make(this))
{
    // Subscribed first, so that no change after the read goes unheard.
    m_controller->subscribe(this);
    readTree();
}

GenICamFeatureModel::~GenICamFeatureModel()
{
    // Then no listener call runs, and no answer of a write still under way reaches this object.
    m_controller->unsubscribe(this);
    m_relay->Detach();
}

void GenICamFeatureModel::setVisibility(int visibility)
{
    visibility = std::clamp(visibility, int(SGenICamFeature::BEGINNER), int(SGenICamFeature::GURU));
    if (visibility == m_visibility)
        return;
    relayOut([&] { m_visibility = visibility; });
    emit visibilityChanged();
}

void GenICamFeatureModel::setFilterText(const QString& text)
{
    if (text == m_filterText)
        return;
    relayOut([&] { m_filterText = text; });
    emit filterTextChanged();
}

void GenICamFeatureModel::setValue(const QModelIndex& index, const QString& value)
{
    request(index, [&](const CString& name, IGenICamController::Done done) {
        m_controller->setFeature(name, toCString(value), std::move(done));
    });
}

void GenICamFeatureModel::execute(const QModelIndex& index)
{
    request(index, [&](const CString& name, IGenICamController::Done done) {
        m_controller->execute(name, std::move(done));
    });
}

QModelIndex GenICamFeatureModel::index(int row, int column, const QModelIndex& parent) const
{
    const std::vector<int>* siblings = childrenOf(parent);
    if (!siblings || column != 0 || row < 0 || row >= int(siblings->size()))
        return {};
    return createIndex(row, column, quintptr((*siblings)[row]));
}

QModelIndex GenICamFeatureModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    return indexOfRow(parentOf(int(child.internalId())));
}

int GenICamFeatureModel::rowCount(const QModelIndex& parent) const
{
    const std::vector<int>* children = childrenOf(parent);
    return children ? int(children->size()) : 0;
}

int GenICamFeatureModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant GenICamFeatureModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.model() != this)
        return {};
    const int row = int(index.internalId());
    switch (role) {
    case ErrorRole:
        return m_states[row].error;
    case BusyRole:
        return m_states[row].pending > 0;
    }
    return featureData(m_rows[row], role);
}

QHash<int, QByteArray> GenICamFeatureModel::roleNames() const
{
    return {{Qt::DisplayRole, "display"}, {NameRole, "name"}, {DisplayNameRole, "displayName"},
        {DescriptionRole, "description"}, {TypeRole, "type"}, {VisibilityRole, "visibility"},
        {WritableRole, "writable"}, {AccessReasonRole, "accessReason"}, {ValueRole, "value"},
        {MinimumRole, "minimum"}, {MaximumRole, "maximum"}, {IncrementRole, "increment"},
        {UnitRole, "unit"}, {EntriesRole, "entries"}, {EntryNamesRole, "entryNames"},
        {ErrorRole, "error"}, {BusyRole, "busy"}, {ReadErrorRole, "readError"}};
}

void GenICamFeatureModel::treeChanged()
{
    m_relay->Post([this] { readTree(); });
}

void GenICamFeatureModel::featuresChanged(const TArray<SGenICamFeature>& rows)
{
    m_relay->Post([this, rows] { updateRows(rows); });
}

void GenICamFeatureModel::connectionLost(const CString&)
{
    // The panel's model says so; the rows stay as last read until the tree is replaced.
}

GenICamFeatureModel::SLayout GenICamFeatureModel::layOut() const
{
    const int count = m_rows.count();
    SLayout layout;
    std::vector<bool> shown(count, false);
    layout.position.assign(count, -1);
    layout.children.resize(count + 1);
    // Whether the filter text lets a row through: its own name, or a category's above it.
    std::vector<bool> passes(count, false);
    for (int row = 0; row < count; ++row) {
        const SGenICamFeature& feature = m_rows[row];
        const int parent = parentOf(row);
        passes[row] = m_filterText.isEmpty() || (parent >= 0 && passes[parent])
            || contains(feature.name, m_filterText) || contains(feature.displayName, m_filterText);
        if (feature.type == SGenICamFeature::CATEGORY || !passes[row]
            || feature.visibility == SGenICamFeature::INVISIBLE)
            continue;
        if (feature.visibility > m_visibility) {
            ++layout.hiddenCount;
            continue;
        }
        ++layout.featureCount;
        // Shown, and with it the categories above it; those above a shown one are already.
        for (int up = row; up >= 0 && !shown[up]; up = parentOf(up))
            shown[up] = true;
    }
    // Depth first, so each category's rows come in their order.
    for (int row = 0; row < count; ++row) {
        if (!shown[row])
            continue;
        const int parent = parentOf(row);
        std::vector<int>& siblings = layout.children[parent >= 0 ? parent : count];
        layout.position[row] = int(siblings.size());
        siblings.push_back(row);
    }
    return layout;
}

void GenICamFeatureModel::relayOut(const std::function<void()>& change)
{
    const int features = featureCount();
    const int hidden = hiddenCount();
    beginResetModel();
    change();
    m_layout = layOut();
    endResetModel();
    if (features != featureCount() || hidden != hiddenCount())
        emit countsChanged();
}

void GenICamFeatureModel::readTree()
{
    TArray<SGenICamFeature> rows = m_controller->features();
    relayOut([&] {
        m_states.assign(rows.count(), {});
        m_rows = std::move(rows);
        ++m_tree;
    });
}

void GenICamFeatureModel::updateRows(const TArray<SGenICamFeature>& rows)
{
    // Rows of a tree other than the one read (announced before it was replaced) are left out.
    const auto ours = [this](const SGenICamFeature& row) {
        return row.row >= 0 && row.row < m_rows.count() && m_rows[row.row].name == row.name
            && m_rows[row.row].parent == row.parent && m_rows[row.row].type == row.type;
    };
    // The filters look at the visibility and the names only.
    const bool reshaped = std::any_of(rows.begin(), rows.end(), [&](const SGenICamFeature& row) {
        return ours(row)
            && (m_rows[row.row].visibility != row.visibility
                || m_rows[row.row].displayName != row.displayName);
    });
    if (reshaped) {
        relayOut([&] {
            for (const SGenICamFeature& row : rows) {
                if (ours(row))
                    m_rows[row.row] = row;
            }
        });
        return;
    }
    for (const SGenICamFeature& row : rows) {
        if (!ours(row))
            continue;
        const QList<int> roles = changedRoles(m_rows[row.row], row);
        m_rows[row.row] = row;
        const QModelIndex index = indexOfRow(row.row);
        if (!roles.isEmpty() && index.isValid())
            emit dataChanged(index, index, roles);
    }
}

void GenICamFeatureModel::request(const QModelIndex& index,
    const std::function<void(const CString& name, IGenICamController::Done done)>& call)
{
    if (!index.isValid() || index.model() != this)
        return;
    const int row = int(index.internalId());
    if (++m_states[row].pending == 1)
        emit dataChanged(index, index, {BusyRole});
    call(m_rows[row].name,
        [relay = m_relay, this, tree = m_tree, row, name = m_rows[row].name](
            const SGenICamResult& result) {
            relay->Post([this, tree, row, name, result] { answered(tree, row, name, result); });
        });
}

void GenICamFeatureModel::answered(
    int tree, int row, const CString& name, const SGenICamResult& result)
{
    if (tree != m_tree)
        return; // the row is gone with its tree
    SRowState& state = m_states[row];
    QList<int> roles;
    if (--state.pending == 0)
        roles << BusyRole;
    QString error;
    if (!result.ok) {
        error = result.message.empty()
            ? tr("The camera refused the request to %1.").arg(toQString(name))
            : toQString(result.message);
    }
    if (error != state.error) {
        state.error = error;
        roles << ErrorRole;
    }
    const QModelIndex index = indexOfRow(row);
    if (!roles.isEmpty() && index.isValid())
        emit dataChanged(index, index, roles);
}

int GenICamFeatureModel::parentOf(int row) const
{
    // Depth first, a category comes before its rows: anything else is taken as the root.
    const int parent = m_rows[row].parent;
    return parent >= 0 && parent < row ? parent : -1;
}

QModelIndex GenICamFeatureModel::indexOfRow(int row) const
{
    if (row < 0 || row >= int(m_layout.position.size()) || m_layout.position[row] < 0)
        return {};
    return createIndex(m_layout.position[row], 0, quintptr(row));
}

const std::vector<int>* GenICamFeatureModel::childrenOf(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return m_layout.children.empty() ? nullptr : &m_layout.children.back();
    if (parent.model() != this || parent.column() != 0)
        return nullptr;
    return &m_layout.children[parent.internalId()];
}

} // namespace kiv::cam::ui
