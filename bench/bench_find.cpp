// Find Next and Replace All on a large page in the HTML editor view, shown at a usual size.
//   bench_find find <file>: Find Next from the top to a text that first occurs near the end
//   bench_find replace <file> <megabytes>: Replace All of "<li>" by "<LI>" in the first
//       megabytes of the page (whole lines), then undo and redo, each until the screen is painted
//   bench_find repeat <file> <megabytes>: a text of that size of lines of "<" only, then Find
//       Next and Replace All of "<" by "&lt;"
#include "editor/TWEditorTextView.h"
#include "editor/TWStringSearch.h"
#include "editor/TWTagHighlighter.h"
#include "editor/TWTextFile.h"
#include "preferences/TWPreferences.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int findRuns = 21;

long peakMegabytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// Closes the Replace All report, as the user would.
void dismissReports()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *box = qobject_cast<QMessageBox *>(widget))
            box->done(0);
    }
    for (QMessageBox *box : QApplication::activeWindow() ? QApplication::activeWindow()->findChildren<QMessageBox *>()
                                                          : QList<QMessageBox *>())
        box->done(0);
}

// Time until the operation's screen is painted (the view draws itself synchronously).
template<typename Operation>
double millisecondsUntilPainted(TWEditorTextView &view, Operation operation)
{
    QElapsedTimer timer;
    timer.start();
    operation();
    view.viewport()->repaint();
    return timer.nsecsElapsed() / 1e6;
}

QString pageText(const QString &path)
{
    const std::optional<QString> text = TWTextFile::load(path, TWTextEncoding::utf8);
    if (!text) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        std::exit(1);
    }
    return *text;
}

int find(TWEditorTextView &view, const QString &text)
{
    // A line of the last hundredth of the page that occurs nowhere before it.
    QString needle;
    for (qsizetype at = text.size() - text.size() / 100; at < text.size() - 40; at += 97) {
        const QString candidate = text.mid(at, 24);
        if (!candidate.contains(u'\n') && text.indexOf(candidate) == at) {
            needle = candidate;
            break;
        }
    }
    if (needle.isEmpty())
        return 1;
    view.setString(text);
    // The search alone, and until the screen that shows the match is painted and coloured.
    const auto measure = [&](const char *label, bool typeFirst) {
        QList<double> found, painted;
        for (int run = 0; run < findRuns; ++run) {
            if (typeFirst) {
                view.setSelectedRange({0, 0});
                view.insertText(QStringLiteral(" "));
            }
            view.setSelectedRange({0, 0});
            view.viewport()->repaint();
            QElapsedTimer timer;
            timer.start();
            view.doFindString(needle, 0);
            found << timer.nsecsElapsed() / 1e6;
            view.viewport()->repaint();
            painted << timer.nsecsElapsed() / 1e6;
        }
        const double first = found.first(), firstPainted = painted.first();
        std::sort(found.begin(), found.end());
        std::sort(painted.begin(), painted.end());
        std::printf("%s: find median %.2f ms, worst %.2f ms (first %.2f ms); until painted median %.2f ms, worst %.2f ms "
                    "(first %.2f ms)\n",
                    label, found.at(findRuns / 2), found.last(), first, painted.at(findRuns / 2), painted.last(),
                    firstPainted);
    };
    measure("find next from the top to a match at 99% of the 8 MB page", false);
    // After an edit the text is taken from the document afresh.
    measure("the same right after typing", true);
    return 0;
}

void replaceAll(TWEditorTextView &view, const QString &text, const QString &search, const QString &replacement,
                const char *label)
{
    view.setString(text);
    view.tagHighlighter()->completeNow();
    view.setSelectedRange({0, 0});
    const double replaced = millisecondsUntilPainted(view, [&] {
        view.doReplaceAllString(search, replacement, TWFindOption::wrapAround);
    });
    dismissReports();
    const double undone = millisecondsUntilPainted(view, [&] { view.performUndo(); });
    const double redone = millisecondsUntilPainted(view, [&] { view.performRedo(); });
    std::printf("%s: %.2f MB, replace all %.1f ms, undo %.1f ms, redo %.1f ms, peak %ld MB\n", label,
                text.size() / 1048576.0, replaced, undone, redone, peakMegabytes());
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList args = QApplication::arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: bench_find find|replace|repeat <file> [megabytes]\n");
        return 2;
    }
    TWPreferences::sharedPref()->setTextEncoding(TWTextEncoding::utf8);
    TWEditorTextView view;
    view.resize(800, 900);
    view.show();
    QApplication::processEvents();
    const QString text = pageText(args.at(2));
    const qsizetype size = qsizetype(args.value(3, QStringLiteral("0")).toDouble() * 1048576);
    if (args.at(1) == QLatin1String("find"))
        return find(view, text);
    if (args.at(1) == QLatin1String("replace")) {
        const qsizetype end = size > 0 && size < text.size() ? text.lastIndexOf(u'\n', size) + 1 : text.size();
        replaceAll(view, text.left(end), QStringLiteral("<li>"), QStringLiteral("<LI>"), "<li> -> <LI>");
        return 0;
    }
    if (args.at(1) == QLatin1String("repeat")) {
        // Lines of 79 "<" each, as a file of that kind is written.
        QString same(size, u'<');
        for (qsizetype at = 79; at < size; at += 80)
            same[at] = u'\n';
        view.setString(same);
        QList<double> times;
        for (int run = 0; run < 5; ++run) {
            view.setSelectedRange({size / 2, 0});
            times << millisecondsUntilPainted(view, [&] { view.doFindString(QStringLiteral("<"), 0); });
        }
        std::sort(times.begin(), times.end());
        std::printf("find next \"<\" in %.0f MB of \"<\": median %.2f ms\n", size / 1048576.0, times.at(2));
        replaceAll(view, same, QStringLiteral("<"), QStringLiteral("&lt;"), "\"<\" -> \"&lt;\" everywhere");
        return 0;
    }
    return 2;
}
