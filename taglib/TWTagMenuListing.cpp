#include "taglib/TWTagMenuListing.h"

#include "platform/TWBeep.h"
#include "taglib/TWHTMLTag.h"

TWTagMenuListing TWTagMenuListing::list(const QList<TWHTMLTagLibrary::Tag> &tags, const QStringList &singleTaken,
                                        const QStringList &pairedTaken)
{
    TWTagMenuListing listing;
    QStringList singleTitles = singleTaken;
    QStringList pairedTitles = pairedTaken;
    for (const TWHTMLTagLibrary::Tag &tag : tags) {
        const bool single = tag->type() == TWHTMLTag::singleType;
        if (!single && tag->type() != TWHTMLTag::pairedType) {
            TWBeep();
            continue;
        }
        if (!tag->includeInMenu())
            continue;
        QStringList &titles = single ? singleTitles : pairedTitles;
        if (titles.contains(tag->title()))
            continue;
        titles << tag->title();
        (single ? listing.single : listing.paired) << tag;
    }
    return listing;
}

QKeySequence TWTagMenuListing::shortcut(const TWHTMLTag &tag)
{
    if (!tag.hasShortcutKey())
        return {};
    const QChar key = tag.shortcutKey().at(0);
    Qt::KeyboardModifiers modifiers = Qt::ControlModifier | Qt::AltModifier;
    if (key.isUpper() && key.toLower() != key)
        modifiers |= Qt::ShiftModifier;
    // Keys are the upper-case character codes; built from the code, not from a text, so that
    // "+" and "," mean themselves rather than separators.
    return QKeySequence(QKeyCombination(modifiers, Qt::Key(key.toUpper().unicode())));
}

QString TWTagMenuListing::menuText(const QString &title)
{
    return QString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}
