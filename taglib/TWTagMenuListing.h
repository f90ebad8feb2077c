#pragma once

#include "taglib/TWHTMLTagLibrary.h"

#include <QKeySequence>
#include <QList>
#include <QStringList>

// Which records the insert-tag menus and the palette list: single tags (type 1) on one side,
// paired tags (type 2) on the other, only those included in the menus, and of several with
// one title only the first. A record of any other type is left out with a beep.
struct TWTagMenuListing
{
    QList<TWHTMLTagLibrary::Tag> single;
    QList<TWHTMLTagLibrary::Tag> paired;

    // `singleTaken` and `pairedTaken` are titles already in the menus (the palette's headers).
    static TWTagMenuListing list(const QList<TWHTMLTagLibrary::Tag> &tags, const QStringList &singleTaken = {},
                                 const QStringList &pairedTaken = {});

    // The menu shortcut of a record with a shortcut key: Ctrl+Alt and the key, with Shift when
    // the key is an upper-case letter, so that "k" and "K" are two shortcuts.
    static QKeySequence shortcut(const TWHTMLTag &tag);
    // The text of a menu item that shows a title as it is: a menu takes "&" as the mark of an
    // accelerator key, so it is doubled.
    static QString menuText(const QString &title);
};
