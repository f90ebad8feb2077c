#include "taglib/TWCommentTag.h"

#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

namespace {
constexpr char commentName[] = "!--";
constexpr char commentOpener[] = "<!-- ";
constexpr char commentCloser[] = " -->";
constexpr char titleFormat[] = "%1  <!--...-->";
} // namespace

TWCommentTag::TWCommentTag()
    : TWHTMLTag(pairedType, QLatin1String(commentName), TWLocalizedString(TWTextKey::comment),
                QLatin1String(commentOpener), QLatin1String(commentCloser), true, true, QColor::fromRgbF(1, 0, 0),
                QString::fromLatin1(titleFormat).arg(TWLocalizedString(TWTextKey::comment)))
{
}
