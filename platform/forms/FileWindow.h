#pragma once

#include <QFileDialog>
#include <QUrl>

namespace forms {

/// The window of a file dialog: never asks whether to overwrite, and checks what the flags of CommonDialog
/// say must exist.
class FileWindow final : public QFileDialog {
    Q_OBJECT

public:
    FileWindow(QWidget* owner, bool save, int flags);
    ~FileWindow() override;

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// Documents, desktop and downloads, as long as the window lives, beside what the user keeps in the side
    /// bar.
    void AddPlaces();
    /// Wide enough for what the columns hold, if the user has not made them wider.
    void WidenColumns();
    /// It is the system's own, which checks the name by itself.
    bool IsSystems() const;
    bool IsAcceptable(const QString& path) const;

    int m_flags;
    QList<QUrl> m_added;
};

} // namespace forms
