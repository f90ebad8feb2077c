#pragma once

#include <QColor>
#include <QString>

#include <optional>

// One entry of the tag library: the text inserted when it is chosen (an opening text alone,
// or an opening and a closing text around the selection), how it is listed in the insert-tag
// menus, its shortcut key, and the colour tag colouring gives its element name.
class TWHTMLTag
{
public:
    // Type codes; any other stored code makes the record inert.
    static constexpr int singleType = 1;
    static constexpr int pairedType = 2;

    // A new plain record: a paired "<Tag>"..."</Tag>" in the generic tag's colour. Not to be
    // made while the shared tag library is itself being made.
    TWHTMLTag();
    TWHTMLTag(int type, const QString &tag, const QString &name, const QString &firstTag, const QString &secondTag,
              bool includeInMenu, bool useSpecificColor, const QColor &color, const QString &title);
    virtual ~TWHTMLTag() = default;

    int type() const { return typeValue; }
    virtual void setType(int type) { typeValue = type; }
    const QString &tag() const { return tagValue; }
    // Also sets the colour sample text "<tag>".
    virtual void setTag(const QString &tag);
    const QString &name() const { return nameValue; }
    void setName(const QString &name) { nameValue = name; }
    virtual QString colorSampleTag() const { return colorSampleTagValue; }
    const QString &firstTag() const { return firstTagValue; }
    virtual void setFirstTag(const QString &text) { firstTagValue = text; }
    const QString &secondTag() const { return secondTagValue; }
    virtual void setSecondTag(const QString &text) { secondTagValue = text; }
    bool useSpecificColor() const { return useSpecificColorValue; }
    virtual void setUseSpecificColor(bool flag) { useSpecificColorValue = flag; }
    const QColor &tagColor() const { return tagColorValue; }
    virtual void setTagColor(const QColor &color) { tagColorValue = color.toRgb(); }
    const QString &shortcutKey() const { return shortcutKeyValue; }
    // Keeps only the first character (UTF-16 unit); "" clears the key.
    void setShortcutKey(const QString &key);
    bool hasShortcutKey() const { return !shortcutKeyValue.isEmpty(); }
    bool includeInMenu() const { return includeInMenuValue; }
    void setIncludeInMenu(bool flag) { includeInMenuValue = flag; }
    const QString &title() const { return titleValue; }
    void setTitle(const QString &title) { titleValue = title; }

    virtual bool isCommentTag() const { return false; }
    virtual bool isGenericTag() const { return false; }
    virtual bool isQuotation() const { return false; }
    // The comment, the generic tag and the quotation: their element name, type and insertion
    // texts are fixed, and they can be neither duplicated nor deleted.
    bool isSpecialTag() const { return isCommentTag() || isGenericTag() || isQuotation(); }

    // Makes this record a copy of another, except its shortcut key, which is cleared. The type
    // and the two flags are taken even where this record's own setters would refuse them.
    void copyFromTag(const TWHTMLTag &source);

    // What replaces the selection: the first tag (single), or first tag, selection and second
    // tag (paired). Any other type code beeps and gives nothing.
    std::optional<QString> insertingStringWithSelectedString(const QString &selection) const;

private:
    int typeValue;
    QString tagValue;
    QString nameValue;
    QString colorSampleTagValue;
    QString firstTagValue;
    QString secondTagValue;
    bool useSpecificColorValue;
    QColor tagColorValue;
    QString shortcutKeyValue;
    bool includeInMenuValue;
    QString titleValue;
};
