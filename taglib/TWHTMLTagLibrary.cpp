#include "taglib/TWHTMLTagLibrary.h"

#include "app/TWFileExtensions.h"
#include "platform/TWAtomicFile.h"
#include "platform/TWBeep.h"
#include "platform/TWColorBytes.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWOldStylePropertyList.h"
#include "platform/TWPaths.h"
#include "platform/TWRowDrag.h"
#include "platform/TWTextKeys.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWCommentTag.h"
#include "taglib/TWGenericTag.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWQuotation.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QVariantMap>

#include <algorithm>

namespace {

TWHTMLTagLibrary *sharedInstance = nullptr;
std::function<void()> rebuildMenusHook;
std::function<void()> recolorTextsHook;

constexpr char defaultLibraryResource[] = ":/default.tlib";
// Where a stored library text that cannot be read is kept.
constexpr char setAsideFileFormat[] = "Unreadable Tag Library %1.%2";
constexpr char setAsideStampFormat[] = "yyyy-MM-dd hh.mm.ss";
constexpr char setAsideKey[] = "Unreadable HTML Tag Library";

// Keys of a record in the tag library text.
constexpr char typeKey[] = "type";
constexpr char nameKey[] = "name";
constexpr char tagKey[] = "tag";
constexpr char firstTagKey[] = "first tag";
constexpr char secondTagKey[] = "second tag";
constexpr char includeInMenuKey[] = "include in menu";
constexpr char menuTitleKey[] = "menu title";
constexpr char shortcutKeyKey[] = "shortcut key";
constexpr char useSpecificColorKey[] = "use specific color";
constexpr char tagColorKey[] = "tag color";

// Type codes that stand for the special tags in the text.
constexpr int genericTypeCode = 3;
constexpr int commentTypeCode = 4;
constexpr int quotationTypeCode = 5;

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

// The integer a text starts with, as the platform reads a number from text ("12ab" is 12,
// "ab" is 0).
int leadingInteger(const QString &text)
{
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    if (end < trimmed.size() && (trimmed[end] == QLatin1Char('-') || trimmed[end] == QLatin1Char('+')))
        ++end;
    while (end < trimmed.size() && trimmed[end].isDigit() && trimmed[end].unicode() < 128)
        ++end;
    bool ok = false;
    const int value = trimmed.left(end).toInt(&ok);
    return ok ? value : 0;
}

QVariantMap recordDictionary(const TWHTMLTag &tag)
{
    int type = tag.type();
    if (tag.isGenericTag())
        type = genericTypeCode;
    else if (tag.isCommentTag())
        type = commentTypeCode;
    else if (tag.isQuotation())
        type = quotationTypeCode;
    QVariantMap record;
    record.insert(key(typeKey), QString::number(type));
    record.insert(key(nameKey), tag.name());
    record.insert(key(tagKey), tag.tag());
    record.insert(key(firstTagKey), tag.firstTag());
    record.insert(key(secondTagKey), tag.secondTag());
    record.insert(key(includeInMenuKey), TWFlag::string(tag.includeInMenu()));
    record.insert(key(menuTitleKey), tag.title());
    record.insert(key(shortcutKeyKey), tag.shortcutKey());
    record.insert(key(useSpecificColorKey), TWFlag::string(tag.useSpecificColor()));
    record.insert(key(tagColorKey), TWColorBytes::bytesFromColor(tag.tagColor(), false));
    return record;
}

} // namespace

TWHTMLTagLibrary *TWHTMLTagLibrary::sharedTagLibrary()
{
    if (!sharedInstance) {
        // Registered once made: records made while the library is made must not ask for it.
        sharedInstance = new TWHTMLTagLibrary();
        TWPreferences::setTagLibraryTextSource([] { return sharedTagLibrary()->propertyListString(); });
    }
    return sharedInstance;
}

TWHTMLTagLibrary::TWHTMLTagLibrary()
    : comment(std::make_shared<TWCommentTag>())
    , generic(std::make_shared<TWGenericTag>())
    , quotation(std::make_shared<TWQuotation>())
{
    const std::optional<QString> &text = TWPreferences::sharedPref()->tagLibraryArray();
    if (!text) {
        setDefaultTags();
        return;
    }
    if (loadFromPropertyListDictionary(*text, &setAsideReasonValue))
        return;
    // A stored text that cannot be read leaves the library to its default set rather than
    // empty; the user's text is kept aside first, since the next quit stores the library in
    // its place.
    setAsideFileNameValue = setAside(*text);
    setDefaultTags();
}

QString TWHTMLTagLibrary::setAside(const QString &text)
{
    const QString stamp = QDateTime::currentDateTime().toString(QLatin1String(setAsideStampFormat));
    const QString path = TWApplicationDataFolder() + QLatin1Char('/')
        + QString::fromLatin1(setAsideFileFormat).arg(stamp, QLatin1String(TWExtension::tagLibrary));
    QDir().mkpath(TWApplicationDataFolder());
    if (TWWriteFileAtomically(path, text.toUtf8()))
        return path;
    // Nowhere to write it: it stays in the store, under a key the library never writes.
    TWUserDefaults::standardUserDefaults()->setObject(text, QLatin1String(setAsideKey));
    return TWUserDefaults::standardUserDefaults()->fileName();
}

