#include "taglib/TWHTMLTag.h"

#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "taglib/TWHTMLTagLibrary.h"

namespace {
constexpr char colorSampleFormat[] = "<%1>";
// What a new record inserts until the user edits it.
constexpr char newFirstTag[] = "<Tag>";
constexpr char newSecondTag[] = "</Tag>";
} // namespace

TWHTMLTag::TWHTMLTag()
    : TWHTMLTag(pairedType, TWLocalizedString(TWTextKey::tag), TWLocalizedString(TWTextKey::tagName),
                QLatin1String(newFirstTag), QLatin1String(newSecondTag), true, false,
                TWHTMLTagLibrary::sharedTagLibrary()->genericTagColor(), TWLocalizedString(TWTextKey::htmlTag))
{
    // The sample shows the opening text until the element name is first set.
    colorSampleTagValue = QLatin1String(newFirstTag);
}

TWHTMLTag::TWHTMLTag(int type, const QString &tag, const QString &name, const QString &firstTag,
                     const QString &secondTag, bool includeInMenu, bool useSpecificColor, const QColor &color,
                     const QString &title)
    : typeValue(type)
    , tagValue(tag)
    , nameValue(name)
    , colorSampleTagValue(QString::fromLatin1(colorSampleFormat).arg(tag))
    , firstTagValue(firstTag)
    , secondTagValue(secondTag)
    , useSpecificColorValue(useSpecificColor)
    , tagColorValue(color.toRgb())
    , includeInMenuValue(includeInMenu)
    , titleValue(title)
{
}

void TWHTMLTag::setTag(const QString &tag)
{
    tagValue = tag;
    colorSampleTagValue = QString::fromLatin1(colorSampleFormat).arg(tagValue);
}

void TWHTMLTag::setShortcutKey(const QString &key)
{
    shortcutKeyValue = key.left(1);
}

void TWHTMLTag::copyFromTag(const TWHTMLTag &source)
{
    typeValue = source.type();
    setTag(source.tag());
    setName(source.name());
    setFirstTag(source.firstTag());
    setSecondTag(source.secondTag());
    useSpecificColorValue = source.useSpecificColor();
    setTagColor(source.tagColor());
    setShortcutKey(QString());
    includeInMenuValue = source.includeInMenu();
    setTitle(source.title());
}

std::optional<QString> TWHTMLTag::insertingStringWithSelectedString(const QString &selection) const
{
    if (typeValue == singleType)
        return firstTagValue;
    if (typeValue == pairedType)
        return firstTagValue + selection + secondTagValue;
    TWBeep();
    return std::nullopt;
}
