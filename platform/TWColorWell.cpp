#include "platform/TWColorWell.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

namespace {
constexpr QSize swatchSize(32, 16);
} // namespace

TWColorWell::TWColorWell(QWidget *parent)
    : QToolButton(parent)
{
    setIconSize(swatchSize);
    setColor(Qt::black);
    connect(this, &QToolButton::clicked, this, &TWColorWell::openChooser);
}

void TWColorWell::setColor(const QColor &color)
{
    colorValue = color.toRgb();
    QPixmap swatch(swatchSize);
    swatch.fill(colorValue);
    QPainter(&swatch).drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    setIcon(QIcon(swatch));
}

void TWColorWell::openChooser()
{
    if (!chooser) {
        chooser = new QColorDialog(this);
        chooser->setOption(QColorDialog::ShowAlphaChannel, false);
        connect(chooser, &QColorDialog::colorSelected, this, [this](const QColor &color) {
            setColor(color);
            Q_EMIT colorChosen(colorValue);
        });
    }
    chooser->setCurrentColor(colorValue);
    chooser->open();
}
