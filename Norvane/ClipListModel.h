#pragma once

#include "Norvane/store/Clip.h"

#include <QAbstractListModel>

// The clips now listed, as a model: nothing is made per row before the row is asked for. Main thread.
class ClipListModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setResults(ClipList clips);
    [[nodiscard]] const ClipList &results() const { return results_; }

    // Null when there is no such row.
    [[nodiscard]] ClipPointer clipAt(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

private:
    ClipList results_;
};
