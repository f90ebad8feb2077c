#include "editor/TWEditorTextView.h"

#include "app/TWAppDelegate.h"
#include "app/TWDocumentWindow.h"
#include "app/TWFileExtensions.h"
#include "editor/TWDocumentText.h"
#include "editor/TWEditorTextLayout.h"
#include "editor/TWReplaceAll.h"
#include "editor/TWReplaceAllStep.h"
#include "editor/TWStringSearch.h"
#include "editor/TWLineNumberGutter.h"
#include "editor/TWTagHighlighter.h"
#include "editor/TWTagScanner.h"
#include "editor/TWTextFile.h"
#include "editor/TWUndoHistory.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPreview.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QImageReader>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>
#include <QTimer>

#include <cmath>

namespace {

constexpr char linkOpeningFormat[] = "<a href=\"%1\">";
constexpr char linkClosing[] = "</a>";
constexpr char linkTagName[] = "a";
constexpr char imageFormat[] = "<img src=\"%1\" width=\"%2\" height=\"%3\" alt=\"%4\">";
constexpr char imageTagName[] = "img";
constexpr int dropCaretWidth = 2;
// Comments and declarations take the colour of the library's comment tag.
constexpr char commentName[] = "!--";

// A path goes into an attribute value as it is, except for the two characters that would end
// or garble the value.
QString attributeValue(const QString &text)
{
    QString value = text;
    value.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    value.replace(QLatin1Char('"'), QLatin1String("&quot;"));
    return value;
}

bool isImageFile(const QString &path)
{
    return TWImageExtensions().contains(QFileInfo(path).suffix().toLower());
}

// The local files a drag carries; empty when it carries none (text, web addresses).
QStringList droppedFiles(const QMimeData *data)
{
    QStringList files;
    if (!data || !data->hasUrls())
        return files;
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile())
            return {};
        files << url.toLocalFile();
    }
    return files;
}

QString relativePath(const QString &path)
{
    if (TWPreview *viewer = TWPreview::shared())
        return viewer->relativePathToBaseURL(path);
    return QFileInfo(path).fileName();
}

} // namespace

TWEditorTextView::TWEditorTextView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    auto *text = new QTextDocument(this);
    text->setDocumentLayout(new TWEditorTextLayout(text));
    setDocument(text);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    const TWPreferences *preferences = TWPreferences::sharedPref();
    tagColoringFlag = preferences->tagColoring();
    editorTextColorValue = preferences->editorTextColor();
    if (suspendTimeSeconds < 0.0f)
        suspendTimeSeconds = preferences->suspendTime();
    highlighter = new TWTagHighlighter(this);
    highlighter->colorForTag = [](const QString &name) { return TWHTMLTagLibrary::sharedTagLibrary()->colorForTag(name); };
    highlighter->commentColor = [] { return TWHTMLTagLibrary::sharedTagLibrary()->colorForTag(QLatin1String(commentName)); };
    highlighter->colorsGeneration = [] { return TWHTMLTagLibrary::sharedTagLibrary()->colorsGeneration(); };
    setEditorTextColor(editorTextColorValue);
    gutter = new TWLineNumberGutter(this);
    connect(gutter, &TWLineNumberGutter::widthChanged, this, &TWEditorTextView::placeGutter);
    placeGutter();
    history = new TWUndoHistory(this);
    history->follow(document());
    // Only edits count as changes: loads go through setString, colours never touch the text.
    connect(document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
        if (removed == 0 && added == 0)
            return;
        searchableTextValue.reset();
        if (!loadingText)
            Q_EMIT userEdited();
    });
}

TWEditorTextView *TWEditorTextView::textViewToBeEdited()
{
    for (QWidget *window : TWWindowOrder::shared()->orderedWindows()) {
        if (!TWWindowOrder::isWindowVisible(window))
            continue;
        if (auto *document = dynamic_cast<TWDocumentWindow *>(window))
            return document->activeTextView();
    }
    return nullptr;
}

void TWEditorTextView::setSuspendTime(float seconds)
{
    suspendTimeSeconds = seconds;
}