TWHTMLTagLibrary::~TWHTMLTagLibrary()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
}

TWHTMLTag *TWHTMLTagLibrary::commentTag() const
{
    return comment.get();
}

TWHTMLTag *TWHTMLTagLibrary::genericTag() const
{
    return generic.get();
}

void TWHTMLTagLibrary::setDefaultTags()
{
    QFile resource{QLatin1String(defaultLibraryResource)};
    if (resource.open(QIODevice::ReadOnly) && loadFromPropertyListDictionary(QString::fromUtf8(resource.readAll())))
        return;
    setBuiltInTags();
}

void TWHTMLTagLibrary::setBuiltInTags()
{
    const QColor blue = QColor::fromRgbF(0, 0, 1);
    const QColor green = QColor::fromRgbF(0, 1, 0);
    const auto localised = [](const char *textKey) { return TWLocalizedString(textKey); };
    const auto titled = [](const char *format, const char *textKey) {
        return QString::fromLatin1(format).arg(TWLocalizedString(textKey));
    };
    tags << comment << generic << quotation;
    tags << std::make_shared<TWHTMLTag>(TWHTMLTag::pairedType, QStringLiteral("b"), localised(TWTextKey::boldFace),
                                        QStringLiteral("<b>"), QStringLiteral("</b>"), true, false, blue,
                                        QStringLiteral("Bold Face  <b>"));
    tags << std::make_shared<TWHTMLTag>(TWHTMLTag::pairedType, QStringLiteral("i"), localised(TWTextKey::italic),
                                        QStringLiteral("<i>"), QStringLiteral("</i>"), true, false, blue,
                                        QStringLiteral("Italic  <i>"));
    tags << std::make_shared<TWHTMLTag>(TWHTMLTag::singleType, QStringLiteral("br"), localised(TWTextKey::lineBreak),
                                        QStringLiteral("<br>"), QString(), true, true, blue,
                                        titled("%1  <br>", TWTextKey::lineBreak));
    tags << std::make_shared<TWHTMLTag>(TWHTMLTag::singleType, QStringLiteral("img"), localised(TWTextKey::image),
                                        QStringLiteral("<img src=\"\" width= height= alt=\"\">"), QString(), true, true,
                                        green, titled("%1  <img =...>", TWTextKey::image));
    tags << std::make_shared<TWHTMLTag>(TWHTMLTag::pairedType, QStringLiteral("a"), localised(TWTextKey::hyperlink),
                                        QStringLiteral("<a href =\"\">"), QStringLiteral("</a>"), true, true, blue,
                                        titled("%1  <a href=...", TWTextKey::link));
}

QStringList TWHTMLTagLibrary::titleList() const
{
    QStringList titles;
    for (const Tag &tag : tags)
        titles << tag->title();
    return titles;
}

TWHTMLTag *TWHTMLTagLibrary::tagAtIndex(int index) const
{
    if (index < 0 || index >= tags.size())
        return nullptr;
    return tags.at(index).get();
}

int TWHTMLTagLibrary::addNewTag()
{
    tags << std::make_shared<TWHTMLTag>();
    return int(tags.size()) - 1;
}

int TWHTMLTagLibrary::duplicateTagAtIndex(int index)
{
    const TWHTMLTag *source = tagAtIndex(index);
    if (!source || source->isSpecialTag()) {
        TWBeep();
        return -1;
    }
    auto copy = std::make_shared<TWHTMLTag>();
    copy->copyFromTag(*source);
    if (index == tags.size() - 1) {
        tags << copy;
        return int(tags.size()) - 1;
    }
    tags.insert(index + 1, copy);
    return index + 1;
}

void TWHTMLTagLibrary::deleteTagAtIndex(int index)
{
    const TWHTMLTag *tag = tagAtIndex(index);
    if (!tag || tag->isSpecialTag()) {
        TWBeep();
        return;
    }
    tags.removeAt(index);
}

void TWHTMLTagLibrary::moveRowsOfArray(const QList<int> &rows, int target)
{
    TWRowDrag::moveRows(tags, rows, target);
}

bool TWHTMLTagLibrary::isShortcutKeyAvailable(const QString &key, const TWHTMLTag *record, const QList<Tag> &list)
{
    if (key.isEmpty())
        return true;
    const QString first = key.left(1);
    if (record && record->shortcutKey() == first)
        return true;
    return std::none_of(list.cbegin(), list.cend(), [&first](const Tag &tag) { return tag->shortcutKey() == first; });
}

bool TWHTMLTagLibrary::isShortcutKey(const QString &key, const TWHTMLTag *record) const
{
    return isShortcutKeyAvailable(key, record, tags);
}

void TWHTMLTagLibrary::setDependants(std::function<void()> rebuildMenus, std::function<void()> recolorTexts)
{
    rebuildMenusHook = std::move(rebuildMenus);
    recolorTextsHook = std::move(recolorTexts);
}

