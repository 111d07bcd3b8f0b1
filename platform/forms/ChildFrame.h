#pragma once

#include "platform/forms/Form.h"

#include <QMdiSubWindow>

#include <utility>

namespace forms {

/// The frame of a child window in the document area. Its close box unloads the form; a fixed one follows the
/// size of its content.
class ChildFrame final : public QMdiSubWindow {
    Q_OBJECT

public:
    ChildFrame(std::weak_ptr<Form> form, const Design& design);

    std::shared_ptr<Form> Owner() const { return m_form.lock(); }
    bool IsFixed() const { return m_fixed; }
    /// True at the first call alone: the place of a new child is chosen once, then it is the user's.
    bool TakePlace() { return !std::exchange(m_placed, true); }
    /// A child that is shown again has the focus where it was.
    void setVisible(bool visible) override;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    std::weak_ptr<Form> m_form;
    bool m_fixed;
    bool m_placed = false;
    QPointer<QWidget> m_focus; ///< what had it when the child was hidden
};

} // namespace forms
