#include "preview/TWPreview.h"

namespace {
std::function<TWPreview *()> &factory()
{
    static std::function<TWPreview *()> instance;
    return instance;
}
} // namespace

TWPreview *TWPreview::shared()
{
    return factory() ? factory()() : nullptr;
}

void TWPreview::setFactory(std::function<TWPreview *()> newFactory)
{
    factory() = std::move(newFactory);
}
