#pragma once

#include <QAbstractTableModel>

class TWHTMLTag;

// The library table's rows: one per record of the shared tag library, in library order, with
// the columns the library window shows. Which cells are enabled and editable follows the kind
// of record; every value stored back ends with the library telling the menus, the palette and
// the colours that it changed. Rows are dragged as the list of their numbers.
class TWHTMLTagLibraryTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // Column identifiers, in the table's first order.
    static const QStringList &columnIdentifiers();
    // The drag type, whose data is the property list of the dragged row numbers.
    static constexpr char dragType[] = "TWHTMLTag";

    explicit TWHTMLTagLibraryTableModel(QObject *parent = nullptr);

    // The table shows the library anew (after a change made elsewhere).
    void reloadData();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

private:
    TWHTMLTag *record(const QModelIndex &index) const;
    QString identifier(const QModelIndex &index) const;
};
