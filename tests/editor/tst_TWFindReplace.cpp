// Find, replace and Replace All with its undo and redo, in one view and across the two template
// halves, compared over thousands of random cases with a plain version written from the rules:
// which range each search covers, where the text is split at the selection, the order of the
// places, and the selection after each step. Also: Replace All is one step among the typing
// steps around it.
#include "editor/TWEditorTextView.h"

#include "TWRecordingPreview.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWStringSearch.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "preferences/TWPreferences.h"

#include <QMessageBox>
#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr int rounds = 1500;

// A text as the rules see it: its characters and its selection.
struct Text
{
    QString string;
    TWRange selection;
};

// The search the rules build on, with the options of the find options word.
TWRange search(const QString &text, const QString &f, unsigned options, qsizetype from, qsizetype length)
{
    return TWStringSearch::rangeOfString(text, f, options, {from, length});
}

// A find's first pass, from the selection on; with wrap around, the second, from the other end
// up to and including the selection's start.
TWRange findPass(const Text &t, const QString &f, unsigned options, bool second)
{
    const qsizetype l = t.selection.location, n = t.selection.length, size = t.string.size();
    if (options & TWFindOption::searchUpward)
        return second ? search(t.string, f, options, l, size - l) : search(t.string, f, options, 0, l);
    return second ? search(t.string, f, options, 0, std::min(l + f.size(), size))
                  : search(t.string, f, options, l + n, size - l - n);
}

TWRange findInOne(Text &t, const QString &f, unsigned options)
{
    TWRange found = findPass(t, f, options, false);
    if (!found.found() && (options & TWFindOption::wrapAround))
        found = findPass(t, f, options, true);
    if (found.found())
        t.selection = found;
    return found;
}

// The replace-all record: U, S and V in reverse order of replacement, D in order.
struct Record
{
    QList<qsizetype> u, d;
    QStringList s;
    QList<int> v;
    qsizetype lastLocation = -1;
    int target = -1;
};

// One pass over a text forward (from q) or backward (up to k), replacing as it goes and
// recording each place at offset + its position.
bool pass(QString &text, const QString &f, const QString &r, unsigned options, qsizetype offset, int view,
          Record &record, bool backwards)
{
    bool replaced = false;
    qsizetype q = 0, k = text.size();
    for (;;) {
        const TWRange m = backwards ? search(text, f, options, 0, k) : search(text, f, options, q, text.size() - q);
        if (!m.found())
            return replaced;
        record.u.prepend(offset + m.location);
        record.s.prepend(text.mid(m.location, m.length));
        record.v.prepend(view);
        record.d.append(offset + m.location);
        text.replace(m.location, m.length, r);
        record.lastLocation = m.location;
        record.target = view;
        replaced = true;
        q = m.location + r.size();
        k = m.location;
    }
}

// Replace all in the receiver `texts[receiver]`; with a partner (the template), on through it.
Record replaceAll(QList<Text> &texts, int receiver, const QString &f, const QString &r, unsigned options)
{
    Record record;
    const bool pair = texts.size() == 2;
    const int partner = 1 - receiver;
    const bool top = receiver == 0;
    const bool wrap = options & TWFindOption::wrapAround;
    const QString t = texts[receiver].string;
    const TWRange sel = texts[receiver].selection;
    const auto fullText = [&](bool backwards) {
        QString other = texts[partner].string;
        if (pass(other, f, r, options, 0, partner, record, backwards))
            record.lastLocation = record.u.first();
        texts[partner].string = other;
    };
    QString result;
    if (!(options & TWFindOption::searchUpward)) {
        const TWRange p = search(t, f, options, sel.location, t.size() - sel.location);
        QString a = p.found() ? t.mid(p.location) : QString();
        QString b = p.found() ? t.left(p.location) : t;
        pass(a, f, r, options, b.size(), receiver, record, false);
        if (pair && top)
            fullText(false);
        bool bChanged = false;
        if (wrap) {
            if (pair && !top)
                fullText(false);
            bChanged = pass(b, f, r, options, 0, receiver, record, false);
        }
        if (!bChanged && record.target == receiver)
            record.lastLocation += b.size();
        result = b + a;
    } else {
        const TWRange p = search(t, f, options, 0, sel.end());
        QString h = p.found() ? t.left(p.end()) : QString();
        QString k = p.found() ? t.mid(p.end()) : t;
        pass(h, f, r, options, 0, receiver, record, true);
        if (pair && !top)
            fullText(true);
        bool kChanged = false;
        if (wrap) {
            if (pair && top)
                fullText(true);
            kChanged = pass(k, f, r, options, h.size(), receiver, record, true);
        }
        if (kChanged && record.target == receiver)
            record.lastLocation += h.size();
        result = h + k;
    }
    if (!record.u.isEmpty())
        texts[receiver].string = result;
    return record;
}

