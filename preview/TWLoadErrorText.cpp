#include "preview/TWLoadErrorText.h"

#include <QRegularExpression>

namespace {

// Chromium's network error codes (net/base/net_error_list.h).
enum NetError {
    aborted = -3,
    fileNotFound = -6,
    timedOut = -7,
    fileTooBig = -8,
    accessDenied = -10,
    connectionClosed = -100,
    connectionReset = -101,
    connectionRefused = -102,
    connectionAborted = -103,
    nameNotResolved = -105,
    internetDisconnected = -106,
    addressUnreachable = -109,
    connectionTimedOut = -118,
    nameResolutionFailed = -137,
    firstCertificateError = -299,
    lastCertificateError = -200,
    invalidURL = -300,
    disallowedScheme = -301,
    unknownScheme = -302,
    tooManyRedirects = -310,
    emptyResponse = -324,
};

// "net::ERR_UNSAFE_PORT" reads "unsafe port".
QString nameInWords(const QString &name)
{
    static const QRegularExpression prefix(QStringLiteral("^(net::)?ERR_"));
    return QString(name).remove(prefix).replace(QLatin1Char('_'), QLatin1Char(' ')).toLower();
}

} // namespace

QString TWLoadErrorText::description(QWebEngineLoadingInfo::ErrorDomain domain, int code, const QString &name)
{
    if (domain == QWebEngineLoadingInfo::HttpStatusCodeDomain)
        return tr("The server answered with an error (HTTP status %1).").arg(code);
    switch (code) {
    case 0: // a load cut short, its page process ended
    case aborted:
        return tr("Loading was stopped.");
    case fileNotFound:
        return tr("The file was not found.");
    case fileTooBig:
        return tr("The file is too large to show.");
    case accessDenied:
        return tr("The file may not be read.");
    case timedOut:
    case connectionTimedOut:
        return tr("The server took too long to answer.");
    case connectionRefused:
        return tr("The server refused the connection.");
    case connectionClosed:
    case connectionReset:
    case connectionAborted:
    case emptyResponse:
        return tr("The connection to the server was lost.");
    case nameNotResolved:
    case nameResolutionFailed:
        return tr("The server's name was not found.");
    case internetDisconnected:
    case addressUnreachable:
        return tr("The server cannot be reached.");
    case invalidURL:
        return tr("The address is not valid.");
    case disallowedScheme:
    case unknownScheme:
        return tr("The viewer cannot open this kind of address.");
    case tooManyRedirects:
        return tr("The server redirected too many times.");
    default:
        break;
    }
    if (code >= firstCertificateError && code <= lastCertificateError)
        return tr("The server's certificate is not valid.");
    if (name.isEmpty())
        return tr("The page could not be loaded (error %1).").arg(code);
    return tr("The page could not be loaded (%1).").arg(nameInWords(name));
}
