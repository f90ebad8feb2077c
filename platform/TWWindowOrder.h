#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

// The application's windows from front to back, in the order in which they were last
// activated. Insertion commands use it to find the document window the user worked in
// last, passing over panels.
class TWWindowOrder : public QObject
{
    Q_OBJECT
public:
    static TWWindowOrder *shared();

    // Front to back: the windows activated so far, most recent first, then the other
    // top-level windows in creation order.
    QList<QWidget *> orderedWindows() const;
    // Shown and not minimised.
    static bool isWindowVisible(const QWidget *window);

    // Shows a window in front and makes it the active one.
    static void showWindow(QWidget *window);

    // Puts a window in front, as its activation would (also used when a window is shown
    // programmatically on a platform that does not activate it).
    void bringToFront(QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit TWWindowOrder(QObject *parent);
    QList<QPointer<QWidget>> order;
};
