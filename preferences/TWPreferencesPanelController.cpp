#include "preferences/TWPreferencesPanelController.h"

#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "platform/TWPanels.h"
#include "platform/TWRowDrag.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWExBrowserTableModel.h"
#include "preferences/TWPreferences.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWPageComposer.h"
#include "preview/TWWebPreferences.h"
#include "ui_TWPreferencePanel.h"

#include <QCloseEvent>
#include <QFontDialog>
#include <QHeaderView>
#include <QShortcut>

namespace {

TWPreferencesPanelController *sharedInstance = nullptr;

// Where the panel opens the first time.
constexpr QPoint defaultPosition(200, 120);
// The sizes offered; any other can be typed.
constexpr int offeredSizes[] = {9, 10, 11, 12, 13, 14, 16, 18, 20, 24, 28, 36, 48, 64, 72};
// The opacity slider runs in percent.
constexpr double percent = 100.0;
// The suspend time shows one digit after the point.
constexpr int suspendTimeDecimals = 1;
// The preference of each font, in the order of the kinds.
const struct
{
    const QFont &(TWPreferences::*get)() const;
    void (TWPreferences::*set)(const QFont &);
} fontPreferences[] = {{&TWPreferences::viewerFont, &TWPreferences::setViewerFont},
                       {&TWPreferences::viewerFixedFont, &TWPreferences::setViewerFixedFont},
                       {&TWPreferences::editorFont, &TWPreferences::setEditorFont},
                       {&TWPreferences::templateFont, &TWPreferences::setTemplateFont},
                       {&TWPreferences::cssFont, &TWPreferences::setCSSFont}};

// A probe file name: an application that would open it can open the page.
constexpr char probeFile[] = "page.html";

} // namespace

TWPreferencesPanelController *TWPreferencesPanelController::sharedPreferencesPanel()
{
    if (!sharedInstance)
        sharedInstance = new TWPreferencesPanelController();
    return sharedInstance;
}

TWPreferencesPanelController::TWPreferencesPanelController()
    : QWidget(nullptr, Qt::Window)
    , ui(new Ui::TWPreferencePanel)
    , preferences(TWPreferences::sharedPref())
    , browsersModel(new TWExBrowserTableModel(this))
{
    ui->setupUi(this);
    // The items in the order of the codes.
    for (const int code : {TWTextEncoding::shiftJIS, TWTextEncoding::eucJP, TWTextEncoding::iso2022JP, TWTextEncoding::utf8})
        ui->textEncodingMenu->addItem(QLatin1String(TWTextFile::encodingName(code)));
    ui->returnCodeMenu->addItems({tr("CR (classic Mac)"), tr("LF (Linux, macOS)"), tr("CR LF (Windows)")});

    for (const FontKind kind : fontKinds) {
        const FontControls controls = fontControls(kind);
        for (const int size : offeredSizes)
            controls.size->addItem(QString::number(size));
        connect(controls.button, &QPushButton::clicked, this, [this, kind] { chooseFont(kind); });
        connect(controls.size, &QComboBox::activated, this, [this, kind] { changeFontSize(kind); });
        connect(controls.size->lineEdit(), &QLineEdit::editingFinished, this, [this, kind] { changeFontSize(kind); });
    }
    connect(ui->editorTextColorWell, &TWColorWell::colorChosen, this, &TWPreferencesPanelController::changeEditorTextColor);
    connect(ui->editorBGColorWell, &TWColorWell::colorChosen, this, &TWPreferencesPanelController::changeEditorBackgroundColor);
    connect(ui->editorOpacitySlider, &QSlider::valueChanged, this, &TWPreferencesPanelController::changeEditorOpacity);
    // Texts are taken as they are typed, so that none is lost however the panel or the
    // application ends.
    connect(ui->defaultBaseURLField, &QLineEdit::textEdited, this, &TWPreferencesPanelController::inputBaseURL);
    connect(ui->htmlCheckerPathField, &QLineEdit::textEdited, this, &TWPreferencesPanelController::inputHTMLCheckerPath);
    connect(ui->htmlCheckerOptionsField, &QLineEdit::textEdited, this, &TWPreferencesPanelController::inputHTMLCheckerOptions);
    connect(ui->cssCheckerPathField, &QLineEdit::textEdited, this, &TWPreferencesPanelController::inputCSSCheckerPath);
    connect(ui->cssCheckerOptionsField, &QLineEdit::textEdited, this, &TWPreferencesPanelController::inputCSSCheckerOptions);
    connect(ui->defaultBaseURLButton, &QPushButton::clicked, this, &TWPreferencesPanelController::chooseBaseURL);
    connect(ui->htmlCheckerPathButton, &QPushButton::clicked, this, &TWPreferencesPanelController::chooseHTMLCheckerPath);
    connect(ui->cssCheckerPathButton, &QPushButton::clicked, this, &TWPreferencesPanelController::chooseCSSCheckerPath);
    connect(ui->textEncodingMenu, &QComboBox::activated, this, &TWPreferencesPanelController::chooseTextEncoding);
    connect(ui->returnCodeMenu, &QComboBox::activated, this, &TWPreferencesPanelController::chooseReturnCode);
    connect(ui->suspendRenderButton, &QCheckBox::clicked, this, &TWPreferencesPanelController::suspendRenderPressed);
    connect(ui->suspendTagColoringButton, &QCheckBox::clicked, this, &TWPreferencesPanelController::suspendTagColoringPressed);
    // A suspend time counts only once entered.
    connect(ui->suspendTimeField, &QLineEdit::editingFinished, this, &TWPreferencesPanelController::inputSuspendTime);
    connect(ui->addEBButton, &QPushButton::clicked, this, &TWPreferencesPanelController::addExBrowser);
    connect(ui->removeEBButton, &QPushButton::clicked, this, &TWPreferencesPanelController::removeExBrowser);
    connect(browsersModel, &TWExBrowserTableModel::rowsDropped, this, &TWPreferencesPanelController::moveRowsOfArray);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, this, &QWidget::close);

    ui->exBrowsersTableView->setModel(browsersModel);
    ui->exBrowsersTableView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    ui->exBrowsersTableView->horizontalHeader()->setStretchLastSection(true);
    ui->exBrowsersTableView->verticalHeader()->hide();
    awakeFromNib();
}

