#include "platform/TWRowDrag.h"

#include "platform/TWXMLPropertyList.h"

#include <QMimeData>

QMimeData *TWRowDrag::mimeData(const char *type, const QModelIndexList &indexes)
{
    QList<int> rows;
    for (const QModelIndex &index : indexes)
        if (!rows.contains(index.row()))
            rows << index.row();
    std::sort(rows.begin(), rows.end());
    QVariantList list;
    for (const int row : rows)
        list << row;
    auto *data = new QMimeData;
    data->setData(QLatin1String(type), TWXMLPropertyList::write(list).value_or(QByteArray()));
    return data;
}

std::optional<QList<int>> TWRowDrag::rows(const QMimeData *data, const char *type, int rowCount)
{
    if (!data || !data->hasFormat(QLatin1String(type)))
        return std::nullopt;
    const QVariantList list = TWXMLPropertyList::read(data->data(QLatin1String(type))).value_or(QVariant()).toList();
    QList<int> rows;
    for (const QVariant &number : list) {
        bool ok = false;
        const int dragged = number.toInt(&ok);
        if (!ok || dragged < 0 || dragged >= rowCount)
            return std::nullopt;
        rows << dragged;
    }
    return rows;
}

int TWRowDrag::dropRow(int row, const QModelIndex &parent, int rowCount)
{
    return row >= 0 ? row : parent.isValid() ? parent.row() : rowCount;
}
