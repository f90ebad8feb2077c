#include "taglib/TWHTMLTag.h"

#include "platform/TWBeep.h"

namespace {
constexpr char colorSampleFormat[] = "<%1>";
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
