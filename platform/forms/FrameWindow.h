#pragma once

#include "platform/forms/MdiForm.h"

#include <QMainWindow>

namespace forms {

/// The top-level window of the multiple-document frame. Its close box unloads the form.
class FrameWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit FrameWindow(std::weak_ptr<Form> form)
        : m_form(std::move(form)) {}

    /// The ground of the document area: darker than the windows on it in any theme.
    static QBrush GroundOf(const QPalette& palette);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    std::weak_ptr<Form> m_form;
};

} // namespace forms
