#include "Norvane/ClipListModel.h"

#include "Norvane/ClipTitles.h"

void ClipListModel::setResults(ClipList clips)
{
    beginResetModel();
    results_ = std::move(clips);
    endResetModel();
}

ClipPointer ClipListModel::clipAt(int row) const
{
    return row >= 0 && row < rowCount() ? results_[static_cast<size_t>(row)] : nullptr;
}

int ClipListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(results_.size());
}

QVariant ClipListModel::data(const QModelIndex &index, int role) const
{
    const ClipPointer clip = clipAt(index.row());
    if (!clip)
        return {};
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole)
        return titleText(*clip, listTitleLength);
    if (role == Qt::AccessibleDescriptionRole)
        return detailText(*clip);
    return {};
}
