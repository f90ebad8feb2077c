// Find, replace and Replace All with its undo and redo, in one view and across the two template
// halves, compared over thousands of random cases with a plain version written from the rules:
// which range each search covers, where the text is split at the selection, the order of the
// places, and the selection after each step; Replace All is one step among the typing steps
// around it.
#include "TWRecordingPreview.h"
#include "documents/TWTemplateText.h"
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
struct Text { QString string; TWRange selection; };
// A place Replace All replaced: in which view, where at that moment, and what it held.
struct Place { int view; qsizetype at; QString was; };

const QStringList pieces = QStringLiteral("a|A|b|\u00E9|e\u0301|\u0301|\u00DF|s|S|\u03A3|\u03C3|\u03C2|\n").split(u'|');

QString randomText(QRandomGenerator &random, int most)
{
    QString text;
    for (int n = int(random.bounded(most + 1)); n > 0; --n)
        text += pieces.at(random.bounded(int(pieces.size())));
    return text;
}

// A text as messages show it, with a selection.
QString shown(const QString &text, TWRange selection = {})
{
    return QStringLiteral("%1 (%2+%3)").arg(QString::fromLatin1(text.toUtf8().toPercentEncoding()), QString::number(selection.location),
                                            QString::number(selection.length));
}

} // namespace

