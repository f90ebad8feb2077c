#pragma once

#include <QPoint>
#include <QString>
#include <QVariantMap>

#include <optional>

class QWidget;

// How a window keeps its state between launches: its frame under its frame name, and a
// window defaults dictionary of strings under its defaults key, replaced whole at each save.
class TWWindowState
{
public:
    static void saveFrameUsingName(const QWidget *window, const char *frameName);
    // Answers false (and leaves the window as it is) when no usable frame was saved.
    static bool setFrameUsingName(QWidget *window, const char *frameName);
    // Restores the saved frame, or, the first time, puts the window at its default place
    // (kept on the screen).
    static void setFrameUsingName(QWidget *window, const char *frameName, QPoint defaultPosition);

    // The dictionary, or nothing when the store holds none under the key.
    static std::optional<QVariantMap> readDefaults(const char *defaultsKey);
    static void writeDefaults(const char *defaultsKey, const QVariantMap &dictionary);

    // A string entry of a dictionary, or nothing when it is absent or not a string.
    static std::optional<QString> stringEntry(const QVariantMap &dictionary, const char *entry);
};
