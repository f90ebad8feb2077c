// Opening and saving a large page as the HTML window does it. One measurement per process, so
// that the peak memory printed belongs to that operation alone.
//   bench_fileio open <file> <encoding code>
//   bench_fileio save <file> <encoding code> <output file>
//   bench_fileio bare <file> <any>: the yardstick, a UTF-8 file read into a bare QPlainTextEdit
#include "editor/TWEditorTextView.h"
#include "editor/TWTextFile.h"
#include "preferences/TWPreferences.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPlainTextEdit>

#include <cstdio>
#include <sys/resource.h>

namespace {
long peakKilobytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList args = QApplication::arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "usage: bench_fileio open|save <file> <encoding> [output]\n");
        return 2;
    }
    const QString mode = args.at(1);
    const QString path = args.at(2);
    const int encoding = args.at(3).toInt();
    TWPreferences::sharedPref()->setTextEncoding(encoding);
    TWPreferences::sharedPref()->setReturnCode(TWReturnCode::lf);

    if (mode == QLatin1String("bare")) {
        QPlainTextEdit bare;
        bare.resize(800, 900);
        bare.show();
        QApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        bare.setPlainText(QString::fromUtf8(file.readAll()));
        QApplication::processEvents();
        std::printf("open %.1f ms  peak %.0f MB\n", timer.nsecsElapsed() / 1e6, peakKilobytes() / 1024.0);
        return 0;
    }

    TWEditorTextView view;
    view.resize(800, 900);
    view.show();
    QApplication::processEvents();
    const long before = peakKilobytes();

    QElapsedTimer timer;
    if (mode == QLatin1String("open")) {
        timer.start();
        bool ok = false;
        const QString text = view.loadTextFromFile(path, &ok);
        view.setString(text);
        QApplication::processEvents();
        const qint64 elapsed = timer.nsecsElapsed();
        if (!ok)
            return 1;
        std::printf("open %.1f ms  peak %.0f MB (%.1fx the file)\n", elapsed / 1e6, peakKilobytes() / 1024.0,
                    peakKilobytes() * 1024.0 / double(QFileInfo(path).size()));
    } else {
        bool ok = false;
        view.setString(view.loadTextFromFile(path, &ok));
        QApplication::processEvents();
        if (!ok || args.size() < 5)
            return 1;
        timer.start();
        const bool written = view.saveText(view.string(), args.at(4));
        const qint64 elapsed = timer.nsecsElapsed();
        if (!written)
            return 1;
        std::printf("save %.1f ms  peak %.0f MB (%.1fx the file)\n", elapsed / 1e6, peakKilobytes() / 1024.0,
                    peakKilobytes() * 1024.0 / double(QFileInfo(path).size()));
    }
    Q_UNUSED(before);
    return 0;
}
