#include "panels/TWColorPanelController.h"

#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "platform/TWFlag.h"
#include "platform/TWWindowOrder.h"
#include "ui_TWColorPanel.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QPixmap>

namespace {

TWColorPanelController *sharedInstance = nullptr;

constexpr char codeFormat[] = "#%1%2%3";
// Shown until the panel has a choice to show.
constexpr char initialColorCode[] = "\"ColorCode\"";
constexpr QSize swatchSize(12, 12);

// Where the panel opens the first time: beside the insert-tag palette.
constexpr QPoint defaultPosition(280, 780);

} // namespace

TWColorPanelController *TWColorPanelController::sharedColorPanel()
{
    if (!sharedInstance)
        sharedInstance = new TWColorPanelController();
    return sharedInstance;
}

TWColorPanelController::TWColorPanelController()
    : QWidget(nullptr, Qt::Tool)
    , ui(new Ui::TWColorPanel)
    , colorCodeValue(QLatin1String(initialColorCode))
{
    ui->setupUi(this);
    selection = new QButtonGroup(this);
    selection->addButton(ui->nameRowButton, nameRow);
    selection->addButton(ui->codeRowButton, codeRow);
    // The CSS colour names, each with its colour beside it.
    for (const QString &name : QColor::colorNames()) {
        QPixmap swatch(swatchSize);
        swatch.fill(QColor::fromString(name));
        ui->menu1->addItem(QIcon(swatch), name);
    }
    // Choosing a name or a colour also chooses its row.
    connect(ui->menu1, &QComboBox::activated, this, [this] {
        ui->nameRowButton->setChecked(true);
        selectColor();
    });
    connect(ui->colorWell, &TWColorWell::colorChosen, this, [this] {
        ui->codeRowButton->setChecked(true);
        selectColor();
    });
    connect(selection, &QButtonGroup::idClicked, this, &TWColorPanelController::selectColor);
    connect(ui->autoButton, &QCheckBox::clicked, this, &TWColorPanelController::toggleAutoInsert);
    connect(ui->insertButton, &QPushButton::clicked, this, &TWColorPanelController::insert);
    awakeFromNib();
}

TWColorPanelController::~TWColorPanelController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWColorPanelController::awakeFromNib()
{
    autoInsertFlag = false;
    TWWindowState::setFrameUsingName(this, TWFrameName::colorPanel, defaultPosition);
    bool shown = true;
    if (const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::colorPanel)) {
        autoInsertFlag = TWFlag::isYes(defaults->value(QLatin1String(TWStateEntry::autoInsert)));
        shown = TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::showWindow)));
    }
    setAutoInsertEnabled(autoInsertFlag);
    setColorText();
    if (shown)
        setShowWindow(true);
}

QString TWColorPanelController::codeForColor(const QColor &color)
{
    const QColor rgb = color.toRgb();
    // Truncated, not rounded: 0.5 gives 7F.
    const auto hex = [](double component) {
        return QStringLiteral("%1").arg(int(component * 255.0) & 0xFF, 2, 16, QLatin1Char('0')).toUpper();
    };
    return QString::fromLatin1(codeFormat).arg(hex(rgb.redF()), hex(rgb.greenF()), hex(rgb.blueF()));
}

void TWColorPanelController::setColorText()
{
    switch (selection->checkedId()) {
    case nameRow:
        colorCodeValue = ui->menu1->currentText();
        break;
    case codeRow:
        colorCodeValue = codeForColor(ui->colorWell->color());
        break;
    default:
        colorCodeValue.clear();
    }
    ui->textField->setText(colorCodeValue);
}

void TWColorPanelController::selectColor()
{
    setColorText();
    if (autoInsertFlag)
        insert();
}

void TWColorPanelController::insert()
{
    TWEditorTextView *view = TWEditorTextView::textViewToBeEdited();
    if (!view) {
        TWBeep();
        return;
    }
    view->insertColorCode(colorCodeValue);
}

void TWColorPanelController::toggleAutoInsert()
{
    autoInsertFlag = !autoInsertFlag;
    setAutoInsertEnabled(autoInsertFlag);
}

void TWColorPanelController::setAutoInsertEnabled(bool flag)
{
    ui->autoButton->setChecked(flag);
    ui->insertButton->setEnabled(!flag);
}

void TWColorPanelController::setShowWindow(bool show)
{
    if (show)
        QWidget::show();
    else
        QWidget::close();
    TWAppDelegate::sharedAppDelegate()->setColorPanelMenuEnabled(!show);
}

void TWColorPanelController::closeEvent(QCloseEvent *event)
{
    TWAppDelegate::sharedAppDelegate()->setColorPanelMenuEnabled(true);
    QWidget::closeEvent(event);
}

void TWColorPanelController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::colorPanel);
    QVariantMap defaults;
    defaults.insert(QLatin1String(TWStateEntry::autoInsert), TWFlag::string(autoInsertFlag));
    defaults.insert(QLatin1String(TWStateEntry::showWindow), TWFlag::string(TWWindowOrder::isWindowVisible(this)));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::colorPanel, defaults);
}
