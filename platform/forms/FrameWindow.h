#pragma once

#include "platform/forms/MdiForm.h"

#include <QMainWindow>

class QMdiArea;

namespace forms {

/// The top-level window of the multiple-document frame. Its keys are those of such frames everywhere: F10
/// opens the menu bar, Ctrl+F6 and Ctrl+Shift+F6 go through the children, Ctrl+F4 closes the active one,
/// Alt+Minus opens its system menu.
class FrameWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit FrameWindow(std::weak_ptr<Form> form);

    /// The ground of the document area: darker than the windows on it in any theme.
    static QBrush GroundOf(const QPalette& palette);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QMdiArea* Area() const;
    void OpenMenuBar();
    void GoThroughChildren(int step);

    std::weak_ptr<Form> m_form;
};

} // namespace forms
