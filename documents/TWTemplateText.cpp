#include "documents/TWTemplateText.h"

TWTemplateText::Halves TWTemplateText::split(const QString &text)
{
    const QLatin1String marker(divider);
    const qsizetype at = text.indexOf(marker);
    if (at < 0)
        return {text, QString()};
    return {text.left(at), text.mid(at + marker.size())};
}

QString TWTemplateText::join(const QString &top, const QString &bottom)
{
    const QLatin1String marker(divider);
    QString text;
    text.reserve(top.size() + bottom.size() + marker.size());
    text += top;
    text += marker;
    text += bottom;
    return text;
}

QString TWTemplateText::builtInDefault()
{
    static const char top[] = "<html>\n"
                              "<head>\n"
                              "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=Shift_JIS\">\n"
                              "<title>\"Tagwright\" Sample</title>\n"
                              "</head>\n"
                              "<body>\n"
                              "\n";
    static const char bottom[] = "\n"
                                 "</body>\n"
                                 "</html>\n";
    return join(QLatin1String(top), QLatin1String(bottom));
}
