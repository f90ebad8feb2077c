#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QWidget;

// Open and save panels. Controllers never create file dialogs themselves but ask here,
// so that tests can answer a panel without a person.
class TWPanels
{
public:
    // The chosen file paths, or an empty list when the user cancelled. `extensions` limits
    // the files offered (without dots, e.g. "html"); an empty list offers every file.
    static QStringList runOpenPanel(QWidget *parent, const QStringList &extensions,
                                    bool allowTextFilesWithoutExtension = false);
    // An application to open pages with: a desktop entry (offered first, with its icon) or a
    // program. Answers as runOpenPanel, which a test's handler sees with the extension "desktop".
    static QStringList runApplicationPanel(QWidget *parent);
    // The chosen path, or nothing when the user cancelled. The first extension is added
    // to a name typed without one.
    static std::optional<QString> runSavePanel(QWidget *parent, const QString &proposedName,
                                               const QStringList &extensions);

    using OpenPanelHandler = std::function<QStringList(const QStringList &extensions)>;
    using SavePanelHandler
        = std::function<std::optional<QString>(const QString &proposedName, const QStringList &extensions)>;
    // Replace the real dialogs (tests); an empty handler restores them.
    static void setOpenPanelHandler(OpenPanelHandler handler);
    static void setSavePanelHandler(SavePanelHandler handler);
};
