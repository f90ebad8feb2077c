#include "app/TWLineNumberDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>

TWLineNumberDialog::TWLineNumberDialog(QWidget *parent)
    : QDialog(parent)
    , field(new QLineEdit(this))
{
    setWindowTitle(tr("Jump to Line"));
    field->setObjectName(QStringLiteral("lineNumberTextField"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QFormLayout(this);
    layout->addRow(tr("Line:"), field);
    layout->addRow(buttons);
}

int TWLineNumberDialog::lineNumber() const
{
    return field->text().trimmed().toInt();
}
