#pragma once

#include "taglib/TWHTMLTag.h"

// The library's pair of double quotes. It has no element name and its brown colour is fixed.
class TWQuotation : public TWHTMLTag
{
public:
    TWQuotation();
    bool isQuotation() const override { return true; }
    QString colorSampleTag() const override { return QString(); }
    void setType(int) override {}
    void setTag(const QString &) override {}
    void setFirstTag(const QString &) override {}
    void setSecondTag(const QString &) override {}
    void setUseSpecificColor(bool) override {}
    void setTagColor(const QColor &) override {}
};
