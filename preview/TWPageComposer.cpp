#include "preview/TWPageComposer.h"

#include "platform/TWAtomicFile.h"

#include <QDir>
#include <QFileInfo>

namespace {
constexpr char lineBreakTag[] = "<br>";
constexpr char baseLineFormat[] = "<base href=\"%1\">\r";
constexpr char styleSheetLineFormat[] = "<link rel=stylesheet href=\"%1\" type=\"text/css\">\r";
constexpr char fileURLPrefix[] = "file://localhost";
constexpr char localHost[] = "localhost";
// A byte-order mark outweighs any character set the page declares, in every browser.
constexpr char utf8ByteOrderMark[] = "\xEF\xBB\xBF";
} // namespace

QString TWPageComposer::htmlWithLineBreakRule(const QString &html, bool lineBreakValidation)
{
    if (!lineBreakValidation)
        return html;
    QString copy = html;
    return copy.replace(QLatin1Char('\n'), QLatin1String(lineBreakTag));
}

QString TWPageComposer::combinedPage(const QString &top, const QString &html, const QString &bottom,
                                     bool lineBreakValidation)
{
    const QString body = htmlWithLineBreakRule(html, lineBreakValidation);
    QString page;
    page.reserve(top.size() + body.size() + bottom.size());
    page += top;
    page += body;
    page += bottom;
    return page;
}

QString TWPageComposer::reloadingFileText(const QString &baseURL, const QString &styleSheetPath,
                                          const QString &combined)
{
    QString text = QString::fromLatin1(baseLineFormat).arg(baseURL);
    if (!styleSheetPath.isEmpty())
        text += QString::fromLatin1(styleSheetLineFormat).arg(styleSheetPath);
    text += combined;
    return text;
}

std::optional<QUrl> TWPageComposer::baseURLFromString(const QString &text)
{
    if (text.isEmpty())
        return std::nullopt;
    const QUrl url(text, QUrl::StrictMode);
    // A base must say where it is: an absolute URL. Text like "my site" is none.
    if (!url.isValid() || url.isRelative())
        return std::nullopt;
    return url;
}

QString TWPageComposer::absoluteString(const QUrl &url)
{
    return QString::fromUtf8(url.toEncoded());
}

QUrl TWPageComposer::fileURL(const QString &path)
{
    QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    url.setHost(QLatin1String(localHost));
    return url;
}

QString TWPageComposer::relativePathToBaseURL(const std::optional<QUrl> &baseURL, const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    if (!baseURL)
        return name;
    const QString base = absoluteString(*baseURL);
    const QLatin1String prefix(fileURLPrefix);
    if (!base.startsWith(prefix))
        return name;
    const QString rest = base.mid(prefix.size());
    // A base that names a folder (ends in "/") is itself the folder; one that names a file
    // stands for the folder the file is in.
    const QString dir = rest.endsWith(QLatin1Char('/'))
        ? rest
        : rest.left(rest.size() - rest.section(QLatin1Char('/'), -1).size());
    if (!dir.isEmpty() && path.startsWith(dir))
        return path.mid(dir.size());
    return name;
}

QString TWPageComposer::writeReloadingFile(const QString &folder, const QString &text)
{
    if (!QFileInfo::exists(folder))
        QDir().mkpath(folder);
    const QString path = folder + QLatin1Char('/') + QLatin1String(reloadingFileName);
    TWWriteFileAtomically(path, QByteArray(utf8ByteOrderMark) + text.toUtf8());
    return path;
}
