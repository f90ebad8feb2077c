#pragma once

#include <QList>
#include <QModelIndexList>

#include <algorithm>
#include <optional>

class QMimeData;

// Rows of a list reordered by dragging them within their table: the drag carries the property
// list of the dragged row numbers under the table's own type.
namespace TWRowDrag {

// The drag data for the rows of the indexes, in ascending order.
QMimeData *mimeData(const char *type, const QModelIndexList &indexes);
// The dragged row numbers; nothing when the data is not of the type or names a row the list
// of rowCount entries does not have.
std::optional<QList<int>> rows(const QMimeData *data, const char *type, int rowCount);
// Where a drop goes: above the row it was dropped onto, and below the last row to the end.
int dropRow(int row, const QModelIndex &parent, int rowCount);

// Takes the entries at the rows out of the list and puts them back as one block, in the order
// they had, where the drop row was: rows dragged together land together.
template <class T>
void moveRows(QList<T> &list, QList<int> rows, int target)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QList<T> block;
    for (auto row = rows.crbegin(); row != rows.crend(); ++row) {
        if (*row < 0 || *row >= list.size())
            continue;
        block.prepend(list.takeAt(*row));
        if (target > *row)
            --target;
    }
    target = std::clamp(target, 0, int(list.size()));
    for (qsizetype i = 0; i < block.size(); ++i)
        list.insert(target + i, block.at(i));
}

} // namespace TWRowDrag
