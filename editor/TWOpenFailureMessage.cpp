#include "editor/TWOpenFailureMessage.h"

#include "editor/TWTextFile.h"
#include "platform/TWMessageBar.h"
#include "preferences/TWPreferences.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QList>

namespace {

// UTF-8 first: bytes that happen to be valid UTF-8 almost always are UTF-8; ISO-2022-JP
// last, as any plain 7-bit text reads in it.
constexpr int likelyOrder[] = {TWTextEncoding::utf8, TWTextEncoding::shiftJIS, TWTextEncoding::eucJP,
                               TWTextEncoding::iso2022JP};

QString tr(const char *text)
{
    return QCoreApplication::translate("TWOpenFailureMessage", text);
}

// The encodings other than the one tried in which the bytes decode strictly, most likely
// first. Compared by name: any unknown code means Shift_JIS.
QList<int> encodingsThatDecode(const QByteArray &bytes, int tried)
{
    QList<int> encodings;
    for (int encoding : likelyOrder) {
        if (qstrcmp(TWTextFile::encodingName(encoding), TWTextFile::encodingName(tried)) != 0
            && TWTextFile::decode(bytes, encoding))
            encodings << encoding;
    }
    return encodings;
}

} // namespace

void TWOpenFailureMessage::show(TWMessageBar *bar, const QString &path, int tried, const std::function<void()> &reopen)
{
    const QString name = QFileInfo(path).fileName();
    QFile file(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly)) {
        bar->showMessage(tr("\u201C%1\u201D could not be read.").arg(name));
        return;
    }
    const QList<int> others = encodingsThatDecode(file.readAll(), tried);
    const QString encodingName = QString::fromLatin1(TWTextFile::encodingName(tried));
    if (others.isEmpty()) {
        bar->showMessage(tr("\u201C%1\u201D could not be opened: it is not %2 text, the encoding chosen for files, "
                            "nor text in any other encoding Tagwright reads.")
                             .arg(name, encodingName));
        return;
    }
    bar->showMessage(tr("\u201C%1\u201D could not be opened: it is not %2 text, the encoding chosen for files.")
                         .arg(name, encodingName));
    for (int encoding : others) {
        bar->addAction(tr("Open as %1").arg(QString::fromLatin1(TWTextFile::encodingName(encoding))),
                       [encoding, reopen] {
                           TWPreferences::sharedPref()->setTextEncoding(encoding);
                           reopen();
                       });
    }
}