void TWEditorTextView::setRenderSuspendFlag(bool flag)
{
    renderSuspended = flag;
}

void TWEditorTextView::setTagColoringSuspendFlag(bool flag)
{
    tagColoringSuspended = flag;
}

void TWEditorTextView::setAutoIndentation(bool flag)
{
    autoIndentationFlag = flag;
    TWAppDelegate::sharedAppDelegate()->setAutoIndentationMenu(flag);
}

void TWEditorTextView::toggleAutoIndentation()
{
    setAutoIndentation(!autoIndentationFlag);
}

void TWEditorTextView::setTagColoring(bool flag)
{
    tagColoringFlag = flag;
    if (flag)
        colorText();
    else
        paintTagColors();
}

void TWEditorTextView::setEditorTextColor(const QColor &color)
{
    editorTextColorValue = color.toRgb();
    // Plain text shows in the view's text colour; only tags and comments carry colours.
    QPalette colors = palette();
    colors.setColor(QPalette::Text, editorTextColorValue);
    setPalette(colors);
}

void TWEditorTextView::paintTagColors()
{
    if (!tagColoringFlag) {
        highlighter->clear();
        return;
    }
    if (!highlighter->isEnabled())
        highlighter->recolorAll();
    highlighter->recolor();
}

int TWEditorTextView::typeOfText(QStringView text, qsizetype index)
{
    return TWTagScanner::typeOfText(text, index);
}

TWRange TWEditorTextView::rangeOfCommentInText(QStringView text, qsizetype index)
{
    return TWTagScanner::rangeOfCommentInText(text, index);
}

TWRange TWEditorTextView::rangeOfTagInText(QStringView text, QString &name, qsizetype index)
{
    return TWTagScanner::rangeOfTagInText(text, name, index);
}

TWRange TWEditorTextView::rangeOfPlainText(QStringView text, qsizetype index)
{
    return TWTagScanner::rangeOfPlainText(text, index);
}

QString TWEditorTextView::string() const
{
    // The raw text keeps non-breaking spaces, which the plain-text form would turn into spaces.
    return TWDocumentText::fromDocument(document()->toRawText());
}

QString TWEditorTextView::selectedString() const
{
    return TWDocumentText::fromDocument(textCursor().selectedText());
}

void TWEditorTextView::insertFromMimeData(const QMimeData *source)
{
    if (!source->hasText() || source->hasUrls()) {
        QPlainTextEdit::insertFromMimeData(source);
        return;
    }
    insertText(TWTextFile::convertReturnCodeOfTextToLF(source->text()));
}

QMimeData *TWEditorTextView::createMimeDataFromSelection() const
{
    // Copied and dragged text is the text as written: no-break spaces and separators kept.
    auto *data = new QMimeData;
    data->setText(selectedString());
    return data;
}

void TWEditorTextView::colorText()
{
    if (timerCountValue > 0 || !tagColoringFlag)
        return;
    paintTagColors();
}

void TWEditorTextView::colouringTimerFired()
{
    --timerCountValue;
    colorText();
}

void TWEditorTextView::textDidChange()
{
    // Every change schedules its own timer and none is cancelled: only the firing that finds
    // no other timer pending paints, one suspension time after the last change.
    if (tagColoringSuspended) {
        const int milliseconds = int(std::lround(std::max(0.0f, suspendTimeSeconds) * 1000.0f));
        QTimer::singleShot(milliseconds, this, &TWEditorTextView::colouringTimerFired);
        ++timerCountValue;
    } else {
        colorText();
    }
    if (!autoRenderEnabledFlag)
        return;
    if (TWPreview *viewer = TWPreview::shared()) {
        if (renderSuspended)
            viewer->fireRenderTimer();
        else
            viewer->renderIfAutorender();
    }
}

void TWEditorTextView::setString(const QString &text)
{
    loadingText = true;
    setPlainText(TWDocumentText::toDocument(text));
    loadingText = false;
    // The document's own history went with its old text.
    history->clear();
}

