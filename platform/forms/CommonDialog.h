#pragma once

#include <QString>

class QWidget;

namespace forms {

inline constexpr int cdlOFNPathMustExist = 2048;
inline constexpr int cdlOFNFileMustExist = 4096;

/// The file dialogs. Set the properties, show, then read FileName: empty if the user cancelled. Neither form
/// asks whether to overwrite; a name typed without an extension gets the filter's one when saving. The object
/// name of the dialog shown is `name`.
class CommonDialog {
public:
    explicit CommonDialog(QString name)
        : m_name(std::move(name)) {}

    QString InitDir;
    int Flags = 0;
    QString Filter; ///< text (*.extension)|*.extension
    QString FileName;

    void ShowOpen(QWidget* owner) { Show(owner, false); }
    void ShowSave(QWidget* owner) { Show(owner, true); }

private:
    void Show(QWidget* owner, bool save);
    QString m_name;
};

} // namespace forms
