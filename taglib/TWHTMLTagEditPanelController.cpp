#include "taglib/TWHTMLTagEditPanelController.h"

#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "ui_TWHTMLTagPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>

namespace {

// The type pop-up lists the type codes in order, from the single tag.
constexpr int firstTypeCode = TWHTMLTag::singleType;
constexpr int singleTypeIndex = TWHTMLTag::singleType - firstTypeCode;
constexpr int noTypeIndex = -1;

int typeIndexOf(int typeCode)
{
    const int index = typeCode - firstTypeCode;
    // An inert record (any other code) shows no type until the user picks one.
    return typeCode == TWHTMLTag::singleType || typeCode == TWHTMLTag::pairedType ? index : noTypeIndex;
}

} // namespace

TWHTMLTagEditPanelController::TWHTMLTagEditPanelController(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::TWHTMLTagPanel>())
{
    ui->setupUi(this);
    // Only what the user does counts: filling the controls for a record must not act on the copy.
    connect(ui->typeButton, &QComboBox::activated, this, &TWHTMLTagEditPanelController::selectType);
    connect(ui->menuButton, &QCheckBox::clicked, this, &TWHTMLTagEditPanelController::selectMenu);
    connect(ui->specificColorButton, &QCheckBox::clicked, this, &TWHTMLTagEditPanelController::selectSpecificColor);
    connect(ui->specificColorWell, &TWColorWell::colorChosen, this, &TWHTMLTagEditPanelController::chooseColor);
    connect(ui->shortcutKeyField, &QLineEdit::editingFinished, this, &TWHTMLTagEditPanelController::inputShortcutKey);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &TWHTMLTagEditPanelController::OKButton);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &TWHTMLTagEditPanelController::cancelButton);
}

TWHTMLTagEditPanelController::~TWHTMLTagEditPanelController() = default;

void TWHTMLTagEditPanelController::setupPanelWithTag(const std::shared_ptr<TWHTMLTag> &record)
{
    releaseTag();
    if (!record)
        return;
    tag = std::make_unique<TWHTMLTag>();
    tag->copyFromTag(*record);
    tag->setShortcutKey(record->shortcutKey());
    originalTag = record;

    const bool special = record->isSpecialTag();
    ui->nameField->setText(record->name());
    ui->nameField->setEnabled(true);
    ui->tagField->setText(record->tag());
    ui->tagField->setEnabled(!special);
    ui->typeButton->setCurrentIndex(typeIndexOf(record->type()));
    ui->typeButton->setEnabled(!special);
    ui->firstTagField->setText(record->firstTag());
    ui->firstTagField->setEnabled(!special);
    ui->secondTagField->setText(record->secondTag());
    ui->secondTagField->setEnabled(!special && record->type() != TWHTMLTag::singleType);
    ui->menuButton->setChecked(record->includeInMenu());
    ui->menuButton->setEnabled(true);
    ui->menuTitleField->setText(record->title());
    ui->menuTitleField->setEnabled(record->includeInMenu());
    ui->shortcutKeyField->setText(record->shortcutKey());
    ui->shortcutKeyField->setEnabled(record->includeInMenu());
    ui->specificColorButton->setChecked(record->useSpecificColor());
    ui->specificColorButton->setEnabled(!record->isGenericTag() && !record->isQuotation());
    setWellColor(record->tagColor());
    ui->specificColorWell->setEnabled(record->useSpecificColor());
    ui->nameField->setFocus();
}

TWHTMLTag *TWHTMLTagEditPanelController::editedTag() const
{
    return tag.get();
}

void TWHTMLTagEditPanelController::releaseTag()
{
    tag.reset();
    originalTag.reset();
}

void TWHTMLTagEditPanelController::selectType()
{
    const int index = ui->typeButton->currentIndex();
    if (!tag || index == noTypeIndex)
        return;
    tag->setType(index + firstTypeCode);
    ui->secondTagField->setEnabled(index != singleTypeIndex);
}

void TWHTMLTagEditPanelController::selectMenu()
{
    if (!tag)
        return;
    const bool include = ui->menuButton->isChecked();
    tag->setIncludeInMenu(include);
    ui->menuTitleField->setEnabled(include);
    ui->shortcutKeyField->setEnabled(include);
    // The field keeps its text: the key comes back from it when the sheet ends.
    if (!include)
        tag->setShortcutKey(QString());
}

void TWHTMLTagEditPanelController::selectSpecificColor()
{
    if (!tag)
        return;
    const bool use = ui->specificColorButton->isChecked();
    tag->setUseSpecificColor(use);
    ui->specificColorWell->setEnabled(use);
}

void TWHTMLTagEditPanelController::chooseColor(const QColor &color)
{
    if (!tag || !color.isValid())
        return;
    // Tag colours are opaque RGB.
    QColor rgb = color.toRgb();
    rgb.setAlphaF(1.0);
    setWellColor(rgb);
    tag->setTagColor(rgb);
}

void TWHTMLTagEditPanelController::inputShortcutKey()
{
    if (!tag)
        return;
    const QString key = ui->shortcutKeyField->text();
    // The original's own key counts as free: the copy is not in the library.
    if (TWHTMLTagLibrary::sharedTagLibrary()->isShortcutKey(key, originalTag.get()))
        tag->setShortcutKey(key);
    else
        TWBeep();
    ui->shortcutKeyField->setText(tag->shortcutKey());
}

void TWHTMLTagEditPanelController::inputText()
{
    if (!tag)
        return;
    tag->setName(ui->nameField->text());
    tag->setTag(ui->tagField->text());
    tag->setFirstTag(ui->firstTagField->text());
    tag->setSecondTag(ui->secondTagField->text());
    tag->setTitle(ui->menuTitleField->text());
    inputShortcutKey();
}

void TWHTMLTagEditPanelController::OKButton()
{
    inputText();
    done(QDialog::Accepted);
}

void TWHTMLTagEditPanelController::cancelButton()
{
    // Only the copy is touched, so collecting the texts costs the record nothing.
    inputText();
    done(QDialog::Rejected);
}

void TWHTMLTagEditPanelController::reject()
{
    cancelButton();
}

void TWHTMLTagEditPanelController::setWellColor(const QColor &color)
{
    ui->specificColorWell->setColor(color);
    ui->specificColorWell->setToolTip(tr("Choose the tag's colour (now %1)").arg(color.name()));
}
