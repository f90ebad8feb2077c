#pragma once

#include <QString>

// The template as one text: the top half, the divider, the bottom half. This is its form in
// template files, in projects and in the window defaults.
namespace TWTemplateText {

inline constexpr char divider[] = "<<TAGWRIGHTTEMPLATEDIVIDER>>";

struct Halves
{
    QString top;
    QString bottom;
};

// Splits at the first divider (exact, case-sensitive); without one the whole text is the top
// half. A later divider stays in the bottom half as ordinary text.
Halves split(const QString &text);
// Top half, divider, bottom half, with nothing added between them.
QString join(const QString &top, const QString &bottom);

// The template used when the application has no default template resource.
QString builtInDefault();

} // namespace TWTemplateText