TWRange TWEditorTextView::selectedRange() const
{
    const QTextCursor cursor = textCursor();
    return {cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()};
}

void TWEditorTextView::setSelectedRange(TWRange range)
{
    const qsizetype size = document()->characterCount() - 1;
    const qsizetype start = std::clamp<qsizetype>(range.location, 0, size);
    const qsizetype end = std::clamp<qsizetype>(range.end(), start, size);
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(start));
    cursor.setPosition(int(end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void TWEditorTextView::insertText(const QString &text)
{
    textCursor().insertText(TWDocumentText::toDocument(text));
    ensureCursorVisible();
}

void TWEditorTextView::insertTag(const TWHTMLTag &tag)
{
    const QString selection = selectedString();
    // A record of another kind than single or paired has beeped and gives nothing: the
    // selection is left as it is.
    if (const std::optional<QString> text = tag.insertingStringWithSelectedString(selection))
        insertText(*text);
}

void TWEditorTextView::insertColorCode(const QString &code)
{
    const qsizetype start = selectedRange().location;
    insertText(code);
    setSelectedRange({start, code.size()});
}

QString TWEditorTextView::linkOpeningText(const QString &relativePath)
{
    return QString::fromLatin1(linkOpeningFormat).arg(attributeValue(relativePath));
}

QString TWEditorTextView::imageText(const QString &relativePath, QSize pixels)
{
    return QString::fromLatin1(imageFormat)
        .arg(attributeValue(relativePath))
        .arg(pixels.width())
        .arg(pixels.height())
        .arg(attributeValue(QFileInfo(relativePath).fileName()));
}

void TWEditorTextView::insertLinkForFile(const QString &path)
{
    const TWHTMLTag link(TWHTMLTag::pairedType, QLatin1String(linkTagName), QString(),
                         linkOpeningText(relativePath(path)), QLatin1String(linkClosing), false, false, Qt::black,
                         QString());
    insertTag(link);
}

void TWEditorTextView::insertImageOfFile(const QString &path)
{
    // Only the header is read, for the size.
    QImageReader reader(path);
    const QSize pixels = reader.size();
    if (!reader.canRead() || !pixels.isValid())
        return;
    const TWHTMLTag image(TWHTMLTag::singleType, QLatin1String(imageTagName), QString(),
                          imageText(relativePath(path), pixels), QString(), false, false, Qt::black, QString());
    insertTag(image);
}

void TWEditorTextView::jumptoLineNumber(int lineNumber)
{
    const int target = std::max(lineNumber, 1);
    const QTextBlock block = document()->findBlockByNumber(target - 1);
    const qsizetype position = block.isValid() ? block.position() : document()->characterCount() - 1;
    setSelectedRange({position, 0});
    ensureCursorVisible();
    TWWindowOrder::showWindow(window());
    setFocus(Qt::OtherFocusReason);
}

void TWEditorTextView::setUndoHistory(TWUndoHistory *shared)
{
    if (history->parent() == this)
        delete history;
    history = shared;
}

void TWEditorTextView::performUndo()
{
    history->undo();
}

void TWEditorTextView::performRedo()
{
    history->redo();
}

void TWEditorTextView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Undo)) {
        performUndo();
        return;
    }
    if (event->matches(QKeySequence::Redo)) {
        performRedo();
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn && TWDocumentText::toDocument(event->text()) != event->text()) {
        // A separator typed (or a stand-in): it goes in as the character it is.
        insertText(event->text());
        event->accept();
        return;
    }
    if (isReturn && (event->modifiers() & Qt::ShiftModifier)) {
        // Shift+Return would put a line separator into the text, which files cannot hold:
        // it is an ordinary line break here.
        QKeyEvent plain(event->type(), event->key(), event->modifiers() & ~Qt::ShiftModifier, event->text());
        QPlainTextEdit::keyPressEvent(&plain);
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
    if (isReturn && autoIndentationFlag && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        autoIndentAfterReturn();
}

void TWEditorTextView::inputMethodEvent(QInputMethodEvent *event)
{
    const QString commit = TWDocumentText::toDocument(event->commitString());
    if (commit == event->commitString()) {
        QPlainTextEdit::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent held(event->preeditString(), event->attributes());
    held.setCommitString(commit, event->replacementStart(), event->replacementLength());
    QPlainTextEdit::inputMethodEvent(&held);
    event->accept();
}

void TWEditorTextView::autoIndentAfterReturn()
{
    const QTextCursor cursor = textCursor();
    if (cursor.hasSelection() || cursor.positionInBlock() != 0)
        return;
    // The line the Return ended is the block before; only its text is looked at, so the cost
    // does not grow with the document.
    const QTextBlock previous = cursor.block().previous();
    if (!previous.isValid())
        return;
    const QString line = previous.text();
    qsizetype run = 0;
    while (run < line.size() && (line.at(run) == QLatin1Char(' ') || line.at(run) == QLatin1Char('\t')))
        ++run;
    if (run > 0)
        insertText(line.left(run));
}

void TWEditorTextView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu(event->pos());
    // Undo and redo go through the view's history, which also holds Replace All.
    for (QAction *action : menu->actions()) {
        if (action->objectName() == QLatin1String("edit-undo")) {
            action->disconnect();
            action->setEnabled(history->canUndo());
            connect(action, &QAction::triggered, this, &TWEditorTextView::performUndo);
        } else if (action->objectName() == QLatin1String("edit-redo")) {
            action->disconnect();
            action->setEnabled(history->canRedo());
            connect(action, &QAction::triggered, this, &TWEditorTextView::performRedo);
        }
    }
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

bool TWEditorTextView::isKeepSelection(Qt::KeyboardModifiers modifiers)
{
    return modifiers & Qt::ControlModifier;
}

void TWEditorTextView::clearDragState()
{
    dropSign = false;
    fileDrop = false;
    keepSelection = false;
}

void TWEditorTextView::placeDropSelection(const QPointF &position, Qt::KeyboardModifiers modifiers)
{
    if (isKeepSelection(modifiers)) {
        setSelectedRange(selectionBeforeDragging);
        keepSelection = true;
    } else {
        setTextCursor(cursorForPosition(position.toPoint()));
        keepSelection = false;
    }
    viewport()->update();
}

void TWEditorTextView::dragEnterEvent(QDragEnterEvent *event)
{
    // Every drag starts from idle: a drag that was refused or left without a word (Qt sends
    // nothing more to a view that refused a drag) must not hold on to the drag state.
    clearDragState();
    const QStringList files = droppedFiles(event->mimeData());
    if (files.isEmpty()) {
        QPlainTextEdit::dragEnterEvent(event);
        return;
    }
    selectionBeforeDragging = selectedRange();
    if (files.size() > 1) {
        // Several files at once are refused; nothing more of this drag reaches the view.
        event->ignore();
        return;
    }
    fileDrop = true;
    dropSign = true;
    placeDropSelection(event->position(), event->modifiers());
    event->setDropAction(Qt::LinkAction);
    event->accept();
}

void TWEditorTextView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!fileDrop) {
        QPlainTextEdit::dragMoveEvent(event);
        return;
    }
    if (!dropSign) {
        event->ignore();
        return;
    }
    placeDropSelection(event->position(), event->modifiers());
    event->setDropAction(Qt::LinkAction);
    event->accept();
}