void TWHTMLTagLibrary::validateTagListChange()
{
    if (rebuildMenusHook)
        rebuildMenusHook();
    setUpTagColor();
    if (recolorTextsHook)
        recolorTextsHook();
}

void TWHTMLTagLibrary::setUpTagColor()
{
    coloringTags.clear();
    coloringColors.clear();
    colorsByName.clear();
    for (const Tag &tag : std::as_const(tags)) {
        if (tag->isGenericTag() || tag->isQuotation() || !tag->useSpecificColor() || tag->tag().isEmpty()
            || coloringTags.contains(tag->tag()))
            continue;
        coloringTags << tag->tag();
        coloringColors << tag->tagColor();
    }
    // Names are looked up ignoring case: the first entry of a name wins.
    for (qsizetype i = 0; i < coloringTags.size(); ++i) {
        const QString folded = coloringTags.at(i).toCaseFolded();
        if (!colorsByName.contains(folded))
            colorsByName.insert(folded, coloringColors.at(i));
    }
    ++generation;
}

QColor TWHTMLTagLibrary::genericTagColor() const
{
    return generic->tagColor();
}

QColor TWHTMLTagLibrary::colorForTag(const QString &name) const
{
    if (name.isEmpty())
        return genericTagColor();
    const auto found = colorsByName.constFind(name.toCaseFolded());
    return found == colorsByName.cend() ? genericTagColor() : *found;
}

QString TWHTMLTagLibrary::propertyListString() const
{
    QVariantList records;
    for (const Tag &tag : tags)
        records << TWOldStylePropertyList::write(recordDictionary(*tag)).value_or(QString());
    return TWOldStylePropertyList::write(records).value_or(QString());
}

bool TWHTMLTagLibrary::loadFromPropertyListDictionary(const QString &text, QString *error)
{
    const auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    // Every record is read before anything changes: a text that fails anywhere leaves the
    // library whole.
    QString why;
    const std::optional<QVariant> outer = TWOldStylePropertyList::read(text, &why);
    if (!outer)
        return fail(why);
    if (outer->typeId() != QMetaType::QVariantList)
        return fail(QStringLiteral("the text is not a list of records"));
    QList<QVariantMap> records;
    const QVariantList elements = outer->toList();
    for (qsizetype i = 0; i < elements.size(); ++i) {
        const QString which = QStringLiteral("record %1").arg(i + 1);
        if (elements.at(i).typeId() != QMetaType::QString)
            return fail(which + QStringLiteral(" is not the text of a record"));
        const std::optional<QVariant> record = TWOldStylePropertyList::read(elements.at(i).toString(), &why);
        if (!record)
            return fail(which + QStringLiteral(": ") + why);
        if (record->typeId() != QMetaType::QVariantMap)
            return fail(which + QStringLiteral(" is not a dictionary"));
        records << record->toMap();
    }

    QList<Tag> loaded;
    for (const QVariantMap &record : std::as_const(records)) {
        const auto string = [&record](const char *name) -> std::optional<QString> {
            const QVariant value = record.value(key(name));
            return value.typeId() == QMetaType::QString ? std::optional<QString>(value.toString()) : std::nullopt;
        };
        // An entry without a type is read as a plain paired record.
        const int type = string(typeKey) ? leadingInteger(*string(typeKey)) : TWHTMLTag::pairedType;
        Tag tag;
        if (type == genericTypeCode)
            tag = generic;
        else if (type == commentTypeCode)
            tag = comment;
        else if (type == quotationTypeCode)
            tag = quotation;
        else {
            tag = std::make_shared<TWHTMLTag>(TWHTMLTag::pairedType, QString(), QString(), QString(), QString(), true,
                                              false, QColor::fromRgbF(0, 0, 0), QString());
            tag->setType(type);
        }
        if (const auto value = string(nameKey))
            tag->setName(*value);
        if (const auto value = string(tagKey))
            tag->setTag(*value);
        if (const auto value = string(firstTagKey))
            tag->setFirstTag(*value);
        if (const auto value = string(secondTagKey))
            tag->setSecondTag(*value);
        if (const auto value = string(includeInMenuKey))
            tag->setIncludeInMenu(*value == QLatin1String(TWFlag::yes));
        if (const auto value = string(menuTitleKey))
            tag->setTitle(*value);
        // Of two records with one key, the first keeps it.
        if (const auto value = string(shortcutKeyKey); value && isShortcutKeyAvailable(*value, tag.get(), loaded))
            tag->setShortcutKey(*value);
        if (const auto value = string(useSpecificColorKey))
            tag->setUseSpecificColor(*value == QLatin1String(TWFlag::yes));
        // Colour data of another length than three bytes is not a colour: the colour stays.
        const QVariant color = record.value(key(tagColorKey));
        if (color.typeId() == QMetaType::QByteArray) {
            if (const std::optional<QColor> rgb = TWColorBytes::colorFromBytes(color.toByteArray(), false))
                tag->setTagColor(*rgb);
        }
        // A special tag named twice is listed once.
        if (!loaded.contains(tag))
            loaded << tag;
    }
    tags = loaded;
    return true;
}
