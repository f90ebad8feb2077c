#include "preview/TWUserStyleSheet.h"

#include <QJsonArray>
#include <QJsonDocument>

QString TWUserStyleSheet::injectionSource(const QString &css)
{
    const QString text = QString::fromUtf8(QJsonDocument(QJsonArray{css}).toJson(QJsonDocument::Compact));
    return QStringLiteral(
               "(function () {\n"
               "  var css = %1[0];\n"
               "  function put() {\n"
               "    var root = document.head || document.documentElement;\n"
               "    if (!root) return false;\n"
               "    if (document.getElementById('%2')) return true;\n"
               "    var style = document.createElement('style');\n"
               "    style.id = '%2';\n"
               "    style.textContent = css;\n"
               "    root.insertBefore(style, root.firstChild);\n"
               "    return true;\n"
               "  }\n"
               "  if (!put()) {\n"
               "    var observer = new MutationObserver(function () { if (put()) observer.disconnect(); });\n"
               "    observer.observe(document, {childList: true, subtree: true});\n"
               "  }\n"
               "})();\n")
        .arg(text, QLatin1String(elementId));
}