void TWEditorTextView::dragLeaveEvent(QDragLeaveEvent *event)
{
    if (!fileDrop) {
        QPlainTextEdit::dragLeaveEvent(event);
        return;
    }
    setSelectedRange(selectionBeforeDragging);
    clearDragState();
    viewport()->update();
}

void TWEditorTextView::dropEvent(QDropEvent *event)
{
    const QStringList files = droppedFiles(event->mimeData());
    if (files.isEmpty() || !fileDrop) {
        QPlainTextEdit::dropEvent(event);
        return;
    }
    if (!dropSign) {
        clearDragState();
        event->ignore();
        return;
    }
    placeDropSelection(event->position(), event->modifiers());
    const QString file = files.first();
    // Shift drops an image as a link to it.
    if (isImageFile(file) && !(event->modifiers() & Qt::ShiftModifier))
        insertImageOfFile(file);
    else
        insertLinkForFile(file);
    event->setDropAction(Qt::LinkAction);
    event->accept();
    clearDragState();
    viewport()->update();
    // Typing goes on where the file went.
    activateWindow();
    setFocus(Qt::OtherFocusReason);
}

bool TWEditorTextView::shouldDrawInsertionPoint() const
{
    return dropSign && !(keepSelection && selectionBeforeDragging.length > 0);
}

