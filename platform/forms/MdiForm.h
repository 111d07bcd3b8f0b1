#pragma once

#include "platform/forms/Form.h"
#include "platform/runtime/Failure.h"

class QMainWindow;
class QMdiSubWindow;
class QMenu;

namespace forms {

/// The frame with the menu bar and the child windows. There is one at a time.
class MdiForm : public Form {
    Q_OBJECT

public:
    enum Arrangement { Cascade = 0, TileHorizontally = 1, TileVertically = 2 };

    /// The loaded frame; null if there is none.
    static MdiForm* Current();

    /// The active child; null if there is none.
    std::shared_ptr<Form> ActiveForm() const;

    /// Calls an operation of the active child, behind the leaving rules of its fields. Nothing without an
    /// active child, failure 438 if it is of another kind.
    template <class Child, class... Parameters, class... Arguments>
    void CallActive(void (Child::*operation)(Parameters...), const Arguments&... arguments) {
        WithActive([&](Form& active) {
            auto* child = dynamic_cast<Child*>(&active);
            if (!child)
                runtime::Raise(runtime::NoSuchMember);
            (child->*operation)(arguments...);
        });
    }

    /// Arranges all visible children that are not minimised: cascade, wide windows one under the other,
    /// windows side by side. Fixed windows are moved, not resized.
    void Arrange(Arrangement arrangement);

    /// Pops up a menu that is not in the bar, at a place of the screen, and returns when it is closed and its
    /// command has run. The calling child stays the active one meanwhile.
    void PopupMenu(const QString& name, QPoint screenPosition);

    QMainWindow* Window() const;

protected:
    explicit MdiForm(Design design);
    ~MdiForm() override;

    /// A menu of the bar, or a hidden one for PopupMenu.
    QMenu* AddMenu(const QString& name, const QString& caption, bool visible = true);
    void AddCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> command);
    void AddSeparator(QMenu* menu, const QString& name);
    /// Appends the list of open children, the active one marked, to a menu of the bar.
    void SetWindowList(QMenu* menu);

private:
    friend class ChildFrame;
    friend class Form;
    friend class FrameWindow;

    QWidget* MakeSurface() override;
    void UnloadDependants() override;

    void WithActive(const std::function<void(Form&)>& call);
    void FillWindowList();

    // The life of the children in the area. Which child is the active one is kept here, since the area
    // forgets it whenever the program loses the focus.
    ChildFrame* AddChild(Form& child);
    void Switch(const std::function<void()>& change);
    void ShowChild(ChildFrame* frame);
    void PlaceNew(ChildFrame& frame);
    void HideChild(ChildFrame* frame);
    void RemoveChild(ChildFrame* frame);
    void ActivateNext();
    /// Runs Form_Activate if another child has become the active one.
    void Settle();
    /// The frame itself has got or lost the focus of the system.
    void FollowWindowActivation(const std::function<void()>& deliver);
    /// Visible children that are not minimised, the topmost first.
    std::vector<ChildFrame*> OpenFrames() const;

    struct FrameState;
    std::shared_ptr<FrameState> m_frame;
};

/// Pops up the named menu of the current frame for a grid: at the mouse, or, asked for by the keyboard, at
/// the grid's current cell. Nothing without a frame.
void PopupMenu(const QString& name, QPoint screenPosition);

} // namespace forms
