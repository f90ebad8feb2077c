#include "checker/TWOutputLimit.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

constexpr char cutMark[] = " [...]";
constexpr char fullText[] = QT_TRANSLATE_NOOP("TWOutputLimit", "\n[Only the first %1 MB of the output are shown.]\n");
constexpr char summaryText[] = QT_TRANSLATE_NOOP("TWOutputLimit", "\n[%1 more characters were not shown.]\n");

} // namespace

QString TWOutputLimit::admit(const QString &text)
{
    if (full) {
        leftOut += text.size();
        return {};
    }
    QString admitted;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf(u'\n', start);
        const bool lineEnds = end >= 0;
        if (!lineEnds)
            end = text.size();
        const qsizetype room = std::max<qsizetype>(0, maxLineLength - lineLength);
        const qsizetype taken = std::min(room, end - start);
        admitted += QStringView(text).mid(start, taken);
        lineLength += end - start;
        if (taken < end - start && !lineCut) {
            admitted += QLatin1String(cutMark);
            lineCut = true;
        }
        if (lineEnds) {
            admitted += u'\n';
            lineLength = 0;
            lineCut = false;
        }
        start = end + (lineEnds ? 1 : 0);
        if (shown + admitted.size() >= maxCharacters) {
            full = true;
            leftOut += text.size() - start;
            admitted += QCoreApplication::translate("TWOutputLimit", fullText).arg(maxCharacters / (1024 * 1024));
            break;
        }
    }
    shown += admitted.size();
    return admitted;
}

QString TWOutputLimit::summary() const
{
    return leftOut > 0 ? QCoreApplication::translate("TWOutputLimit", summaryText).arg(QLocale().toString(leftOut)) : QString();
}
