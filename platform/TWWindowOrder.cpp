#include "platform/TWWindowOrder.h"

#include <QApplication>
#include <QEvent>

TWWindowOrder *TWWindowOrder::shared()
{
    static TWWindowOrder *instance = new TWWindowOrder(QCoreApplication::instance());
    return instance;
}

TWWindowOrder::TWWindowOrder(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool TWWindowOrder::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate && watched->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(watched);
        if (widget->isWindow())
            bringToFront(widget);
    }
    return false;
}

void TWWindowOrder::bringToFront(QWidget *window)
{
    order.removeIf([window](const QPointer<QWidget> &entry) { return entry.isNull() || entry == window; });
    order.prepend(window);
}

QList<QWidget *> TWWindowOrder::orderedWindows() const
{
    QList<QWidget *> windows;
    for (const QPointer<QWidget> &entry : order) {
        if (entry)
            windows << entry.data();
    }
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (!windows.contains(widget))
            windows << widget;
    }
    return windows;
}

bool TWWindowOrder::isWindowVisible(const QWidget *window)
{
    return window && window->isVisible() && !window->isMinimized();
}

void TWWindowOrder::showWindow(QWidget *window)
{
    window->show();
    window->raise();
    window->activateWindow();
    shared()->bringToFront(window);
}