class tst_TWFindReplace : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QList<TWEditorTextView *> views;
    QList<Text> expected;
    QString f, r, context;
    unsigned options = 0;

    bool upward() const { return options & TWFindOption::searchUpward; }
    bool wraps() const { return options & TWFindOption::wrapAround; }
    // After the receiver's part past the selection, a search goes through the other half when
    // it wraps around, or when it goes downward from the top or upward from the bottom.
    bool throughPartner(int receiver) const { return expected.size() == 2 && (wraps() || upward() == (receiver == 1)); }

    TWRange search(const QString &text, qsizetype from, qsizetype to) const { return TWStringSearch::rangeOfString(text, f, options, {from, to - from}); }

    // Shows a range as the views do: the other half lets go of its selection.
    void select(int view, TWRange range)
    {
        if (expected.size() == 2)
            expected[1 - view].selection = {0, 0};
        expected[view].selection = range;
    }

    // Whether the views show the expected texts (and selections); if not, the context tells how.
    bool same(const char *step, bool selections = true)
    {
        QString actual, wanted;
        for (qsizetype i = 0; i < views.size(); ++i) {
            actual += shown(views[i]->string(), views[i]->selectedRange()) + u' ';
            wanted += shown(expected[i].string, selections ? expected[i].selection : views[i]->selectedRange()) + u' ';
        }
        if (actual != wanted)
            context += QStringLiteral("; after %1: %2, expected %3").arg(QLatin1String(step), actual, wanted);
        return actual == wanted;
    }

    // A find: past the receiver's selection, through the other half, then with wrap around the
    // receiver from its other end up to and including the selection's start. Answers the view
    // found in, or -1.
    int findExpected(int receiver)
    {
        const Text &t = expected[receiver];
        const qsizetype l = t.selection.location, size = t.string.size();
        int view = receiver;
        TWRange found = upward() ? search(t.string, 0, l) : search(t.string, t.selection.end(), size);
        if (!found.found() && throughPartner(receiver)) {
            view = 1 - receiver;
            found = search(expected[view].string, 0, expected[view].string.size());
        }
        if (!found.found() && wraps()) {
            view = receiver;
            found = upward() ? search(t.string, l, size) : search(t.string, 0, std::min(l + f.size(), size));
        }
        if (found.found())
            select(view, found);
        return found.found() ? view : -1;
    }

    // Replace All: the receiver from its first place at or after the selection's start (upward:
    // back from the last place ending by the selection's end), through the other half, then
    // with wrap around the rest of the receiver. Each pass searches its part as a text of its
    // own, never what it put in. Answers the places in the order replaced.
    QList<Place> replaceAllExpected(int receiver)
    {
        QList<Place> places;
        const QString t = expected[receiver].string;
        const TWRange sel = expected[receiver].selection, p = upward() ? search(t, 0, sel.end()) : search(t, sel.location, t.size());
        const qsizetype split = p.found() ? (upward() ? p.end() : p.location) : (upward() ? 0 : t.size());
        QString parts[2] = {t.left(split), t.mid(split)};
        int lastPart = -1;
        qsizetype lastAt = 0;
        const auto pass = [&](QString &text, int view, qsizetype offset) {
            const qsizetype before = places.size();
            for (qsizetype q = 0, k = text.size();; q = lastAt + r.size(), k = lastAt) {
                const TWRange m = upward() ? search(text, 0, k) : search(text, q, text.size());
                if (!m.found())
                    return places.size() > before;
                places.append({view, offset + m.location, text.mid(m.location, m.length)});
                text.replace(m.location, m.length, r);
                lastAt = m.location;
            }
        };
        const auto passPart = [&](int i) {
            if (pass(parts[i], receiver, i ? parts[0].size() : 0))
                lastPart = i;
        };
        passPart(upward() ? 0 : 1);
        if (throughPartner(receiver) && pass(expected[1 - receiver].string, 1 - receiver, 0))
            lastPart = -1;
        if (wraps())
            passPart(upward() ? 1 : 0);
        expected[receiver].string = parts[0] + parts[1];
        if (!places.isEmpty())
            select(places.last().view, {lastAt + (lastPart == 1 ? parts[0].size() : 0), r.size()});
        return places;
    }

    // One random case in the views (one, or the template's two with `receiver` searched from).
    bool runCase(QRandomGenerator &random, int receiver)
    {
        for (Text &t : expected)
            t = {randomText(random, 14), {0, 0}};
        if (views.size() == 1)
            views[0]->setString(expected[0].string);
        else // Loaded as a template file is, so that the window knows the halves' texts.
            TWTemplateWindowController::sharedTemplateController()->loadTemplate(TWTemplateText::join(expected[0].string, expected[1].string));
        for (TWEditorTextView *view : views)
            view->setSelectedRange({0, 0});
        // Typing before a Replace All (an x at the receiver's start) is a step of its own.
        const int typedInto = receiver;
        views[receiver]->insertText(QStringLiteral("x"));
        expected[receiver].string.prepend(u'x');
        Text &t = expected[receiver];
        const qsizetype location = random.bounded(t.string.size() + 1);
        t.selection = {location, random.bounded(t.string.size() - location + 1)};
        views[receiver]->setFocus();
        views[receiver]->setSelectedRange(t.selection);
        f = randomText(random, 2);
        if (random.bounded(2) && !t.string.isEmpty())
            f = t.string.mid(random.bounded(t.string.size()), 1 + random.bounded(3));
        if (f.isEmpty())
            f = QStringLiteral("a");
        r = random.bounded(4) == 0 ? f + QStringLiteral("b") : randomText(random, 2);
        options = random.bounded(8);
        context = QStringLiteral("F %1 R %2 options %3, texts").arg(shown(f), shown(r), QString::number(options));
        for (const Text &each : expected)
            context += u' ' + shown(each.string, each.selection);

        // A few finds, each from where the last one left the focus and the selection.
        for (int n = int(random.bounded(3)); n > 0; --n) {
            const int beeps = TWBeepCount();
            views[receiver]->doFindString(f, options);
            const int found = findExpected(receiver);
            if (!same("find") || TWBeepCount() - beeps != (found < 0 ? 1 : 0))
                return false;
            receiver = found < 0 ? receiver : found;
        }

        const int beeps = TWBeepCount();
        views[receiver]->doReplaceAllString(f, r, options);
        const QList<Place> places = replaceAllExpected(receiver);
        // The report of the count, closed.
        const QList<QMessageBox *> reports = views[receiver]->window()->findChildren<QMessageBox *>();
        const QString report = reports.size() == 1 ? reports.first()->text() : QString();
        qDeleteAll(reports);
        if (report != TWLocalizedString(TWTextKey::xPlacesAreReplaced, int(places.size())) || TWBeepCount() - beeps != (places.isEmpty() ? 1 : 0)
            || !same("replace all"))
            return false;
        // Undo, redo and undo again, each walking the places and selecting as the rules say.
        const auto undo = [&] {
            views[receiver]->performUndo();
            for (auto p = places.crbegin(); p != places.crend(); ++p)
                expected[p->view].string.replace(p->at, r.size(), p->was);
            // A selection ends where the text does.
            const Place &first = places.first();
            select(first.view, {first.at, std::min(r.size(), expected[first.view].string.size() - first.at)});
            return same("undo");
        };
        const auto redo = [&] {
            views[receiver]->performRedo();
            for (const Place &p : places)
                expected[p.view].string.replace(p.at, p.was.size(), r);
            select(places.last().view, {places.last().at, r.size()});
            return same("redo");
        };
        // So is typing after it (a y at the end); with no Replace All step between them, the two
        // typings would be one step.
        if (!places.isEmpty()) {
            views[receiver]->setSelectedRange({views[receiver]->string().size(), 0});
            views[receiver]->insertText(QStringLiteral("y"));
            views[receiver]->performUndo();
            if (!same("typing after undone", false) || !(undo() && redo() && undo()))
                return false;
        }
        views[receiver]->performUndo();
        expected[typedInto].string.remove(0, 1);
        return same("typing before undone", false);
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setTagColoring(true);
    }

    void agreesWithTheRules_data()
    {
        QTest::addColumn<bool>("inTemplate");
        QTest::newRow("one view") << false;
        QTest::newRow("template halves") << true;
    }

    void agreesWithTheRules()
    {
        QFETCH(bool, inTemplate);
        TWEditorTextView single;
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        QWidget *shownWindow = inTemplate ? static_cast<QWidget *>(window) : &single;
        shownWindow->show();
        QVERIFY(QTest::qWaitForWindowExposed(shownWindow));
        views = inTemplate ? QList<TWEditorTextView *>{window->topTextView(), window->bottomTextView()} : QList<TWEditorTextView *>{&single};
        expected.resize(views.size());
        QRandomGenerator random(inTemplate ? 2311 : 1123);
        for (int round = 0; round < rounds; ++round) {
            QVERIFY2(runCase(random, int(random.bounded(int(views.size())))), qPrintable(context));
            // The page is made of what the halves hold now.
            if (inTemplate)
                QCOMPARE(TWTemplateText::join(window->topTemplateText(), window->bottomTemplateText()),
                         TWTemplateText::join(views[0]->string(), views[1]->string()));
        }
    }
};

QTEST_MAIN(tst_TWFindReplace)
#include "tst_TWFindReplace.moc"