// Undo walks U from the front, redo walks D; each selects as the rules say.
TWRange undoAll(QList<Text> &texts, const Record &record, const QString &r)
{
    for (qsizetype i = 0; i < record.u.size(); ++i)
        texts[record.v[i]].string.replace(record.u[i], r.size(), record.s[i]);
    return {record.u.last(), r.size()};
}

TWRange redoAll(QList<Text> &texts, const Record &record, const QString &r)
{
    const qsizetype count = record.d.size();
    for (qsizetype i = 0; i < count; ++i)
        texts[record.v[count - 1 - i]].string.replace(record.d[i], record.s[count - 1 - i].size(), r);
    return {record.d.last(), r.size()};
}

const QStringList pieces = QStringLiteral("a|A|b|\u00E9|e\u0301|\u0301|\u00DF|s|S|\u03A3|\u03C3|\u03C2|\n").split(u'|');

QString randomText(QRandomGenerator &random, int most)
{
    QString text;
    for (int n = int(random.bounded(most + 1)); n > 0; --n)
        text += pieces.at(random.bounded(int(pieces.size())));
    return text;
}

// The count the Replace All report gives, and the report closed.
QString takeReport(QWidget *window)
{
    const QList<QMessageBox *> reports = window->findChildren<QMessageBox *>();
    const QString text = reports.size() == 1 ? reports.first()->text() : QStringLiteral("%1 reports").arg(reports.size());
    qDeleteAll(reports);
    return text;
}

QString shown(const QString &text)
{
    return QString::fromLatin1(text.toUtf8().toPercentEncoding());
}

QString describe(const QList<Text> &texts, const QString &f, const QString &r, unsigned options)
{
    QString message = QStringLiteral("F %1 R %2 options %3").arg(shown(f), shown(r)).arg(options);
    for (const Text &t : texts)
        message += QStringLiteral(" | text %1 sel %2+%3").arg(shown(t.string)).arg(t.selection.location).arg(t.selection.length);
    return message;
}

} // namespace

