#pragma once

#include <QColor>
#include <QToolButton>

class QColorDialog;

// A small button filled with a colour; clicking it opens the colour chooser (no opacity), and
// the colour chosen there becomes the button's.
class TWColorWell : public QToolButton
{
    Q_OBJECT
public:
    explicit TWColorWell(QWidget *parent = nullptr);

    QColor color() const { return colorValue; }
    void setColor(const QColor &color);

Q_SIGNALS:
    // The user chose a colour.
    void colorChosen(const QColor &color);

private:
    void openChooser();

    QColor colorValue;
    QColorDialog *chooser = nullptr;
};
