#pragma once

#include <QCoreApplication>
#include <QString>
#include <QWebEngineLoadingInfo>

// What the status text says when a load fails: a short sentence for the engine's common
// errors instead of their code names, and the error's name in words for the rest.
class TWLoadErrorText
{
    Q_DECLARE_TR_FUNCTIONS(TWLoadErrorText)
public:
    // The engine's error: its domain, its code and its name (such as "net::ERR_FILE_NOT_FOUND").
    static QString description(QWebEngineLoadingInfo::ErrorDomain domain, int code, const QString &name);
};
