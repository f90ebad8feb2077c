#pragma once

#include "taglib/TWHTMLTag.h"

// The library's generic tag: its colour is that of every element name without a colour of its
// own. It inserts "<>"; only its name, title, menu flag, key and colour can change.
class TWGenericTag : public TWHTMLTag
{
public:
    TWGenericTag();
    bool isGenericTag() const override { return true; }
    void setType(int) override {}
    void setTag(const QString &) override {}
    void setFirstTag(const QString &) override {}
    void setSecondTag(const QString &) override {}
    void setUseSpecificColor(bool) override {}
};
