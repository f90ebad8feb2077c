#include "taglib/TWHTMLTagLibraryTableModel.h"

#include "platform/TWBeep.h"
#include "platform/TWRowDrag.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"

#include <QMimeData>

namespace {

constexpr char tagNumColumn[] = "tagNum";
constexpr char menuColumn[] = "menu";
constexpr char useColorColumn[] = "useColor";
constexpr char tagColumn[] = "tag";
constexpr char nameColumn[] = "name";
constexpr char firstTagColumn[] = "firstTag";
constexpr char secondTagColumn[] = "secondTag";
constexpr char colorColumn[] = "color";
constexpr char sKeyColumn[] = "sKey";
constexpr char menuTitleColumn[] = "menuTitle";

TWHTMLTagLibrary *library()
{
    return TWHTMLTagLibrary::sharedTagLibrary();
}

} // namespace

const QStringList &TWHTMLTagLibraryTableModel::columnIdentifiers()
{
    static const QStringList identifiers = {
        QLatin1String(tagNumColumn),    QLatin1String(menuColumn),      QLatin1String(useColorColumn),
        QLatin1String(tagColumn),       QLatin1String(nameColumn),      QLatin1String(firstTagColumn),
        QLatin1String(secondTagColumn), QLatin1String(colorColumn),     QLatin1String(sKeyColumn),
        QLatin1String(menuTitleColumn),
    };
    return identifiers;
}

TWHTMLTagLibraryTableModel::TWHTMLTagLibraryTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void TWHTMLTagLibraryTableModel::reloadData()
{
    beginResetModel();
    endResetModel();
}

int TWHTMLTagLibraryTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : library()->numberOfTags();
}

int TWHTMLTagLibraryTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(columnIdentifiers().size());
}

TWHTMLTag *TWHTMLTagLibraryTableModel::record(const QModelIndex &index) const
{
    return index.isValid() ? library()->tagAtIndex(index.row()) : nullptr;
}

QString TWHTMLTagLibraryTableModel::identifier(const QModelIndex &index) const
{
    return columnIdentifiers().value(index.column());
}

QVariant TWHTMLTagLibraryTableModel::data(const QModelIndex &index, int role) const
{
    const TWHTMLTag *tag = record(index);
    if (!tag)
        return {};
    const QString column = identifier(index);
    if (column == QLatin1String(menuColumn) || column == QLatin1String(useColorColumn)) {
        if (role != Qt::CheckStateRole)
            return {};
        const bool on = column == QLatin1String(menuColumn) ? tag->includeInMenu() : tag->useSpecificColor();
        return on ? Qt::Checked : Qt::Unchecked;
    }
    if (column == QLatin1String(colorColumn) && role == Qt::ForegroundRole)
        return tag->tagColor();
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    if (column == QLatin1String(tagNumColumn))
        // The pop-up's index; shown as the type code.
        return role == Qt::EditRole ? QVariant(tag->type() - 1) : QVariant(QString::number(tag->type()));
    if (column == QLatin1String(tagColumn))
        return tag->tag();
    if (column == QLatin1String(nameColumn))
        return tag->name();
    if (column == QLatin1String(firstTagColumn))
        return tag->firstTag();
    if (column == QLatin1String(secondTagColumn))
        return tag->secondTag();
    if (column == QLatin1String(colorColumn))
        return tag->colorSampleTag();
    if (column == QLatin1String(sKeyColumn))
        return tag->shortcutKey();
    if (column == QLatin1String(menuTitleColumn))
        return tag->title();
    return {};
}

QVariant TWHTMLTagLibraryTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const QStringList titles = {tr("Type"),       tr("Menu"),        tr("Colour"), tr("Tag"),
                                       tr("Name"),       tr("First Tag"),   tr("Second Tag"),
                                       tr("Sample"),     tr("Key"),         tr("Menu Title")};
    return titles.value(section);
}

Qt::ItemFlags TWHTMLTagLibraryTableModel::flags(const QModelIndex &index) const
{
    const TWHTMLTag *tag = record(index);
    if (!tag)
        return Qt::ItemIsDropEnabled;
    const QString column = identifier(index);
    const bool special = tag->isSpecialTag();
    Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    const auto editable = [base](bool on) { return on ? base | Qt::ItemIsEnabled | Qt::ItemIsEditable : base; };
    if (column == QLatin1String(tagNumColumn) || column == QLatin1String(tagColumn))
        return editable(!special);
    if (column == QLatin1String(menuColumn))
        return base | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable;
    if (column == QLatin1String(useColorColumn))
        return tag->isGenericTag() || tag->isQuotation() ? base : base | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable;
    if (column == QLatin1String(nameColumn) || column == QLatin1String(sKeyColumn))
        return editable(true);
    if (column == QLatin1String(firstTagColumn))
        return special ? base | Qt::ItemIsEnabled : editable(true);
    if (column == QLatin1String(secondTagColumn))
        return editable(!special && tag->type() != TWHTMLTag::singleType);
    if (column == QLatin1String(colorColumn))
        return base | Qt::ItemIsEnabled;
    if (column == QLatin1String(menuTitleColumn))
        return editable(tag->includeInMenu());
    return base;
}

bool TWHTMLTagLibraryTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    TWHTMLTag *tag = record(index);
    if (!tag || !(flags(index) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable)))
        return false;
    const QString column = identifier(index);
    const QString text = value.toString();
    bool stored = true;
    if (column == QLatin1String(menuColumn) && role == Qt::CheckStateRole)
        tag->setIncludeInMenu(value.toInt() == Qt::Checked);
    else if (column == QLatin1String(useColorColumn) && role == Qt::CheckStateRole)
        tag->setUseSpecificColor(value.toInt() == Qt::Checked);
    else if (role != Qt::EditRole)
        return false;
    else if (column == QLatin1String(tagNumColumn))
        tag->setType(value.toInt() + 1);
    else if (column == QLatin1String(tagColumn))
        tag->setTag(text);
    else if (column == QLatin1String(nameColumn))
        tag->setName(text);
    else if (column == QLatin1String(firstTagColumn))
        tag->setFirstTag(text);
    else if (column == QLatin1String(secondTagColumn))
        tag->setSecondTag(text);
    else if (column == QLatin1String(sKeyColumn) && library()->isShortcutKey(text, tag))
        tag->setShortcutKey(text);
    else if (column == QLatin1String(menuTitleColumn))
        tag->setTitle(text);
    else
        stored = false;
    if (!stored)
        TWBeep();
    // Accepted or not, the menus, the palette and the colours are brought up to date.
    library()->validateTagListChange();
    // A change can enable or disable other cells of the row (the type, the menu check box).
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    return stored;
}

Qt::DropActions TWHTMLTagLibraryTableModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

QStringList TWHTMLTagLibraryTableModel::mimeTypes() const
{
    return {QLatin1String(dragType)};
}

QMimeData *TWHTMLTagLibraryTableModel::mimeData(const QModelIndexList &indexes) const
{
    return TWRowDrag::mimeData(dragType, indexes);
}

bool TWHTMLTagLibraryTableModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int,
                                                 const QModelIndex &) const
{
    return data && data->hasFormat(QLatin1String(dragType));
}

bool TWHTMLTagLibraryTableModel::dropMimeData(const QMimeData *data, Qt::DropAction, int row, int,
                                              const QModelIndex &parent)
{
    const std::optional<QList<int>> rows = TWRowDrag::rows(data, dragType, library()->numberOfTags());
    if (!rows)
        return false;
    library()->moveRowsOfArray(*rows, TWRowDrag::dropRow(row, parent, library()->numberOfTags()));
    reloadData();
    return true;
}
