#include "preferences/TWExBrowserTableModel.h"

#include "platform/TWDesktopEntry.h"
#include "platform/TWRowDrag.h"
#include "preferences/TWPreferences.h"
#include "preview/TWExternalBrowser.h"

#include <QMimeData>

namespace {

enum Column { iconColumn, nameColumn, columns };

const QStringList &browsers()
{
    return TWPreferences::sharedPref()->exBrowsers();
}

} // namespace

void TWExBrowserTableModel::reloadData()
{
    beginResetModel();
    endResetModel();
}

int TWExBrowserTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(browsers().size());
}

int TWExBrowserTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant TWExBrowserTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= browsers().size())
        return {};
    const QString &path = browsers().at(index.row());
    if (index.column() == iconColumn && role == Qt::DecorationRole)
        return TWDesktopEntry::icon(path);
    if (index.column() == nameColumn && role == Qt::DisplayRole)
        return TWExternalBrowser::displayName(path);
    if (role == Qt::ToolTipRole)
        return path;
    return {};
}

QVariant TWExBrowserTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return section == nameColumn ? tr("Browser") : QString();
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags TWExBrowserTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
}

Qt::DropActions TWExBrowserTableModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

QStringList TWExBrowserTableModel::mimeTypes() const
{
    return {QLatin1String(dragType)};
}

QMimeData *TWExBrowserTableModel::mimeData(const QModelIndexList &indexes) const
{
    return TWRowDrag::mimeData(dragType, indexes);
}

bool TWExBrowserTableModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int, const QModelIndex &) const
{
    return data && data->hasFormat(QLatin1String(dragType));
}

bool TWExBrowserTableModel::dropMimeData(const QMimeData *data, Qt::DropAction, int row, int, const QModelIndex &parent)
{
    const int count = rowCount();
    const std::optional<QList<int>> rows = TWRowDrag::rows(data, dragType, count);
    if (!rows)
        return false;
    Q_EMIT rowsDropped(*rows, TWRowDrag::dropRow(row, parent, count));
    return true;
}
