#pragma once

#include <QDialog>

class QLineEdit;

// Asks for the line number of the jump-to-line command.
class TWLineNumberDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TWLineNumberDialog(QWidget *parent = nullptr);

    // The integer value of the field; text that is not a number gives 0.
    int lineNumber() const;
    QLineEdit *lineNumberTextField() const { return field; }

private:
    QLineEdit *field;
};