void TWEditorTextView::paintEvent(QPaintEvent *event)
{
    QPlainTextEdit::paintEvent(event);
    // While a file is dragged over the view (usually without the keyboard focus), the drop
    // point is drawn as a caret so the user sees where the file will go.
    if (shouldDrawInsertionPoint() && !hasFocus()) {
        QPainter painter(viewport());
        const QRect caret = cursorRect();
        painter.fillRect(QRect(caret.left(), caret.top(), dropCaretWidth, caret.height()), palette().text());
    }
}

void TWEditorTextView::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeGutter();
}

void TWEditorTextView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    // The numbers are in the text's font, so a new font may need a new width.
    if (event->type() == QEvent::FontChange)
        placeGutter();
}

void TWEditorTextView::placeGutter()
{
    const int width = gutter->gutterWidth();
    if (viewportMargins().left() != width)
        setViewportMargins(width, 0, 0, 0);
    const QRect contents = contentsRect();
    gutter->setGeometry(contents.left(), contents.top(), width, contents.height());
    gutter->setVisible(TWLineNumberGutter::lineNumbersShown());
}

QString TWEditorTextView::loadTextFromFile(const QString &path, bool *ok) const
{
    std::optional<QString> text = TWTextFile::load(path, TWPreferences::sharedPref()->textEncoding());
    if (ok)
        *ok = text.has_value();
    if (!text) {
        TWBeep();
        return string();
    }
    return *text;
}

bool TWEditorTextView::saveText(const QString &text, const QString &path) const
{
    const TWPreferences *preferences = TWPreferences::sharedPref();
    const bool written = TWTextFile::save(text, path, preferences->textEncoding(), preferences->returnCode());
    if (!written)
        TWBeep();
    return written;
}

QString TWEditorTextView::convertReturnCodeOfTextToLF(const QString &text)
{
    return TWTextFile::convertReturnCodeOfTextToLF(text);
}

QString TWEditorTextView::convertReturnCodeOfText(const QString &text, int returnCode)
{
    return TWTextFile::convertReturnCodeOfText(text, returnCode);
}

const QString &TWEditorTextView::searchableText() const
{
    if (!searchableTextValue)
        searchableTextValue = string();
    return *searchableTextValue;
}

TWRange TWEditorTextView::searchPastSelection(QStringView text, const TWStringSearch &search, TWRange selection,
                                              unsigned options)
{
    if (options & TWFindOption::searchUpward)
        return search.find(text, {0, selection.location}, true);
    return search.find(text, {selection.end(), text.size() - selection.end()}, false);
}

TWRange TWEditorTextView::searchWrappedAround(QStringView text, const TWStringSearch &search, TWRange selection,
                                              qsizetype searchLength, unsigned options)
{
    if (options & TWFindOption::searchUpward)
        return search.find(text, {selection.location, text.size() - selection.location}, true);
    // Up to where an occurrence that starts at the selection's start ends, so that the
    // selected occurrence itself is found again.
    return search.find(text, {0, std::min(selection.location + searchLength, text.size())}, false);
}

void TWEditorTextView::showFoundRange(TWRange range)
{
    setSelectedRange(range);
    ensureCursorVisible();
}

