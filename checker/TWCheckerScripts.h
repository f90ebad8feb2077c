#pragma once

#include <QString>

// The checker programs Tagwright ships: an HTML checker (HTML Tidy, or the Nu Html Checker when
// the user has it) and a CSS checker (css-tree), kept in the application resources and put in
// the application data folder, where the preferences' default checker paths point.
class TWCheckerScripts
{
public:
    static constexpr char htmlCheckerRelativePath[] = "/htmllint/htmllint";
    static constexpr char cssCheckerRelativePath[] = "/css-validator/validator.sh";
    // The CSS checker's code, which its program runs with Node.js.
    static constexpr char cssCheckerScriptRelativePath[] = "/css-validator/validator.js";
    // Tells a checker the encoding of the file, named as TWTextFile::encodingName names it.
    static constexpr char encodingVariable[] = "TAGWRIGHT_TEXT_ENCODING";

    // Writes each shipped file to its place under dataFolder, making the folders, where nothing
    // is there yet: a file, folder or link there, the user's own or an older copy, stays as it
    // is. Failures are silent: the checker window says when a checker is missing.
    static void installIfMissing(const QString &dataFolder);
};