class tst_TWFindReplace : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QList<TWEditorTextView *> views;
    QList<Text> expected;
    QString context;

    // Compares every view's text and selection with the expected ones.
    bool same(const char *step)
    {
        for (qsizetype i = 0; i < views.size(); ++i) {
            const QString text = views[i]->string();
            const TWRange selection = views[i]->selectedRange();
            if (text != expected[i].string || selection != expected[i].selection) {
                qWarning("%s, view %lld: %s; expected %s", step, (long long)i,
                         qPrintable(describe({{text, selection}}, {}, {}, 0)), qPrintable(describe({expected[i]}, {}, {}, 0)));
                return false;
            }
        }
        return true;
    }

    // The rules' first responder: the other half lets go of its selection.
    void focusExpected(int target)
    {
        if (views.size() == 2)
            expected[1 - target].selection = {0, 0};
    }

    // One random case in the views (one, or the template's two with `receiver` searched from).
    bool runCase(QRandomGenerator &random, int receiver)
    {
        for (qsizetype i = 0; i < views.size(); ++i)
            expected[i] = {randomText(random, 14), {0, 0}};
        if (views.size() == 1) {
            views[0]->setString(expected[0].string);
        } else {
            // Loaded as a template file is, so that the window knows the halves' texts.
            TWTemplateWindowController::sharedTemplateController()->loadTemplate(
                expected[0].string + QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>") + expected[1].string);
            views[0]->setSelectedRange({0, 0});
            views[1]->setSelectedRange({0, 0});
        }
        const qsizetype size = expected[receiver].string.size(), location = random.bounded(size + 1);
        expected[receiver].selection = {location, random.bounded(size - location + 1)};
        views[receiver]->setFocus();
        views[receiver]->setSelectedRange(expected[receiver].selection);
        QString f = randomText(random, 2);
        if (random.bounded(2) && !expected[receiver].string.isEmpty())
            f = expected[receiver].string.mid(random.bounded(expected[receiver].string.size()), 1 + random.bounded(3));
        if (f.isEmpty())
            f = QStringLiteral("a");
        const QString r = random.bounded(4) == 0 ? f + QStringLiteral("b") : randomText(random, 2);
        const unsigned options = random.bounded(8);
        context = describe(expected, f, r, options);

        // A few finds, each from where the last one left the focus and the selection.
        int current = receiver;
        for (int n = int(random.bounded(3)); n > 0; --n) {
            const int beeps = TWBeepCount();
            views[current]->doFindString(f, options);
            const TWRange found = views.size() == 1 ? findInOne(expected[0], f, options) : findInPair(current, f, options);
            if (!same("find") || TWBeepCount() - beeps != (found.found() ? 0 : 1))
                return false;
            if (found.found() && views.size() == 2)
                current = expectedFocus;
        }
        return replaceAllAndBack(current, f, r, options);
    }

    int expectedFocus = 0;

    TWRange findInPair(int receiver, const QString &f, unsigned options)
    {
        const bool upward = options & TWFindOption::searchUpward;
        const bool crosses = upward ? receiver == 1 : receiver == 0;
        const int partner = 1 - receiver;
        const auto whole = [&](int i) {
            return search(expected[i].string, f, options, 0, expected[i].string.size());
        };
        int target = receiver;
        TWRange found = findPass(expected[receiver], f, options, false);
        if (!found.found() && crosses) {
            found = whole(partner);
            target = partner;
        }
        if (!found.found() && (options & TWFindOption::wrapAround)) {
            if (!crosses) {
                found = whole(partner);
                target = partner;
            }
            if (!found.found()) {
                found = findPass(expected[receiver], f, options, true);
                target = receiver;
            }
        }
        if (found.found()) {
            focusExpected(target);
            expected[target].selection = found;
            expectedFocus = target;
        }
        return found;
    }

    bool replaceAllAndBack(int receiver, const QString &f, const QString &r, unsigned options)
    {
        const int beeps = TWBeepCount();
        views[receiver]->doReplaceAllString(f, r, options);
        const Record record = replaceAll(expected, receiver, f, r, options);
        const qsizetype count = record.u.size();
        if (count > 0) {
            focusExpected(record.target);
            expected[record.target].selection = {record.lastLocation, r.size()};
        }
        if (takeReport(views[receiver]->window()) != TWLocalizedString(TWTextKey::xPlacesAreReplaced, int(count))
            || TWBeepCount() - beeps != (count > 0 ? 0 : 1) || !same("replace all"))
            return false;
        if (count == 0)
            return true;
        // Undo, redo and undo again, each walking the texts as the rules do.
        for (int round = 0; round < 2; ++round) {
            views[receiver]->performUndo();
            const TWRange undone = undoAll(expected, record, r);
            const int first = record.v.last();
            focusExpected(first);
            // A selection ends where the text does.
            expected[first].selection = {undone.location, std::min(undone.length, expected[first].string.size() - undone.location)};
            if (!same("undo"))
                return false;
            if (round == 1)
                break;
            views[receiver]->performRedo();
            const TWRange redone = redoAll(expected, record, r);
            focusExpected(record.v.first());
            expected[record.v.first()].selection = redone;
            if (!same("redo"))
                return false;
        }
        return true;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setTagColoring(true);
    }

    void oneViewAgreesWithTheRules()
    {
        TWEditorTextView view;
        view.resize(400, 300);
        view.show();
        views = {&view};
        expected = {Text()};
        QRandomGenerator random(1123);
        for (int round = 0; round < rounds; ++round)
            QVERIFY2(runCase(random, 0), qPrintable(context));
    }

    void templateHalvesAgreeWithTheRules()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        views = {window->topTextView(), window->bottomTextView()};
        expected = {Text(), Text()};
        QRandomGenerator random(2311);
        for (int round = 0; round < rounds; ++round) {
            const int receiver = int(random.bounded(2));
            QVERIFY2(runCase(random, receiver), qPrintable(context));
            // The page is made of what the halves hold now.
            QCOMPARE(window->topTemplateText(), window->topTextView()->string());
            QCOMPARE(window->bottomTemplateText(), window->bottomTextView()->string());
        }
    }

    // Typing before and after a Replace All stays undoable step by step, in order, and the
    // typing after it does not join its step; in the template one step covers both halves.
    void replaceAllIsOneStepAmongTypingSteps_data()
    {
        QTest::addColumn<bool>("inTemplate");
        QTest::newRow("one view") << false;
        QTest::newRow("template halves") << true;
    }
    void replaceAllIsOneStepAmongTypingSteps()
    {
        QFETCH(bool, inTemplate);
        TWEditorTextView single;
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        TWEditorTextView *first = &single;
        TWEditorTextView *second = &single;
        if (inTemplate) {
            window->loadTemplate(QStringLiteral("ab<<TAGWRIGHTTEMPLATEDIVIDER>>ab"));
            first = window->topTextView();
            second = window->bottomTextView();
        } else {
            single.setString(QStringLiteral("ab ab"));
        }
        const auto texts = [&] { return first->string() + u'|' + second->string(); };
        const QString start = texts();
        second->setSelectedRange({second->string().size(), 0});
        second->insertText(QStringLiteral("x"));
        const QString typed = texts();
        first->setSelectedRange({0, 0});
        first->doReplaceAllString(QStringLiteral("ab"), QStringLiteral("Z"), TWFindOption::wrapAround);
        takeReport(first->window());
        const QString replaced = texts();
        QVERIFY(!replaced.contains(QStringLiteral("ab")));
        first->setSelectedRange({first->string().size(), 0});
        first->insertText(QStringLiteral("y"));
        for (const QString &state : {replaced, typed, start}) {
            first->performUndo();
            QCOMPARE(texts(), state);
        }
        second->performRedo();
        second->performRedo();
        QCOMPARE(texts(), replaced);
    }
};

QTEST_MAIN(tst_TWFindReplace)
#include "tst_TWFindReplace.moc"
