#pragma once

#include <QTableView>

// The library table: rows are dragged to another place in the table, several at once; the
// type column is edited with a pop-up of the two type codes.
class TWHTMLTagLibraryTableView : public QTableView
{
    Q_OBJECT
public:
    explicit TWHTMLTagLibraryTableView(QWidget *parent = nullptr);
    void setModel(QAbstractItemModel *model) override;

protected:
    // The rows move where they are dropped; nothing is taken away when the drag ends, as a
    // move between two views would.
    void startDrag(Qt::DropActions supportedActions) override;
};