TWPreferencesPanelController::~TWPreferencesPanelController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWPreferencesPanelController::awakeFromNib()
{
    for (const FontKind kind : fontKinds)
        showFont(kind);
    ui->editorTextColorWell->setColor(preferences->editorTextColor());
    ui->editorBGColorWell->setColor(preferences->editorBGColor());
    {
        const QSignalBlocker quiet(ui->editorOpacitySlider);
        ui->editorOpacitySlider->setValue(int(preferences->editorBGAlpha() * percent + 0.5));
    }
    ui->editorOpacityText->setText(tr("%1 %").arg(ui->editorOpacitySlider->value()));
    ui->defaultBaseURLField->setText(preferences->defaultBaseURL());
    const auto select = [](QComboBox *menu, int code) { menu->setCurrentIndex(code >= 0 && code < menu->count() ? code : 0); };
    select(ui->textEncodingMenu, preferences->textEncoding());
    select(ui->returnCodeMenu, preferences->returnCode());
    ui->suspendRenderButton->setChecked(preferences->isSuspendingRender());
    ui->suspendTagColoringButton->setChecked(preferences->isSuspendingTagColoring());
    ui->suspendTimeField->setText(QString::number(preferences->suspendTime(), 'f', suspendTimeDecimals));
    setSuspendTimeFieldEnabled();
    ui->htmlCheckerPathField->setText(preferences->htmlCheckerPath());
    ui->htmlCheckerOptionsField->setText(preferences->htmlCheckerOptions());
    ui->cssCheckerPathField->setText(preferences->cssCheckerPath());
    ui->cssCheckerOptionsField->setText(preferences->cssCheckerOptions());
    setButtonsState();
    TWWindowState::setFrameUsingName(this, TWFrameName::preferencesPanel, defaultPosition);
}

void TWPreferencesPanelController::runPreferencesPanel()
{
    show();
    raise();
    activateWindow();
}

// Fonts ---------------------------------------------------------------------------------------

TWPreferencesPanelController::FontControls TWPreferencesPanelController::fontControls(FontKind kind) const
{
    switch (kind) {
    case viewerFont:
        return {ui->viewerFontField, ui->viewerFontSizeMenu, ui->viewerFontButton};
    case viewerFixedFont:
        return {ui->viewerFixedFontField, ui->viewerFixedFontSizeMenu, ui->viewerFixedFontButton};
    case editorFont:
        return {ui->editorFontField, ui->editorFontSizeMenu, ui->editorFontButton};
    case templateFont:
        return {ui->templateFontField, ui->templateFontSizeMenu, ui->templateFontButton};
    case cssFont:
        break;
    }
    return {ui->cssFontField, ui->cssFontSizeMenu, ui->cssFontButton};
}

QFont TWPreferencesPanelController::font(FontKind kind) const
{
    return (preferences->*fontPreferences[kind].get)();
}

void TWPreferencesPanelController::setFont(FontKind kind, const QFont &font)
{
    (preferences->*fontPreferences[kind].set)(font);
}

