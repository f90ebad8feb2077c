#include "taglib/TWTagLibraryWindowController.h"

#include "app/TWFileExtensions.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWTextFile.h"
#include "platform/TWAtomicFile.h"
#include "platform/TWBeep.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagEditPanelController.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWHTMLTagLibraryTableModel.h"
#include "taglib/TWHTMLTagLibraryTableView.h"
#include "ui_TWTagLibraryWindow.h"

#include <QCloseEvent>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>

namespace {

TWTagLibraryWindowController *sharedInstance = nullptr;

// Where the user's order and widths of the columns are kept.
constexpr char tableViewLayoutKey[] = "Tagwright Tag Library Table View";

// Where the window opens the first time: beside the HTML window.
constexpr QPoint defaultPosition(60, 80);

TWHTMLTagLibrary *library()
{
    return TWHTMLTagLibrary::sharedTagLibrary();
}

} // namespace

TWTagLibraryWindowController *TWTagLibraryWindowController::sharedTagLibraryController()
{
    if (!sharedInstance)
        sharedInstance = new TWTagLibraryWindowController();
    return sharedInstance;
}

TWTagLibraryWindowController::TWTagLibraryWindowController()
    : QWidget(nullptr, Qt::Window)
    , ui(new Ui::TWTagLibraryWindow)
{
    ui->setupUi(this);
    tagTableView = ui->tagTableView;
    model = new TWHTMLTagLibraryTableModel(this);
    tagTableView->setModel(model);
    connect(ui->newButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::newButtonPressed);
    connect(ui->duplicateButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::duplicateButtonPressed);
    connect(ui->editButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::editButtonPressed);
    connect(ui->deleteButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::deleteButtonPressed);
    connect(ui->closeButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::closeButtonPressed);
    connect(ui->importButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::importTagLibrary);
    connect(ui->exportButton, &QPushButton::clicked, this, &TWTagLibraryWindowController::exportTagLibrary);
    connect(tagTableView, &QAbstractItemView::doubleClicked, this, &TWTagLibraryWindowController::editButtonPressed);
    awakeFromNib();
}

TWTagLibraryWindowController::~TWTagLibraryWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWTagLibraryWindowController::awakeFromNib()
{
    tagTableView->resizeColumnsToContents();
    QHeaderView *header = tagTableView->horizontalHeader();
    if (const std::optional<QByteArray> layout
        = TWUserDefaults::standardUserDefaults()->dataForKey(QLatin1String(tableViewLayoutKey)))
        header->restoreState(*layout);
    // The columns' layout is kept as soon as the user changes it, so a quit with the window open
    // keeps it too.
    const auto keepLayout = [header] {
        TWUserDefaults::standardUserDefaults()->setObject(header->saveState(), QLatin1String(tableViewLayoutKey));
    };
    connect(header, &QHeaderView::sectionMoved, this, keepLayout);
    connect(header, &QHeaderView::sectionResized, this, keepLayout);
    TWWindowState::setFrameUsingName(this, TWFrameName::tagLibraryWindow, defaultPosition);
}

void TWTagLibraryWindowController::openTagLibraryWindow()
{
    model->reloadData();
    show();
    raise();
    activateWindow();
}

QList<int> TWTagLibraryWindowController::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : tagTableView->selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

void TWTagLibraryWindowController::selectRows(const QList<int> &rows)
{
    QItemSelection selection;
    for (const int row : rows)
        selection.select(model->index(row, 0), model->index(row, model->columnCount() - 1));
    tagTableView->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (rows.isEmpty())
        return;
    // Typing and the arrow keys go on from the last row selected.
    tagTableView->selectionModel()->setCurrentIndex(model->index(rows.last(), 0), QItemSelectionModel::NoUpdate);
    tagTableView->scrollTo(model->index(rows.last(), 0));
}

void TWTagLibraryWindowController::newButtonPressed()
{
    editRow = library()->addNewTag();
    model->reloadData();
    selectRows({editRow});
    // The user goes on by typing into the new row.
    tagTableView->setFocus();
    library()->validateTagListChange();
}

