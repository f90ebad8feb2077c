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