void TWPreferencesPanelController::applyFont(FontKind kind)
{
    switch (kind) {
    case viewerFont:
    case viewerFixedFont:
        changeWebPref();
        break;
    case editorFont:
        TWEditWindowController::sharedEditWindowController()->changeFont(preferences->editorFont());
        break;
    case templateFont:
        TWTemplateWindowController::sharedTemplateController()->changeFont(preferences->templateFont());
        break;
    case cssFont:
        TWCSSWindowController::sharedCSSController()->changeFont(preferences->cssFont());
        break;
    }
}

void TWPreferencesPanelController::showFont(FontKind kind)
{
    const QFont shown = font(kind);
    const FontControls controls = fontControls(kind);
    // The family the font resolves to here, not an alias such as "monospace".
    controls.field->setText(QFontInfo(shown).family());
    controls.field->setCursorPosition(0);
    controls.size->setEditText(QString::number(TWPreferences::fontSize(shown)));
}

void TWPreferencesPanelController::chooseFont(FontKind kind)
{
    if (!fontPanel) {
        fontPanel = new QFontDialog(this);
        connect(fontPanel, &QFontDialog::fontSelected, this, [this](const QFont &chosen) { changeFont(fontPanelKind, chosen); });
    }
    fontPanelKind = kind;
    fontPanel->setCurrentFont(font(kind));
    fontPanel->show();
    fontPanel->raise();
    fontPanel->activateWindow();
}

void TWPreferencesPanelController::changeFont(FontKind kind, const QFont &chosen)
{
    // The chooser started from the preference's font, so what the user did not change stays.
    QFont changed = chosen;
    if (changed.pointSizeF() <= 0 || changed.pointSizeF() > largestFontSize)
        changed.setPointSizeF(font(kind).pointSizeF());
    setFont(kind, changed);
    showFont(kind);
    applyFont(kind);
}

void TWPreferencesPanelController::changeFontSize(FontKind kind)
{
    // Like reading an integer: "12.5" is 12, text is 0.
    bool ok = false;
    const double typed = fontControls(kind).size->currentText().trimmed().toDouble(&ok);
    const int size = ok && typed > 0 && typed < largestFontSize + 1 ? int(typed) : 0;
    if (size > 0 && size != TWPreferences::fontSize(font(kind))) {
        QFont sized = font(kind);
        sized.setPointSizeF(size);
        setFont(kind, sized);
    }
    if (fontPanel && fontPanelKind == kind)
        fontPanel->setCurrentFont(font(kind));
    showFont(kind);
    applyFont(kind);
}

void TWPreferencesPanelController::changeWebPref()
{
    TWWebPreferences::apply(*preferences);
}

// Editor colours ------------------------------------------------------------------------------

void TWPreferencesPanelController::changeEditorTextColor()
{
    preferences->setEditorTextColor(ui->editorTextColorWell->color());
    TWEditorTextView *text = TWEditWindowController::sharedEditWindowController()->textView();
    text->setEditorTextColor(preferences->editorTextColor());
    text->setTagColoring(preferences->tagColoring());
}

void TWPreferencesPanelController::changeEditorBackgroundColor()
{
    preferences->setEditorBGColor(ui->editorBGColorWell->color());
    TWEditWindowController::sharedEditWindowController()->changeBGColor(preferences->editorBGColorWithAlpha());
}

void TWPreferencesPanelController::changeEditorOpacity()
{
    preferences->setEditorBGAlpha(float(ui->editorOpacitySlider->value() / percent));
    ui->editorOpacityText->setText(tr("%1 %").arg(ui->editorOpacitySlider->value()));
    TWEditWindowController::sharedEditWindowController()->changeBGColor(preferences->editorBGColorWithAlpha());
}

// Texts, paths and pop-ups --------------------------------------------------------------------

void TWPreferencesPanelController::inputBaseURL()
{
    preferences->setDefaultBaseURL(ui->defaultBaseURLField->text());
}

void TWPreferencesPanelController::inputHTMLCheckerPath()
{
    preferences->setHTMLCheckerPath(ui->htmlCheckerPathField->text());
}

void TWPreferencesPanelController::inputHTMLCheckerOptions()
{
    preferences->setHTMLCheckerOptions(ui->htmlCheckerOptionsField->text());
}

void TWPreferencesPanelController::inputCSSCheckerPath()
{
    preferences->setCSSCheckerPath(ui->cssCheckerPathField->text());
}

void TWPreferencesPanelController::inputCSSCheckerOptions()
{
    preferences->setCSSCheckerOptions(ui->cssCheckerOptionsField->text());
}

bool TWPreferencesPanelController::choosePath(QLineEdit *field, bool asURL)
{
    const QStringList paths = TWPanels::runOpenPanel(this, {});
    if (paths.isEmpty())
        return false;
    field->setText(asURL ? TWPageComposer::fileURL(paths.first()).toString() : paths.first());
    return true;
}

void TWPreferencesPanelController::chooseBaseURL()
{
    if (choosePath(ui->defaultBaseURLField, true))
        inputBaseURL();
}

