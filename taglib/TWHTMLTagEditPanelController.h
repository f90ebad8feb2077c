#pragma once

#include <QColor>
#include <QDialog>

#include <memory>

class TWHTMLTag;

namespace Ui {
class TWHTMLTagPanel;
}

// The sheet that edits one record of the tag library field by field. It works on a copy: the
// record itself is not touched here, and the library window takes the copy's contents over
// only when the sheet ends with OK. The caller shows it with open(), window-modal on the
// library window.
class TWHTMLTagEditPanelController : public QDialog
{
    Q_OBJECT
public:
    explicit TWHTMLTagEditPanelController(QWidget *parent = nullptr);
    ~TWHTMLTagEditPanelController() override;

    // Prepares the sheet for the record: a working copy, and every control filled and enabled
    // as the record allows (a special tag keeps its element name and insertion texts).
    void setupPanelWithTag(const std::shared_ptr<TWHTMLTag> &tag);
    // The working copy, nullptr when no edit is under way.
    TWHTMLTag *editedTag() const;
    // Drops the working copy and the original.
    void releaseTag();

    // The controls' actions (also connected to the widgets' signals).
    void selectType();
    void selectMenu();
    void selectSpecificColor();
    void chooseColor(const QColor &color);
    // Takes the key field's first character when no other record has it; otherwise beeps.
    // Either way the field then shows the key that will be kept.
    void inputShortcutKey();
    // Copies the text fields into the working copy, the key last.
    void inputText();
    void OKButton();
    void cancelButton();

    // Escape and the window's close box end the sheet as Cancel does.
    void reject() override;

private:
    void setWellColor(const QColor &color);

    std::unique_ptr<Ui::TWHTMLTagPanel> ui;
    std::unique_ptr<TWHTMLTag> tag;
    std::shared_ptr<TWHTMLTag> originalTag;
};
