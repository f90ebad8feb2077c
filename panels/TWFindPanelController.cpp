#include "panels/TWFindPanelController.h"

#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWStringSearch.h"
#include "platform/TWBeep.h"
#include "platform/TWFlag.h"
#include "platform/TWWindowOrder.h"
#include "ui_TWFindPanel.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

TWFindPanelController *sharedFindPanelController = nullptr;
// Where the panel first appears: near the top, clear of the HTML window's text.
constexpr QPoint defaultPosition(420, 80);

struct SwitchEntry
{
    QCheckBox *Ui::TWFindPanel::*button;
    const char *entry;
    unsigned option;
};

constexpr SwitchEntry switches[] = {
    {&Ui::TWFindPanel::searchUpwardButton, TWStateEntry::searchUpward, TWFindOption::searchUpward},
    {&Ui::TWFindPanel::ignoreCaseButton, TWStateEntry::ignoreCase, TWFindOption::ignoreCase},
    {&Ui::TWFindPanel::wrapAroundButton, TWStateEntry::wrapAround, TWFindOption::wrapAround},
};

// The view to send a command to, when there is one and something to search for; else a beep.
TWEditorTextView *commandTarget(const QString &search)
{
    TWEditorTextView *view = TWEditorTextView::textViewToBeEdited();
    if (!view || search.isEmpty()) {
        TWBeep();
        return nullptr;
    }
    return view;
}

} // namespace

TWFindPanelController *TWFindPanelController::sharedFindPanel()
{
    if (!sharedFindPanelController)
        new TWFindPanelController(); // registers itself
    return sharedFindPanelController;
}

TWFindPanelController::TWFindPanelController()
    : QWidget(nullptr, Qt::Tool)
    , ui(new Ui::TWFindPanel)
{
    if (!sharedFindPanelController)
        sharedFindPanelController = this;
    ui->setupUi(this);
    connect(ui->findButton, &QPushButton::clicked, this, &TWFindPanelController::doFind);
    connect(ui->replaceButton, &QPushButton::clicked, this, &TWFindPanelController::doReplace);
    connect(ui->replaceAndFindButton, &QPushButton::clicked, this, &TWFindPanelController::doReplaceAndFind);
    connect(ui->replaceAllButton, &QPushButton::clicked, this, &TWFindPanelController::doReplaceAll);
    // Find is the default button: Return in either field finds.
    connect(ui->searchTextField, &QLineEdit::returnPressed, this, &TWFindPanelController::doFind);
    connect(ui->replaceTextField, &QLineEdit::returnPressed, this, &TWFindPanelController::doFind);
    QCoreApplication::instance()->installEventFilter(this);
    awakeFromNib();
}

TWFindPanelController::~TWFindPanelController()
{
    if (sharedFindPanelController == this)
        sharedFindPanelController = nullptr;
    delete ui;
}

void TWFindPanelController::awakeFromNib()
{
    TWWindowState::setFrameUsingName(this, TWFrameName::findPanel, defaultPosition);
    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::findPanel);
    if (!defaults) {
        setSearchText(QString());
        setReplaceText(QString());
        return;
    }
    setSearchText(TWWindowState::stringEntry(*defaults, TWStateEntry::searchText).value_or(QString()));
    setReplaceText(TWWindowState::stringEntry(*defaults, TWStateEntry::replaceText).value_or(QString()));
    // A switch without an entry stays as laid out.
    for (const SwitchEntry &item : switches) {
        const QString key = QLatin1String(item.entry);
        if (defaults->contains(key))
            (ui->*item.button)->setChecked(TWFlag::isYes(defaults->value(key)));
    }
}

void TWFindPanelController::openFindPanel()
{
    TWWindowOrder::showWindow(this);
    ui->searchTextField->setFocus(Qt::OtherFocusReason);
    ui->searchTextField->selectAll();
}

QString TWFindPanelController::searchText() const
{
    return ui->searchTextField->text();
}

void TWFindPanelController::setSearchText(const QString &text)
{
    ui->searchTextField->setText(text);
}

QString TWFindPanelController::replaceText() const
{
    return ui->replaceTextField->text();
}

void TWFindPanelController::setReplaceText(const QString &text)
{
    ui->replaceTextField->setText(text);
}

unsigned TWFindPanelController::options() const
{
    unsigned word = 0;
    for (const SwitchEntry &item : switches) {
        if ((ui->*item.button)->checkState() == Qt::Checked)
            word |= item.option;
    }
    return word;
}

void TWFindPanelController::doFind()
{
    if (TWEditorTextView *view = commandTarget(searchText()))
        view->doFindString(searchText(), options());
}

void TWFindPanelController::doReplace()
{
    if (TWEditorTextView *view = commandTarget(searchText()))
        view->doReplaceString(searchText(), replaceText(), options());
}

void TWFindPanelController::doReplaceAndFind()
{
    if (TWEditorTextView *view = commandTarget(searchText()))
        view->doReplaceAndFind(searchText(), replaceText(), options());
}

void TWFindPanelController::doReplaceAll()
{
    if (TWEditorTextView *view = commandTarget(searchText()))
        view->doReplaceAllString(searchText(), replaceText(), options());
}

void TWFindPanelController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::findPanel);
    QVariantMap defaults;
    defaults.insert(QLatin1String(TWStateEntry::searchText), searchText());
    defaults.insert(QLatin1String(TWStateEntry::replaceText), replaceText());
    const unsigned word = options();
    for (const SwitchEntry &item : switches)
        defaults.insert(QLatin1String(item.entry), TWFlag::string((word & item.option) != 0));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::findPanel, defaults);
}

void TWFindPanelController::findPanelIsClosing()
{
    saveWindowProperties();
}

void TWFindPanelController::closeEvent(QCloseEvent *event)
{
    if (!applicationQuitting)
        findPanelIsClosing();
    QWidget::closeEvent(event);
}

bool TWFindPanelController::eventFilter(QObject *watched, QEvent *event)
{
    // Quitting closes every window before the quit's own saving, which leaves the panel's
    // state as it was at its last closing. A quit that a window refuses goes on running, and
    // the next closing is the user's again.
    if (watched == QCoreApplication::instance() && event->type() == QEvent::Quit) {
        applicationQuitting = true;
        QTimer::singleShot(0, this, [this] { applicationQuitting = false; });
    }
    return QWidget::eventFilter(watched, event);
}
