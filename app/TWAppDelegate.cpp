#include "app/TWAppDelegate.h"

#include "app/TWDocumentWindow.h"
#include "app/TWFileExtensions.h"
#include "app/TWLineNumberDialog.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <functional>

namespace {

TWAppDelegate *sharedInstance = nullptr;

// What the File > Open panel offers: every kind of document, and text files without an
// extension.
const QStringList &openableExtensions()
{
    static const QStringList extensions = {
        QLatin1String(TWExtension::html),         QLatin1String(TWExtension::htm),
        QLatin1String(TWExtension::shtml),        QLatin1String(TWExtension::css),
        QLatin1String(TWExtension::templateFile), QLatin1String(TWExtension::project),
    };
    return extensions;
}

} // namespace

TWAppDelegate *TWAppDelegate::sharedAppDelegate()
{
    if (!sharedInstance)
        new TWAppDelegate(); // registers itself
    return sharedInstance;
}

TWAppDelegate::TWAppDelegate()
    : QObject(QCoreApplication::instance())
{
    if (!sharedInstance)
        sharedInstance = this;

    // The older record wins when both exist, even without a project file name.
    TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
    std::optional<QVariantMap> record = store->dictionaryForKey(QLatin1String(TWAppDefaultsKey::legacyRecord));
    if (!record)
        record = store->dictionaryForKey(QLatin1String(TWAppDefaultsKey::record));
    if (record) {
        const QVariant name = record->value(QLatin1String(TWAppDefaultsKey::projectFilename));
        if (name.typeId() == QMetaType::QString)
            projectFilenameValue = name.toString();
    }

    createActions();
    TWWindowOrder::shared();
    connect(qApp, &QCoreApplication::aboutToQuit, this, &TWAppDelegate::applicationWillTerminate);
}

TWAppDelegate::~TWAppDelegate()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
}