void TWPreferencesPanelController::chooseHTMLCheckerPath()
{
    if (choosePath(ui->htmlCheckerPathField, false))
        inputHTMLCheckerPath();
}

void TWPreferencesPanelController::chooseCSSCheckerPath()
{
    if (choosePath(ui->cssCheckerPathField, false))
        inputCSSCheckerPath();
}

void TWPreferencesPanelController::chooseTextEncoding()
{
    const int index = ui->textEncodingMenu->currentIndex();
    preferences->setTextEncoding(index >= TWTextEncoding::shiftJIS && index <= TWTextEncoding::utf8 ? index : TWTextEncoding::shiftJIS);
}

void TWPreferencesPanelController::chooseReturnCode()
{
    const int index = ui->returnCodeMenu->currentIndex();
    preferences->setReturnCode(index >= TWReturnCode::cr && index <= TWReturnCode::dos ? index : TWReturnCode::cr);
}

// Suspension ----------------------------------------------------------------------------------

void TWPreferencesPanelController::suspendRenderPressed()
{
    preferences->setSuspendingRender(ui->suspendRenderButton->isChecked());
    setSuspendTimeFieldEnabled();
}

void TWPreferencesPanelController::suspendTagColoringPressed()
{
    preferences->setSuspendingTagColoring(ui->suspendTagColoringButton->isChecked());
    setSuspendTimeFieldEnabled();
}

void TWPreferencesPanelController::setSuspendTimeFieldEnabled()
{
    ui->suspendTimeField->setEnabled(ui->suspendRenderButton->isChecked() || ui->suspendTagColoringButton->isChecked());
}

void TWPreferencesPanelController::inputSuspendTime()
{
    // The model takes only positive numbers; a refused entry shows the time in force again.
    bool ok = false;
    const float seconds = ui->suspendTimeField->text().trimmed().toFloat(&ok);
    if (ok)
        preferences->setSuspendTime(seconds);
    ui->suspendTimeField->setText(QString::number(preferences->suspendTime(), 'f', suspendTimeDecimals));
}

// External browsers ---------------------------------------------------------------------------

void TWPreferencesPanelController::setButtonsState()
{
    const qsizetype count = preferences->exBrowsers().size();
    ui->addEBButton->setEnabled(count < maxExBrowsers);
    ui->removeEBButton->setEnabled(count > 0);
}

void TWPreferencesPanelController::exBrowsersChanged()
{
    browsersModel->reloadData();
    TWAppDelegate::sharedAppDelegate()->setViewOnExBrowserMenu();
    setButtonsState();
}

void TWPreferencesPanelController::addExBrowser()
{
    if (preferences->exBrowsers().size() >= maxExBrowsers) {
        TWBeep();
        return;
    }
    const QStringList chosen = TWPanels::runApplicationPanel(this);
    if (chosen.isEmpty())
        return;
    // Only what can open a page joins the list: an executable, or a desktop entry that says
    // how to start it.
    if (TWExternalBrowser::commandFor(chosen.first(), QLatin1String(probeFile)).isEmpty()) {
        TWBeep();
        return;
    }
    preferences->setExBrowsers(preferences->exBrowsers() + QStringList{chosen.first()});
    exBrowsersChanged();
}

void TWPreferencesPanelController::removeExBrowser()
{
    QList<int> rows;
    for (const QModelIndex &index : ui->exBrowsersTableView->selectionModel()->selectedRows())
        rows << index.row();
    if (rows.isEmpty()) {
        TWBeep();
        return;
    }
    std::sort(rows.begin(), rows.end(), std::greater<>());
    QStringList browsers = preferences->exBrowsers();
    for (const int row : rows)
        if (row < browsers.size())
            browsers.removeAt(row);
    preferences->setExBrowsers(browsers);
    exBrowsersChanged();
}

void TWPreferencesPanelController::moveRowsOfArray(const QList<int> &rows, int row)
{
    QStringList browsers = preferences->exBrowsers();
    TWRowDrag::moveRows(browsers, rows, row);
    preferences->setExBrowsers(browsers);
    exBrowsersChanged();
}

// Closing -------------------------------------------------------------------------------------

void TWPreferencesPanelController::closeEvent(QCloseEvent *event)
{
    preferencesPanelIsClosing();
    QWidget::closeEvent(event);
}

void TWPreferencesPanelController::preferencesPanelIsClosing()
{
    inputBaseURL();
    inputHTMLCheckerPath();
    inputHTMLCheckerOptions();
    inputCSSCheckerPath();
    inputCSSCheckerOptions();
    preferences->savePrefs();
    saveWindowProperties();
    // The frame too reaches the disk now, not at the next save of the preferences.
    TWUserDefaults::standardUserDefaults()->synchronize();
}

void TWPreferencesPanelController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::preferencesPanel);
}