TWRange TWEditorTextView::findString(const QString &search, unsigned options)
{
    const QString &text = searchableText();
    const TWStringSearch searching(search, options & TWFindOption::ignoreCase);
    const TWRange selection = selectedRange();
    TWRange found = searchPastSelection(text, searching, selection, options);
    if (!found.found() && (options & TWFindOption::wrapAround))
        found = searchWrappedAround(text, searching, selection, search.size(), options);
    if (found.found())
        showFoundRange(found);
    return found;
}

TWRange TWEditorTextView::replaceString(const QString &search, const QString &replacement, unsigned options)
{
    if (!TWStringSearch::isEquivalent(selectedString(), search, options & TWFindOption::ignoreCase))
        return {TWRange::notFound, 0};
    const qsizetype start = selectedRange().location;
    insertText(replacement);
    const TWRange inserted{start, replacement.size()};
    setSelectedRange(inserted);
    renderIfAutorender();
    return inserted;
}

void TWEditorTextView::doFindString(const QString &search, unsigned options)
{
    if (!findString(search, options).found())
        TWBeep();
}

void TWEditorTextView::doReplaceString(const QString &search, const QString &replacement, unsigned options)
{
    if (!replaceString(search, replacement, options).found())
        TWBeep();
    colorText();
}

void TWEditorTextView::doReplaceAndFind(const QString &search, const QString &replacement, unsigned options)
{
    if (!replaceString(search, replacement, options).found() || !findString(search, options).found())
        TWBeep();
    colorText();
}

void TWEditorTextView::doReplaceAllString(const QString &search, const QString &replacement, unsigned options)
{
    const QString text = searchableText();
    const TWStringSearch searching(search, options & TWFindOption::ignoreCase);
    const TWReplaceAll::Result result
        = TWReplaceAll::inOneText(text, selectedRange(), searching, replacement.size(), options);
    if (result.count() > 0) {
        const TWRange last{result.lastLocation(), replacement.size()};
        auto *step = new TWReplaceAllStep(TWLocalizedString(TWTextKey::replaceAll), {this},
                                          {this, {result.firstLocation(), replacement.size()}}, {this, last});
        history->pushCombinedStep(step, [&] { replacePlaces(text, result.placesIn(TWReplaceAll::receiver), replacement); });
        showFoundRange(last);
        renderIfAutorender();
    } else {
        TWBeep();
    }
    colorText();
    showReplaceAllCount(result.count());
}

void TWEditorTextView::replacePlaces(const QString &text, const QList<TWRange> &places, const QString &replacement)
{
    const QString inserted = TWDocumentText::toDocument(replacement);
    loadingText = true;
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    // From the last place to the first, so that the places before stay where they were.
    for (qsizetype last = places.size() - 1; last >= 0;) {
        qsizetype first = last;
        while (first > 0 && places[first].location - places[first - 1].end() < placesJoinedWithin)
            --first;
        QString region = inserted;
        for (qsizetype place = first; place < last; ++place) {
            region += TWDocumentText::toDocument(text.sliced(places[place].end(), places[place + 1].location - places[place].end()));
            region += inserted;
        }
        cursor.setPosition(int(places[first].location));
        cursor.setPosition(int(places[last].end()), QTextCursor::KeepAnchor);
        if (region.isEmpty())
            cursor.removeSelectedText();
        else
            cursor.insertText(region);
        last = first - 1;
    }
    cursor.endEditBlock();
    loadingText = false;
    Q_EMIT textReplaced();
}

void TWEditorTextView::stepDocument(bool back)
{
    loadingText = true;
    if (back)
        document()->undo();
    else
        document()->redo();
    loadingText = false;
    Q_EMIT textReplaced();
}

void TWEditorTextView::showReplaceAllCount(qsizetype count)
{
    auto *report = new QMessageBox(QMessageBox::NoIcon, TWLocalizedString(TWTextKey::replaceAll),
                                   TWLocalizedString(TWTextKey::xPlacesAreReplaced, int(count)), QMessageBox::Ok,
                                   window());
    report->setAttribute(Qt::WA_DeleteOnClose);
    report->setWindowModality(Qt::WindowModal);
    report->open();
}

void TWEditorTextView::renderIfAutorender()
{
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}
