#pragma once

#include <QString>
#include <QWidget>

namespace Ui {
class TWFindPanel;
}

// The find panel: a small floating window with the search and replacement texts, the three
// switches and the find and replace buttons. It does no searching itself: each command goes,
// with the texts and the find options word, to the text view being edited, so the panel
// may keep the keyboard while the user steps through the matches. The Find menu uses the
// same commands, so they work while the panel is closed. Its texts and switches are kept
// when it closes, and only then.
class TWFindPanelController : public QWidget
{
    Q_OBJECT
public:
    static TWFindPanelController *sharedFindPanel();
    ~TWFindPanelController() override;

    void openFindPanel();

    QString searchText() const;
    void setSearchText(const QString &text);
    QString replaceText() const;
    void setReplaceText(const QString &text);
    // The find options word (TWFindOption) from the switches; a partly checked one is off.
    unsigned options() const;

    // Each beeps when there is no text view to edit or nothing to search for.
    void doFind();
    void doReplace();
    void doReplaceAndFind();
    void doReplaceAll();

    void saveWindowProperties() const;
    void findPanelIsClosing();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    TWFindPanelController();
    void awakeFromNib();

    Ui::TWFindPanel *ui;
    // Set while the application closes its windows to quit: that is no closing of the panel.
    bool applicationQuitting = false;
};
