#include "taglib/TWGenericTag.h"

#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

namespace {
constexpr char genericFirstTag[] = "<>";
constexpr char titleFormat[] = "%1  <>";
} // namespace

TWGenericTag::TWGenericTag()
    : TWHTMLTag(singleType, QString(), TWLocalizedString(TWTextKey::generic), QLatin1String(genericFirstTag),
                QString(), true, true, QColor::fromRgbF(0.6, 0.4, 0.2),
                QString::fromLatin1(titleFormat).arg(TWLocalizedString(TWTextKey::genericTag)))
{
}
