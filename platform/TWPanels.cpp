#include "platform/TWPanels.h"

#include "platform/TWDesktopEntry.h"

#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>

namespace {

TWPanels::OpenPanelHandler openHandler;
TWPanels::SavePanelHandler saveHandler;

// Panels open where the user last chose a file, as a user expects in one working session.
QString &lastDirectory()
{
    static QString directory = QDir::homePath();
    return directory;
}

QString nameFilter(const QStringList &extensions)
{
    QStringList patterns;
    for (const QString &extension : extensions)
        patterns << QStringLiteral("*.") + extension;
    return QFileDialog::tr("Documents (%1)").arg(patterns.join(QLatin1Char(' ')));
}

// Where a Linux desktop keeps the entries of its installed applications.
constexpr char applicationsFolder[] = "/usr/share/applications";

// Desktop entries show their application's icon.
class ApplicationIcons : public QFileIconProvider
{
public:
    QIcon icon(const QFileInfo &info) const override
    {
        return info.suffix() == QLatin1String(TWDesktopEntry::extension) ? TWDesktopEntry::icon(info.filePath()) : QFileIconProvider::icon(info);
    }
    using QFileIconProvider::icon;
};

void remember(const QString &path)
{
    lastDirectory() = QFileInfo(path).absolutePath();
}

} // namespace

QStringList TWPanels::runOpenPanel(QWidget *parent, const QStringList &extensions,
                                   bool allowTextFilesWithoutExtension)
{
    if (openHandler)
        return openHandler(extensions);

    QFileDialog dialog(parent);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDirectory(lastDirectory());
    QStringList filters;
    if (!extensions.isEmpty())
        filters << nameFilter(extensions);
    if (extensions.isEmpty() || allowTextFilesWithoutExtension)
        filters << QFileDialog::tr("All Files (*)");
    dialog.setNameFilters(filters);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    const QStringList files = dialog.selectedFiles();
    remember(files.first());
    return files;
}

QStringList TWPanels::runApplicationPanel(QWidget *parent)
{
    if (openHandler)
        return openHandler({QLatin1String(TWDesktopEntry::extension)});

    // The icons outlive the dialog that asks for them.
    ApplicationIcons icons;
    QFileDialog dialog(parent);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setFileMode(QFileDialog::ExistingFile);
    // Qt's own dialog, which shows each desktop entry with its application's icon.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setIconProvider(&icons);
    dialog.setDirectory(QDir(QLatin1String(applicationsFolder)).exists() ? QLatin1String(applicationsFolder) : QDir::homePath());
    dialog.setNameFilters({QFileDialog::tr("Applications (*.%1)").arg(QLatin1String(TWDesktopEntry::extension)), QFileDialog::tr("Programs (*)")});
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles();
}

std::optional<QString> TWPanels::runSavePanel(QWidget *parent, const QString &proposedName,
                                              const QStringList &extensions)
{
    if (saveHandler)
        return saveHandler(proposedName, extensions);

    QFileDialog dialog(parent);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDirectory(lastDirectory());
    if (!extensions.isEmpty()) {
        dialog.setNameFilter(nameFilter(extensions));
        dialog.setDefaultSuffix(extensions.first());
    }
    if (!proposedName.isEmpty())
        dialog.selectFile(proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    const QString path = dialog.selectedFiles().first();
    remember(path);
    return path;
}

void TWPanels::setOpenPanelHandler(OpenPanelHandler handler)
{
    openHandler = std::move(handler);
}

void TWPanels::setSavePanelHandler(SavePanelHandler handler)
{
    saveHandler = std::move(handler);
}
