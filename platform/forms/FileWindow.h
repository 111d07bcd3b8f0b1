#pragma once

#include <QFileDialog>

namespace forms {

/// The window of a file dialog: never asks whether to overwrite, and checks what the flags of CommonDialog
/// say must exist.
class FileWindow final : public QFileDialog {
    Q_OBJECT

public:
    FileWindow(QWidget* owner, bool save, int flags);

    void accept() override;

private:
    /// Wide enough for what the columns hold, if the user has not made them wider.
    void WidenColumns();
    bool IsAcceptable(const QString& path) const;

    int m_flags;
};

} // namespace forms
