#pragma once

#include <QAbstractTableModel>

// The external browsers table of the preferences panel: one row per browser of the
// preferences, in menu order, with its icon and its name. Rows are dragged within the table
// as the list of their numbers; a drop is handed to the panel, which reorders the list.
class TWExBrowserTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // Column identifiers, in the table's order.
    static constexpr char appIconColumn[] = "appIcon";
    static constexpr char appNameColumn[] = "appName";
    // The drag type, whose data is the property list of the dragged row numbers.
    static constexpr char dragType[] = "TWExBrowsers";

    using QAbstractTableModel::QAbstractTableModel;

    // The table shows the list anew.
    void reloadData();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

Q_SIGNALS:
    void rowsDropped(const QList<int> &rows, int row);
};
