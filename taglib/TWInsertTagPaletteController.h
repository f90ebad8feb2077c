#pragma once

#include "taglib/TWHTMLTagLibrary.h"

#include <QList>
#include <QWidget>

namespace Ui {
class TWInsertTagPalette;
}

// The insert-tag palette: a small floating window with two pop-ups, single tags and paired
// tags, under their headers. Choosing one inserts it into the text view being edited and
// gives the keyboard back to that text.
class TWInsertTagPaletteController : public QWidget
{
    Q_OBJECT
public:
    static TWInsertTagPaletteController *sharedInsertTagPalette();
    ~TWInsertTagPaletteController() override;

    // Rebuilds both pop-ups from the library.
    void setUpInsertTagMenu();
    void selectInsertSingleTag(int index);
    void selectInsertDoubleTag(int index);
    // Shows or closes the palette; the Window menu's title follows.
    void setShowWindow(bool show);
    void saveWindowProperties() const;

    // The pop-ups' items after the header, for tests.
    QStringList singleTitles() const;
    QStringList pairedTitles() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    TWInsertTagPaletteController();
    void awakeFromNib();
    void insert(const TWHTMLTagLibrary::Tag &tag);

    Ui::TWInsertTagPalette *ui;
    QList<TWHTMLTagLibrary::Tag> singleObjectList;
    QList<TWHTMLTagLibrary::Tag> doubleObjectList;
};
