#include "editor/TWEditorTextView.h"

#include "app/TWAppDelegate.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "preferences/TWPreferences.h"

TWEditorTextView::TWEditorTextView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setTabChangesFocus(false);
    if (suspendTimeSeconds < 0.0f)
        suspendTimeSeconds = TWPreferences::sharedPref()->suspendTime();
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

void TWEditorTextView::setString(const QString &text)
{
    setPlainText(text);
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