void TWTagLibraryWindowController::duplicateButtonPressed()
{
    const QList<int> selected = selectedRows();
    if (selected.isEmpty()) {
        TWBeep();
        return;
    }
    // Each copy goes right after its record and pushes the rows below it down by one.
    QList<int> copies;
    int inserted = 0;
    for (const int row : selected) {
        const int copy = library()->duplicateTagAtIndex(row + inserted);
        if (copy < 0)
            continue;
        copies << copy;
        ++inserted;
    }
    model->reloadData();
    selectRows(copies);
    library()->validateTagListChange();
}

void TWTagLibraryWindowController::editButtonPressed()
{
    const QList<int> selected = selectedRows();
    if (selected.size() != 1) {
        TWBeep();
        return;
    }
    editRow = selected.first();
    editTag(library()->tagList().at(editRow));
}

void TWTagLibraryWindowController::editTag(const std::shared_ptr<TWHTMLTag> &tag)
{
    if (!editPanel) {
        editPanel = new TWHTMLTagEditPanelController(this);
        editPanel->setWindowModality(Qt::WindowModal);
        connect(editPanel, &QDialog::finished, this, &TWTagLibraryWindowController::sheetDidEnd);
    }
    editPanel->setupPanelWithTag(tag);
    editPanel->open();
}

void TWTagLibraryWindowController::sheetDidEnd(int returnCode)
{
    const TWHTMLTag *edited = editPanel->editedTag();
    if (returnCode == QDialog::Accepted && edited && editRow >= 0 && editRow < library()->numberOfTags()) {
        TWHTMLTag *record = library()->tagAtIndex(editRow);
        record->copyFromTag(*edited);
        record->setShortcutKey(edited->shortcutKey());
        library()->validateTagListChange();
        model->reloadData();
        selectRows({editRow});
    }
    editPanel->releaseTag();
}

void TWTagLibraryWindowController::deleteButtonPressed()
{
    const QList<int> selected = selectedRows();
    if (selected.isEmpty()) {
        TWBeep();
        return;
    }
    // From the last to the first, so that the rows still to go keep their numbers.
    for (auto row = selected.crbegin(); row != selected.crend(); ++row)
        library()->deleteTagAtIndex(*row);
    library()->validateTagListChange();
    model->reloadData();
}

void TWTagLibraryWindowController::closeButtonPressed()
{
    close();
}

void TWTagLibraryWindowController::closeEvent(QCloseEvent *event)
{
    saveWindowProperties();
    QWidget::closeEvent(event);
}

void TWTagLibraryWindowController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::tagLibraryWindow);
}

QString TWTagLibraryWindowController::importFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tr("The file could not be read.");
    const QByteArray bytes = file.readAll();
    // Tagwright writes library files in UTF-8; an older one may be in the encoding the user
    // saves pages in.
    std::optional<QString> text = TWTextFile::decode(bytes, TWTextEncoding::utf8);
    if (!text)
        text = TWTextFile::decode(bytes, TWPreferences::sharedPref()->textEncoding());
    if (!text)
        return tr("It is not text in UTF-8 or %1.")
            .arg(QLatin1String(TWTextFile::encodingName(TWPreferences::sharedPref()->textEncoding())));
    QString why;
    if (!library()->loadFromPropertyListDictionary(*text, &why))
        return why;
    return {};
}

void TWTagLibraryWindowController::importTagLibrary()
{
    const QStringList paths = TWPanels::runOpenPanel(this, {QLatin1String(TWExtension::tagLibrary)});
    if (paths.isEmpty())
        return;
    ui->messageBar->dismiss();
    QString why = importFile(paths.first());
    if (!why.isEmpty()) {
        TWBeep();
        // The reason is a sentence of its own; the message goes on after it.
        if (why.endsWith(QLatin1Char('.')))
            why.chop(1);
        ui->messageBar->showMessage(tr("%1 was not imported: %2. The library is as it was.")
                                        .arg(QFileInfo(paths.first()).fileName(), why));
        return;
    }
    library()->validateTagListChange();
    model->reloadData();
}

void TWTagLibraryWindowController::exportTagLibrary()
{
    const std::optional<QString> path
        = TWPanels::runSavePanel(this, QString(), {QLatin1String(TWExtension::tagLibrary)});
    if (!path)
        return;
    ui->messageBar->dismiss();
    if (!TWWriteFileAtomically(*path, library()->propertyListString().toUtf8())) {
        TWBeep();
        ui->messageBar->showMessage(tr("The library could not be written to %1.").arg(*path));
    }
}
