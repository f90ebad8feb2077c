#include "taglib/TWInsertTagPaletteController.h"

#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWTagMenuListing.h"
#include "ui_TWInsertTagPalette.h"

#include <QCloseEvent>

namespace {
TWInsertTagPaletteController *sharedInstance = nullptr;
constexpr QPoint defaultPosition(20, 780);
} // namespace

TWInsertTagPaletteController *TWInsertTagPaletteController::sharedInsertTagPalette()
{
    if (!sharedInstance)
        new TWInsertTagPaletteController(); // registers itself
    return sharedInstance;
}

TWInsertTagPaletteController::TWInsertTagPaletteController()
    : QWidget(nullptr, Qt::Tool)
    , ui(new Ui::TWInsertTagPalette)
{
    if (!sharedInstance)
        sharedInstance = this;
    ui->setupUi(this);
    connect(ui->insertSingleTagMenu, &QComboBox::activated, this, &TWInsertTagPaletteController::selectInsertSingleTag);
    connect(ui->insertDoubleTagMenu, &QComboBox::activated, this, &TWInsertTagPaletteController::selectInsertDoubleTag);
    awakeFromNib();
}

TWInsertTagPaletteController::~TWInsertTagPaletteController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWInsertTagPaletteController::awakeFromNib()
{
    setUpInsertTagMenu();
    TWWindowState::setFrameUsingName(this, TWFrameName::insertTagPalette, defaultPosition);
    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::insertTagPalette);
    if (!defaults || TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::showWindow))))
        setShowWindow(true);
}

void TWInsertTagPaletteController::setUpInsertTagMenu()
{
    const QString singleHeader = TWLocalizedString(TWTextKey::single);
    const QString pairedHeader = TWLocalizedString(TWTextKey::paired);
    const TWTagMenuListing listing
        = TWTagMenuListing::list(TWHTMLTagLibrary::sharedTagLibrary()->tagList(), {singleHeader}, {pairedHeader});
    ui->insertSingleTagMenu->clear();
    ui->insertDoubleTagMenu->clear();
    ui->insertSingleTagMenu->addItem(singleHeader);
    ui->insertDoubleTagMenu->addItem(pairedHeader);
    singleObjectList = listing.single;
    doubleObjectList = listing.paired;
    for (const TWHTMLTagLibrary::Tag &tag : std::as_const(singleObjectList))
        ui->insertSingleTagMenu->addItem(tag->title());
    for (const TWHTMLTagLibrary::Tag &tag : std::as_const(doubleObjectList))
        ui->insertDoubleTagMenu->addItem(tag->title());
}

void TWInsertTagPaletteController::insert(const TWHTMLTagLibrary::Tag &tag)
{
    TWEditorTextView *view = TWEditorTextView::textViewToBeEdited();
    if (!view) {
        TWBeep();
        return;
    }
    view->insertTag(*tag);
    // Typing goes on in the text.
    TWWindowOrder::showWindow(view->window());
    view->setFocus(Qt::OtherFocusReason);
}

void TWInsertTagPaletteController::selectInsertSingleTag(int index)
{
    if (index <= 0)
        return;
    ui->insertSingleTagMenu->setCurrentIndex(0);
    if (index - 1 < singleObjectList.size())
        insert(singleObjectList.at(index - 1));
}

void TWInsertTagPaletteController::selectInsertDoubleTag(int index)
{
    if (index <= 0)
        return;
    ui->insertDoubleTagMenu->setCurrentIndex(0);
    if (index - 1 < doubleObjectList.size())
        insert(doubleObjectList.at(index - 1));
}

void TWInsertTagPaletteController::setShowWindow(bool show)
{
    if (show)
        QWidget::show();
    else
        QWidget::close();
    TWAppDelegate::sharedAppDelegate()->setTagPaletteMenuEnabled(!show);
}

void TWInsertTagPaletteController::closeEvent(QCloseEvent *event)
{
    TWAppDelegate::sharedAppDelegate()->setTagPaletteMenuEnabled(true);
    QWidget::closeEvent(event);
}

void TWInsertTagPaletteController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::insertTagPalette);
    QVariantMap defaults;
    defaults.insert(QLatin1String(TWStateEntry::showWindow), TWFlag::string(TWWindowOrder::isWindowVisible(this)));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::insertTagPalette, defaults);
}

QStringList TWInsertTagPaletteController::singleTitles() const
{
    QStringList titles;
    for (int i = 1; i < ui->insertSingleTagMenu->count(); ++i)
        titles << ui->insertSingleTagMenu->itemText(i);
    return titles;
}

QStringList TWInsertTagPaletteController::pairedTitles() const
{
    QStringList titles;
    for (int i = 1; i < ui->insertDoubleTagMenu->count(); ++i)
        titles << ui->insertDoubleTagMenu->itemText(i);
    return titles;
}
