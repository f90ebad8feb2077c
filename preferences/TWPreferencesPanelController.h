#pragma once

#include <QFont>
#include <QWidget>

namespace Ui {
class TWPreferencePanel;
}
class QComboBox;
class QFontDialog;
class QLineEdit;
class QPushButton;
class TWExBrowserTableModel;
class TWPreferences;

// The one window in which the user edits the preferences. Each control writes its preference
// at once and pushes it to where it shows; closing the panel commits the text fields and
// saves the preferences.
class TWPreferencesPanelController : public QWidget
{
    Q_OBJECT
public:
    static TWPreferencesPanelController *sharedPreferencesPanel();
    ~TWPreferencesPanelController() override;

    // The five fonts, in the panel's order.
    enum FontKind { viewerFont, viewerFixedFont, editorFont, templateFont, cssFont };
    static constexpr FontKind fontKinds[] = {viewerFont, viewerFixedFont, editorFont, templateFont, cssFont};

    void runPreferencesPanel();

    // Fonts: the font chooser, a font chosen there, a size chosen or typed.
    void chooseFont(FontKind kind);
    void changeFont(FontKind kind, const QFont &chosen);
    void changeFontSize(FontKind kind);
    void changeWebPref();

    void changeEditorTextColor();
    void changeEditorBackgroundColor();
    void changeEditorOpacity();

    void inputBaseURL();
    void chooseBaseURL();
    void inputHTMLCheckerPath();
    void chooseHTMLCheckerPath();
    void inputHTMLCheckerOptions();
    void inputCSSCheckerPath();
    void chooseCSSCheckerPath();
    void inputCSSCheckerOptions();
    void chooseTextEncoding();
    void chooseReturnCode();

    void suspendRenderPressed();
    void suspendTagColoringPressed();
    void inputSuspendTime();
    void setSuspendTimeFieldEnabled();

    void addExBrowser();
    void removeExBrowser();
    // Takes the entries at the rows out and puts them back as one block at the drop row.
    void moveRowsOfArray(const QList<int> &rows, int row);

    void preferencesPanelIsClosing();
    void saveWindowProperties() const;

    // The largest font size the panel takes, in points.
    static constexpr int largestFontSize = 288;
    // The external browsers list holds at most this many.
    static constexpr int maxExBrowsers = 10;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    // The name field, size box and chooser button of a font.
    struct FontControls
    {
        QLineEdit *field;
        QComboBox *size;
        QPushButton *button;
    };

    TWPreferencesPanelController();
    void awakeFromNib();
    FontControls fontControls(FontKind kind) const;
    QFont font(FontKind kind) const;
    void setFont(FontKind kind, const QFont &font);
    void applyFont(FontKind kind);
    void showFont(FontKind kind);
    void setButtonsState();
    void exBrowsersChanged();
    // A path chosen in a file dialog for one of the path fields; answers whether one was.
    bool choosePath(QLineEdit *field, bool asURL);

    Ui::TWPreferencePanel *ui;
    TWPreferences *preferences;
    TWExBrowserTableModel *browsersModel;
    QFontDialog *fontPanel = nullptr;
    FontKind fontPanelKind = viewerFont;
};
