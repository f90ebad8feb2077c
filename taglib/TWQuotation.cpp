#include "taglib/TWQuotation.h"

#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

namespace {
constexpr char quote[] = "\"";
constexpr char titleFormat[] = "%1  \"\"";
} // namespace

TWQuotation::TWQuotation()
    : TWHTMLTag(pairedType, QString(), TWLocalizedString(TWTextKey::quotation), QLatin1String(quote),
                QLatin1String(quote), true, false, QColor::fromRgbF(0.6, 0.4, 0.2),
                QString::fromLatin1(titleFormat).arg(TWLocalizedString(TWTextKey::quotation)))
{
}
