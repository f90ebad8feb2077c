#pragma once

#include <QString>
#include <QWidget>

namespace Ui {
class TWColorPanel;
}
class QButtonGroup;

// The colour panel: a small floating window from which colour values go into the HTML being
// edited: a colour name from a pop-up, or the hexadecimal code of a colour chosen in the
// well. The value is inserted when the user presses Insert or, with auto insert on, at every
// change of choice, and stays selected so that the next one replaces it.
class TWColorPanelController : public QWidget
{
    Q_OBJECT
public:
    static TWColorPanelController *sharedColorPanel();
    ~TWColorPanelController() override;

    // The rows of the choice between the two.
    enum Row { nameRow = 0, codeRow = 1 };

    const QString &colorCode() const { return colorCodeValue; }
    void setColorText();
    void selectColor();
    void insert();
    void toggleAutoInsert();
    void setAutoInsertEnabled(bool flag);
    bool autoInsert() const { return autoInsertFlag; }
    // Shows or closes the panel; the Window menu's title follows.
    void setShowWindow(bool show);
    void saveWindowProperties() const;

    // "#RRGGBB": each component times 255, the fraction dropped.
    static QString codeForColor(const QColor &color);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    TWColorPanelController();
    void awakeFromNib();

    Ui::TWColorPanel *ui;
    QButtonGroup *selection;
    QString colorCodeValue;
    bool autoInsertFlag = false;
};