void TWAppDelegate::createActions()
{
    const auto make = [this](const QString &title, QKeySequence shortcut, auto slot) {
        auto *action = new QAction(title, this);
        action->setShortcut(shortcut);
        // The same action sits in every window's menu bar; its shortcut works from panels too.
        action->setShortcutContext(Qt::ApplicationShortcut);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    newAction = make(tr("&New"), QKeySequence::New, &TWAppDelegate::newDocument);
    openAction = make(tr("&Open..."), QKeySequence::Open, &TWAppDelegate::open);
    saveAction = make(tr("&Save"), QKeySequence::Save, &TWAppDelegate::saveDocument);
    saveAsAction = make(tr("Save &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), &TWAppDelegate::saveDocumentAs);
    insertFileLinkAction = make(tr("Insert &Link to File..."), QKeySequence(), &TWAppDelegate::insertFileLink);
    insertImageAction = make(tr("Insert &Image..."), QKeySequence(), &TWAppDelegate::insertImage);
    quitAction = make(tr("&Quit"), QKeySequence::Quit, [] { QCoreApplication::exit(0); });
    quitAction->setMenuRole(QAction::QuitRole);

    // Editing commands go to the text view or field that has the keyboard focus; an editor
    // text view undoes through its own history (the template halves share one).
    const auto editAction = [&make](const QString &title, QKeySequence::StandardKey key, auto onText, auto onLine) {
        return make(title, key, [onText, onLine] {
            QWidget *focus = QApplication::focusWidget();
            if (auto *text = qobject_cast<QPlainTextEdit *>(focus))
                std::invoke(onText, text);
            else if (auto *line = qobject_cast<QLineEdit *>(focus))
                std::invoke(onLine, line);
        });
    };
    const auto undoText = [](QPlainTextEdit *text) {
        if (auto *editor = qobject_cast<TWEditorTextView *>(text))
            editor->performUndo();
        else
            text->undo();
    };
    const auto redoText = [](QPlainTextEdit *text) {
        if (auto *editor = qobject_cast<TWEditorTextView *>(text))
            editor->performRedo();
        else
            text->redo();
    };
    undoAction = editAction(tr("&Undo"), QKeySequence::Undo, undoText, &QLineEdit::undo);
    redoAction = editAction(tr("&Redo"), QKeySequence::Redo, redoText, &QLineEdit::redo);
    cutAction = editAction(tr("Cu&t"), QKeySequence::Cut, &QPlainTextEdit::cut, &QLineEdit::cut);
    copyAction = editAction(tr("&Copy"), QKeySequence::Copy, &QPlainTextEdit::copy, &QLineEdit::copy);
    pasteAction = editAction(tr("&Paste"), QKeySequence::Paste, &QPlainTextEdit::paste, &QLineEdit::paste);
    selectAllAction = editAction(tr("Select &All"), QKeySequence::SelectAll, &QPlainTextEdit::selectAll,
                                 &QLineEdit::selectAll);

    autoIndentMenu = make(tr("Auto &Indent"), QKeySequence(), &TWAppDelegate::toggleAutoIndentation);
    autoIndentMenu->setCheckable(true);
    jumpToLineAction = make(tr("&Jump to Line..."), QKeySequence(Qt::CTRL | Qt::Key_L), &TWAppDelegate::askForLineNumber);

    applyTemplateMenu = make(tr("Apply &Template"), QKeySequence(), &TWAppDelegate::toggleApplyTemplate);
    applyTemplateMenu->setCheckable(true);

    showEditWindowAction = make(tr("&HTML"), QKeySequence(Qt::CTRL | Qt::Key_1), &TWAppDelegate::showEditWindow);
    showTemplateWindowAction
        = make(tr("&Template"), QKeySequence(Qt::CTRL | Qt::Key_2), &TWAppDelegate::showTemplateWindow);
    showCSSWindowAction = make(tr("&Style Sheet"), QKeySequence(Qt::CTRL | Qt::Key_3), &TWAppDelegate::showCSSWindow);
}

void TWAppDelegate::populateMenuBar(QMenuBar *menuBar)
{
    QMenu *file = menuBar->addMenu(tr("&File"));
    file->addAction(newAction);
    file->addAction(openAction);
    file->addSeparator();
    file->addAction(saveAction);
    file->addAction(saveAsAction);
    file->addSeparator();
    file->addAction(insertFileLinkAction);
    file->addAction(insertImageAction);
    file->addSeparator();
    file->addAction(quitAction);
    connect(file, &QMenu::aboutToShow, this, &TWAppDelegate::updateInsertActions);

    QMenu *edit = menuBar->addMenu(tr("&Edit"));
    edit->addAction(undoAction);
    edit->addAction(redoAction);
    edit->addSeparator();
    edit->addAction(cutAction);
    edit->addAction(copyAction);
    edit->addAction(pasteAction);
    edit->addAction(selectAllAction);
    edit->addSeparator();
    edit->addAction(autoIndentMenu);
    edit->addAction(jumpToLineAction);

    QMenu *preview = menuBar->addMenu(tr("&Preview"));
    preview->addAction(applyTemplateMenu);

    QMenu *window = menuBar->addMenu(tr("&Window"));
    window->addAction(showEditWindowAction);
    window->addAction(showTemplateWindowAction);
    window->addAction(showCSSWindowAction);
}

void TWAppDelegate::applicationWillFinishLaunching()
{
    TWPreferences::sharedPref();
    TWTemplateWindowController::sharedTemplateController();
    TWCSSWindowController::sharedCSSController();
    TWEditWindowController::sharedEditWindowController();
}

bool TWAppDelegate::applicationOpenFile(const QString &path)
{
    return openFile(path);
}

void TWAppDelegate::applicationDidFinishLaunching()
{
    TWTemplateWindowController::sharedTemplateController()->loadTemplateAtAppLaunch();
    TWCSSWindowController::sharedCSSController()->loadCSSAtAppLaunch();
    TWEditWindowController::sharedEditWindowController()->loadTextAtAppLaunch();
    launching = false;
}

void TWAppDelegate::applicationWillTerminate()
{
    TWPreferences::sharedPref()->savePrefs();
    saveAppProperties();
    TWEditWindowController::sharedEditWindowController()->saveWindowProperties();
    TWTemplateWindowController::sharedTemplateController()->saveWindowProperties();
    TWCSSWindowController::sharedCSSController()->saveWindowProperties();
    // The preferences flushed the store already; the window state written since must
    // reach the disk too.
    TWUserDefaults::standardUserDefaults()->synchronize();
}

void TWAppDelegate::saveAppProperties()
{
    QVariantMap record;
    record.insert(QLatin1String(TWAppDefaultsKey::projectFilename), projectFilenameValue);
    TWUserDefaults::standardUserDefaults()->setObject(record, QLatin1String(TWAppDefaultsKey::record));
}

bool TWAppDelegate::openFile(const QString &path)
{
    const QString extension = QFileInfo(path).suffix().toLower();
    if (extension == QLatin1String(TWExtension::templateFile))
        return TWTemplateWindowController::sharedTemplateController()->openTemplateFile(path);
    if (extension == QLatin1String(TWExtension::css))
        return TWCSSWindowController::sharedCSSController()->openCSSFile(path);
    return TWEditWindowController::sharedEditWindowController()->openHTMLFile(path);
}

void TWAppDelegate::setAutoIndentationMenu(bool flag)
{
    autoIndentMenu->setChecked(flag);
}

void TWAppDelegate::setApplyTemplateMenuState(bool flag)
{
    applyTemplateMenu->setChecked(flag);
}

TWDocumentWindow *TWAppDelegate::keyDocumentWindow() const
{
    if (auto *active = dynamic_cast<TWDocumentWindow *>(QApplication::activeWindow()))
        return active;
    for (QWidget *window : TWWindowOrder::shared()->orderedWindows()) {
        if (!TWWindowOrder::isWindowVisible(window))
            continue;
        if (auto *document = dynamic_cast<TWDocumentWindow *>(window))
            return document;
    }
    return nullptr;
}

void TWAppDelegate::newDocument()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->newDocument();
}

void TWAppDelegate::open()
{
    const QStringList paths = TWPanels::runOpenPanel(QApplication::activeWindow(), openableExtensions(), true);
    if (!paths.isEmpty())
        openFile(paths.first());
}

void TWAppDelegate::saveDocument()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->saveDocument();
}

void TWAppDelegate::saveDocumentAs()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->saveDocumentAs();
}

