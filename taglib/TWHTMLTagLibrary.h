#pragma once

#include <QColor>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class TWHTMLTag;
class TWCommentTag;
class TWGenericTag;
class TWQuotation;

// The one ordered list of tag records the application shares: its default set, the list
// operations of the library window, unique shortcut keys, the colours tag colouring gives each
// element name, and its text form (kept in the preferences and in .tlib files).
class TWHTMLTagLibrary
{
public:
    using Tag = std::shared_ptr<TWHTMLTag>;

    static TWHTMLTagLibrary *sharedTagLibrary();

    // Loads the text kept in the preferences, or the default set when there is none.
    TWHTMLTagLibrary();
    ~TWHTMLTagLibrary();
    TWHTMLTagLibrary(const TWHTMLTagLibrary &) = delete;
    TWHTMLTagLibrary &operator=(const TWHTMLTagLibrary &) = delete;

    const QList<Tag> &tagList() const { return tags; }
    TWHTMLTag *commentTag() const;
    TWHTMLTag *genericTag() const;

    // The bundle's default library when there is one, else the built-in set.
    void setDefaultTags();
    // The built-in set of eight records: comment, generic tag, quotation, b, i, br, img, a.
    void setBuiltInTags();

    QStringList titleList() const;
    int numberOfTags() const { return int(tags.size()); }
    TWHTMLTag *tagAtIndex(int index) const;
    int addNewTag();
    // Answers the copy's index, or -1 (with a beep) for a special tag.
    int duplicateTagAtIndex(int index);
    // Beeps and keeps a special tag.
    void deleteTagAtIndex(int index);
    void moveRowsOfArray(const QList<int> &rows, int target);
    // Whether the record may take the key (its first character): free, or its own already.
    bool isShortcutKey(const QString &key, const TWHTMLTag *record) const;

    // Tells the menus, the palette and the coloured texts that the list changed.
    void validateTagListChange();
    void setUpTagColor();
    QColor genericTagColor() const;
    QColor colorForTag(const QString &name) const;
    // Changes with every new set of colours.
    int colorsGeneration() const { return generation; }
    const QStringList &coloringTagList() const { return coloringTags; }
    const QList<QColor> &coloringColorList() const { return coloringColors; }

    // The tag library text of the list.
    QString propertyListString() const;
    // Replaces the list by the records of a tag library text. A text that is not a list of
    // record texts leaves the library as it was and answers false; *error then says why.
    bool loadFromPropertyListDictionary(const QString &text, QString *error = nullptr);

    // When the stored library text could not be read at start: where it was kept (a file in
    // the data folder), and why it could not be read; otherwise both empty.
    const QString &setAsideFileName() const { return setAsideFileNameValue; }
    const QString &setAsideReason() const { return setAsideReasonValue; }

    // What the change of the list reaches: the insert-tag menus and palette are rebuilt, then
    // (after the colours are worked out) the coloured texts are recoloured. The application
    // installs these.
    static void setDependants(std::function<void()> rebuildMenus, std::function<void()> recolorTexts);

private:
    static QString setAside(const QString &text);
    static bool isShortcutKeyAvailable(const QString &key, const TWHTMLTag *record, const QList<Tag> &list);

    QList<Tag> tags;
    QStringList coloringTags;
    QList<QColor> coloringColors;
    // Element names folded to one case, with the colour of their first record.
    QHash<QString, QColor> colorsByName;
    std::shared_ptr<TWCommentTag> comment;
    std::shared_ptr<TWGenericTag> generic;
    std::shared_ptr<TWQuotation> quotation;
    int generation = 0;
    QString setAsideFileNameValue;
    QString setAsideReasonValue;
};
