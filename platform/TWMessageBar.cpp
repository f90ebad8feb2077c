#include "platform/TWMessageBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace {
// A pale yellow band with a darker edge, readable on light and dark themes alike.
constexpr char barStyle[] = "TWMessageBar { background: #fff4c2; border: 1px solid #d9b44a; border-radius: 3px; }"
                            "TWMessageBar QLabel { color: #3a2f00; }";
constexpr int barMargin = 6;
} // namespace

TWMessageBar::TWMessageBar(QWidget *parent)
    : QFrame(parent)
    , label(new QLabel(this))
    , actions(new QHBoxLayout)
{
    setStyleSheet(QLatin1String(barStyle));
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *close = new QToolButton(this);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setAutoRaise(true);
    close->setToolTip(tr("Close this message"));
    connect(close, &QToolButton::clicked, this, &TWMessageBar::dismiss);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(barMargin, barMargin, barMargin, barMargin);
    layout->addWidget(label, 1);
    layout->addLayout(actions);
    layout->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void TWMessageBar::showMessage(const QString &text)
{
    clearActions();
    label->setText(text);
    show();
}

void TWMessageBar::addAction(const QString &title, std::function<void()> handler)
{
    auto *button = new QPushButton(title, this);
    connect(button, &QPushButton::clicked, this, [this, handler] {
        dismiss();
        handler();
    });
    actions->addWidget(button, 0, Qt::AlignTop);
}

void TWMessageBar::dismiss()
{
    hide();
    clearActions();
}

QString TWMessageBar::text() const
{
    return isHidden() ? QString() : label->text();
}

void TWMessageBar::clearActions()
{
    while (QLayoutItem *item = actions->takeAt(0)) {
        if (QWidget *widget = item->widget()) {
            // The button may be the one being clicked: it leaves the bar now and goes later.
            widget->setParent(nullptr);
            widget->deleteLater();
        }
        delete item;
    }
}
