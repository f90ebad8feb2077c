#include "taglib/TWHTMLTagLibraryTableView.h"

#include "taglib/TWHTMLTagLibraryTableModel.h"

#include <QComboBox>
#include <QDrag>
#include <QHeaderView>
#include <QStyledItemDelegate>

namespace {

constexpr char typeColumn[] = "tagNum";
constexpr int typeFontPoints = 11;

// The type cell's pop-up: the items "1" and "2", whose index is the cell's value.
class TypeDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *popUp = new QComboBox(parent);
        popUp->addItems({QStringLiteral("1"), QStringLiteral("2")});
        QFont font = popUp->font();
        font.setPointSize(typeFontPoints);
        popUp->setFont(font);
        // A choice is stored at once, as a click on a pop-up cell would.
        connect(popUp, &QComboBox::activated, popUp, [this, popUp] {
            Q_EMIT const_cast<TypeDelegate *>(this)->commitData(popUp);
            Q_EMIT const_cast<TypeDelegate *>(this)->closeEditor(popUp);
        });
        return popUp;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        static_cast<QComboBox *>(editor)->setCurrentIndex(index.data(Qt::EditRole).toInt());
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        model->setData(index, static_cast<QComboBox *>(editor)->currentIndex(), Qt::EditRole);
    }
};

} // namespace

TWHTMLTagLibraryTableView::TWHTMLTagLibraryTableView(QWidget *parent)
    : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setDragDropOverwriteMode(false);
    // A double click opens the record in the edit sheet; cells are edited in place by typing,
    // F2 or a click on a selected cell.
    setEditTriggers(QAbstractItemView::SelectedClicked | QAbstractItemView::EditKeyPressed
                    | QAbstractItemView::AnyKeyPressed);
    horizontalHeader()->setSectionsMovable(true);
    verticalHeader()->hide();
    // Rows as tall as a line of text, so that many records show at once.
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
}

void TWHTMLTagLibraryTableView::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    const int column = int(TWHTMLTagLibraryTableModel::columnIdentifiers().indexOf(QLatin1String(typeColumn)));
    setItemDelegateForColumn(column, new TypeDelegate(this));
}

void TWHTMLTagLibraryTableView::startDrag(Qt::DropActions supportedActions)
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    auto *drag = new QDrag(this);
    drag->setMimeData(model()->mimeData(rows));
    drag->exec(supportedActions, Qt::MoveAction);
}