void TWAppDelegate::updateInsertActions()
{
    const TWDocumentWindow *window = keyDocumentWindow();
    const bool enabled = window && window->canInsertFiles();
    insertFileLinkAction->setEnabled(enabled);
    insertImageAction->setEnabled(enabled);
}

void TWAppDelegate::insertFileLink()
{
    if (TWDocumentWindow *window = keyDocumentWindow(); window && window->canInsertFiles())
        window->insertFileLink();
}

void TWAppDelegate::insertImage()
{
    if (TWDocumentWindow *window = keyDocumentWindow(); window && window->canInsertFiles())
        window->insertImage();
}

void TWAppDelegate::toggleAutoIndentation()
{
    TWEditWindowController::sharedEditWindowController()->toggleAutoIndentation();
}

void TWAppDelegate::toggleApplyTemplate()
{
    TWTemplateWindowController::sharedTemplateController()->toggleApplyTemplate();
}

void TWAppDelegate::askForLineNumber()
{
    if (!lineNumberDialog)
        lineNumberDialog = new TWLineNumberDialog(QApplication::activeWindow());
    lineNumberDialog->lineNumberTextField()->selectAll();
    if (lineNumberDialog->exec() == QDialog::Accepted)
        jumpToLineNumber(lineNumberDialog->lineNumber());
}

void TWAppDelegate::jumpToLineNumber(int lineNumber)
{
    if (TWEditorTextView *view = TWEditorTextView::textViewToBeEdited())
        view->jumptoLineNumber(lineNumber);
}

void TWAppDelegate::showEditWindow()
{
    TWEditWindowController::sharedEditWindowController()->showWindow();
}

void TWAppDelegate::showTemplateWindow()
{
    TWTemplateWindowController::sharedTemplateController()->showWindow();
}

void TWAppDelegate::showCSSWindow()
{
    TWCSSWindowController::sharedCSSController()->showWindow();
}
