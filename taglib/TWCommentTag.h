#pragma once

#include "taglib/TWHTMLTag.h"

// The library's HTML comment: "<!-- " and " -->", coloured under the name "!--". Its type,
// element name and texts are fixed; name, title, menu flag, key and colour are the user's.
class TWCommentTag : public TWHTMLTag
{
public:
    TWCommentTag();
    bool isCommentTag() const override { return true; }
    void setType(int) override {}
    void setTag(const QString &) override {}
    void setFirstTag(const QString &) override {}
    void setSecondTag(const QString &) override {}
};
