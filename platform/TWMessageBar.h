#pragma once

#include <QFrame>
#include <QString>

#include <functional>

class QHBoxLayout;
class QLabel;

// A message at the top of a window that does not interrupt the user: a line of text, the
// actions it offers as buttons, and a button that closes it. Hidden until there is something
// to say; a new message replaces the one shown.
class TWMessageBar : public QFrame
{
    Q_OBJECT
public:
    explicit TWMessageBar(QWidget *parent = nullptr);

    void showMessage(const QString &text);
    // Adds a button to the message shown; choosing it closes the bar and runs the handler.
    void addAction(const QString &title, std::function<void()> handler);
    void dismiss();

    // The message shown, or "" when the bar is closed.
    QString text() const;

private:
    void clearActions();

    QLabel *label;
    QHBoxLayout *actions;
};
