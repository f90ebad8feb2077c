#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class TWTagLibraryWindow;
}
class TWHTMLTag;
class TWHTMLTagEditPanelController;
class TWHTMLTagLibraryTableModel;
class TWHTMLTagLibraryTableView;

// The tag library window: every record of the library as a row of a table, edited in place,
// added, duplicated, deleted, reordered by dragging, edited field by field in a sheet, and
// imported from and exported to .tlib files. Every change reaches the menus, the palette and
// the tag colours at once, except a reorder by dragging.
class TWTagLibraryWindowController : public QWidget
{
    Q_OBJECT
public:
    static TWTagLibraryWindowController *sharedTagLibraryController();
    ~TWTagLibraryWindowController() override;

    void openTagLibraryWindow();
    TWHTMLTagLibraryTableView *tableView() const { return tagTableView; }
    TWHTMLTagEditPanelController *editPanelController() const { return editPanel; }

    void newButtonPressed();
    void duplicateButtonPressed();
    void editButtonPressed();
    void deleteButtonPressed();
    void closeButtonPressed();
    void importTagLibrary();
    void exportTagLibrary();
    // Opens the edit sheet on the record at editRow.
    void editTag(const std::shared_ptr<TWHTMLTag> &tag);
    void sheetDidEnd(int returnCode);

    void saveWindowProperties() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    TWTagLibraryWindowController();
    void awakeFromNib();
    QList<int> selectedRows() const;
    void selectRows(const QList<int> &rows);
    // Replaces the library by a .tlib file's records; answers why it could not, or "".
    QString importFile(const QString &path);

    Ui::TWTagLibraryWindow *ui;
    TWHTMLTagLibraryTableView *tagTableView;
    TWHTMLTagLibraryTableModel *model;
    int editRow = -1;
    TWHTMLTagEditPanelController *editPanel = nullptr;
};
