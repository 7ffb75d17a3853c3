// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TArray.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/IGenICamListener.h>
#include <kivcam/SGenICamFeature.h>

#include <QAbstractItemModel>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <vector>

namespace kiv::cam::ui {

class GuiRelay;

// The categories and features of a GenICam camera as a tree, for a QML TreeView: the rows of the
// controller's feature tree (IGenICamController::features) that the visibility level and the
// filter text let through, with their values and limits, and the state of the writes the panel
// made. Categories without a feature shown are left out.
//
// The model hears the controller on its worker and takes what it hears over on the GUI thread; a
// write goes to the worker and its answer comes back the same way. Nothing here waits for the
// camera. The controller outlives the model.
class GenICamFeatureModel : public QAbstractItemModel, private IGenICamListener {
    Q_OBJECT
    // 0 Beginner, 1 Expert, 2 Guru: the features of that level and below are shown.
    Q_PROPERTY(int visibility READ visibility WRITE setVisibility NOTIFY visibilityChanged)
    // Shows the features whose name or display name contains it, letter case ignored, and all
    // features of the categories whose name or display name does.
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    // The features shown, and those the filter text lets through but the visibility level hides.
    Q_PROPERTY(int featureCount READ featureCount NOTIFY countsChanged)
    Q_PROPERTY(int hiddenCount READ hiddenCount NOTIFY countsChanged)

public:
    // SGenICamFeature::EType, for QML.
    enum Type {
        CATEGORY = SGenICamFeature::CATEGORY,
        INTEGER = SGenICamFeature::INTEGER,
        FLOAT = SGenICamFeature::FLOAT,
        ENUMERATION = SGenICamFeature::ENUMERATION,
        BOOLEAN = SGenICamFeature::BOOLEAN,
        COMMAND = SGenICamFeature::COMMAND,
        STRING = SGenICamFeature::STRING,
        OTHER = SGenICamFeature::OTHER,
    };
    Q_ENUM(Type)

    enum Role {
        NameRole = Qt::UserRole + 1,
        DisplayNameRole,
        DescriptionRole,
        TypeRole, // int, a Type
        VisibilityRole, // int, SGenICamFeature::EVisibility
        WritableRole, // bool, as it is now
        AccessReasonRole,
        ValueRole, // QString, as the camera holds it
        MinimumRole, // qint64 for integers, double for floats, else invalid
        MaximumRole,
        IncrementRole,
        UnitRole,
        EntriesRole, // QStringList, the entries available now
        EntryNamesRole, // their display names
        ErrorRole, // the answer to the last refused write of the row
        BusyRole, // a write or command of the row is under way
        ReadErrorRole, // why the value could not be read
    };

    GenICamFeatureModel(IGenICamController* controller, QObject* parent);
    ~GenICamFeatureModel() override;

    int visibility() const { return m_visibility; }
    void setVisibility(int visibility);
    QString filterText() const { return m_filterText; }
    void setFilterText(const QString& text);
    int featureCount() const { return m_layout.featureCount; }
    int hiddenCount() const { return m_layout.hiddenCount; }

    // Writes a feature from its text form. The row is busy until the camera answered; a refusal
    // goes into its error, and the value shown stays the one the camera holds.
    Q_INVOKABLE void setValue(const QModelIndex& index, const QString& value);
    // Executes a command feature, likewise.
    Q_INVOKABLE void execute(const QModelIndex& index);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void visibilityChanged();
    void filterTextChanged();
    void countsChanged();

private:
    // IGenICamListener, on the controller's worker.
    void treeChanged() override;
    void featuresChanged(const TArray<SGenICamFeature>& rows) override;
    void connectionLost(const CString& message) override;

    // What the filters let through: per row of the tree, its place among its category's shown
    // rows (-1: hidden), and for categories those rows; the root's are last.
    struct SLayout {
        std::vector<int> position;
        std::vector<std::vector<int>> children;
        int featureCount = 0;
        int hiddenCount = 0;
    };
    // What the panel's writes left on a row.
    struct SRowState {
        int pending = 0; // writes under way
        QString error;
    };

    SLayout layOut() const;
    // Resets the model around change, then lays it out again.
    void relayOut(const std::function<void()>& change);
    // The GUI thread's side.
    void readTree();
    void updateRows(const TArray<SGenICamFeature>& rows);
    void request(const QModelIndex& index,
        const std::function<void(const CString& name, IGenICamController::Done done)>& call);
    void answered(int tree, int row, const CString& name, const SGenICamResult& result);
    int parentOf(int row) const;
    QModelIndex indexOfRow(int row) const;
    const std::vector<int>* childrenOf(const QModelIndex& parent) const;

    IGenICamController* const m_controller;
    const std::shared_ptr<GuiRelay> m_relay;

    TArray<SGenICamFeature> m_rows;
    std::vector<SRowState> m_states;
    int m_tree = 0; // counts the trees read, so that answers about an older one are dropped
    SLayout m_layout;
    int m_visibility = SGenICamFeature::BEGINNER;
    QString m_filterText;
};

} // namespace kiv::cam::ui
