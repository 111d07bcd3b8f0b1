#pragma once

#include <QObject>
#include <QPointer>
#include <QPushButton>

#include <functional>
#include <memory>
#include <vector>

class QDialog;
class QFocusEvent;
class QKeyEvent;

namespace forms {

class ChildFrame;

enum class Kind {
    Child,  ///< child window of the frame
    Dialog, ///< window of its own, shown modally
    Frame,  ///< the multiple-document frame itself
};

enum class Border {
    Sizable,
    Fixed, ///< cannot be resized; neither a minimise nor a maximise box
};

/// What a window is before its load: the values that each load starts from again.
struct Design {
    QString name;    ///< object name of the window, its class name
    QString caption; ///< window title
    Kind kind = Kind::Child;
    Border border = Border::Sizable;
    QString tag;           ///< starting Tag
    QSize size = {};       ///< starting outer size in logical pixels for sizable windows; empty: by content
    bool onScreen = false; ///< a dialog in the middle of the screen, not over its owner

    /// Those of a window of that type with this border.
    Qt::WindowFlags Flags(Qt::WindowType type) const;
};

/// Whether Enter alone is pressed, on either part of the keyboard.
bool IsEnter(const QKeyEvent& key);

/// A window of the program: an object that is loaded, shown, unloaded and loaded again.
///
/// The object and its loaded state are two things. Objects are shared; the table of loaded forms holds one
/// reference to each loaded form. Load() makes the window and its controls with their design values, hidden,
/// and runs Form_Load. Unload() runs Form_Unload, takes the window off the screen and drops the table's
/// reference; the object with its own fields lives on while somebody holds it, and can be loaded again,
/// blank. When the last reference goes, Form_Terminate runs. Using a property of the window (Tag, Caption)
/// while it is not loaded loads it, hidden.
///
/// A form keeps its controls by QPointer: behind Unload they go.
class Form : public QObject, public std::enable_shared_from_this<Form> {
    Q_OBJECT

public:
    ~Form() override;

    /// Makes a form. Forms are never made in another way.
    template <class T, class... Arguments>
    static std::shared_ptr<T> Create(Arguments&&... arguments) {
        return std::shared_ptr<T>(new T(std::forward<Arguments>(arguments)...), [](T* form) {
            form->Terminate();
            delete form;
        });
    }

    /// The one process-wide instance of a class, made at the first reference.
    template <class T>
    static std::shared_ptr<T> Default() {
        static std::weak_ptr<T> instance;
        std::shared_ptr<T> form = instance.lock();
        if (!form) {
            form = Create<T>();
            instance = form;
            KeepForever(form);
        }
        return form;
    }

    bool IsLoaded() const { return m_surface != nullptr; }
    /// Makes the window, hidden; nothing if it is loaded.
    void Load();
    /// Shows the window, loading it first if need be. A modal show returns when the window is hidden or
    /// unloaded.
    void Show(bool modal = false);
    /// Nothing if the form is not loaded.
    void Unload();

    QString Tag();
    void SetTag(const QString& tag);
    QString Caption();
    void SetCaption(const QString& caption);
    /// Hides or shows a child window with its frame; hiding a modal window ends its modal show.
    void SetVisible(bool visible);

    /// Outer size, title bar and borders included, in twips.
    int Width() const;
    int Height() const;
    /// Of a sizable window; a fixed one follows its content.
    void SetHeight(int twips);
    bool IsMinimised() const;

    /// The widget that bears the form's name and holds its controls; null while it is not loaded. Dialogs are
    /// their own top-level window, child windows stand in a frame of the document area.
    QWidget* Surface() const { return m_surface; }

    const QString& Name() const { return m_design.name; }

    /// The loaded forms, in the order of their load.
    static std::vector<std::shared_ptr<Form>> Loaded();

protected:
    explicit Form(Design design);

    /// Builds the controls on the surface: object names, captions, limits, layout, tab order. Runs at each
    /// load, before Form_Load. The first field in the tab order gets the focus, unless this sets it
    /// elsewhere.
    virtual void CreateControls(QWidget* surface) = 0;

    virtual void Form_Load() {}
    /// Runs when the form is first shown and when it becomes the active child in place of another child; not
    /// when the program regains the focus, nor after a modal window or message box.
    virtual void Form_Activate() {}
    virtual void Form_Resize() {}
    virtual void Form_Unload() {}
    virtual void Form_Terminate() {}
    /// Sees the keys that no control has taken; true: handled.
    virtual bool Form_KeyDown(int key, Qt::KeyboardModifiers modifiers);

    /// Connects a signal to a handler; a failure that escapes the handler is shown in the error box with that
    /// head. Nothing runs for the controls of an earlier load. A push button's handlers run behind the
    /// leaving rules of all fields.
    template <class Sender, class Signal, class Handler>
    void On(Sender* sender, Signal signal, Handler handler, const QString& head = {}) {
        QWidget* const surface = m_surface;
        QObject::connect(sender, signal, surface,
                         [weak = weak_from_this(), surface, handler, head](auto&&... arguments) {
                             const std::shared_ptr<Form> form = weak.lock();
                             if (!form || form->m_surface != surface)
                                 return;
                             const auto handle = [&] {
                                 if constexpr (std::is_base_of_v<QPushButton, Sender>)
                                     form->ApplyLeavingRules();
                                 Hand(handler, std::forward<decltype(arguments)>(arguments)...);
                             };
                             form->Dispatch(handle, head);
                         });
    }

    /// Runs when the field loses the focus, and before any button of the form or command on it acts: a text
    /// may have come without the focus, and the focus may have gone without a word. Rules have to bear
    /// running twice.
    void OnLostFocus(QWidget* field, std::function<void()> rule);
    /// Runs the leaving rules of all fields, behind what an input method still has to deliver. A handler that
    /// reads fields calls it first, unless a button or a command has.
    void ApplyLeavingRules();
    void OnGotFocus(QWidget* field, std::function<void()> rule);

    /// The button that Enter presses wherever the focus is (another focused button comes first) / that Esc
    /// presses.
    void SetDefaultButton(QPushButton* button);
    void SetCancelButton(QPushButton* button);

    template <class Sender, class Signal, class Handler>
    void On(const QPointer<Sender>& sender, Signal signal, Handler handler, const QString& head = {}) {
        On(sender.data(), signal, std::move(handler), head);
    }

    /// The head of the error box of a routine of this window.
    QString Head(const char* routine) const;

    /// Runs a handler of this form; shows a failure that escapes it under the head.
    void Dispatch(const std::function<void()>& handler, const QString& head = {});

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class Application;
    friend class ChildFrame;
    friend class MdiForm;

    struct Rule {
        const QObject* field;
        std::function<void()> apply;
    };
    using Rules = std::vector<Rule>; ///< in the order of their making

    /// What a form knows of its window from load to unload.
    struct State {
        QString tag;
        QPointer<ChildFrame> frame; ///< of a child window
        QPointer<QPushButton> defaultButton;
        QPointer<QPushButton> cancelButton;
        Rules leaving;
        Rules entering;
        /// The field that lost the focus to another window or to a menu; getting it back is no entering.
        QPointer<QWidget> resting;
        bool unloading = false;
    };

    /// Makes the window of this kind, hidden; the surface is what bears the controls.
    virtual QWidget* MakeSurface();
    /// Runs before Form_Unload of this form.
    virtual void UnloadDependants() {}

    /// Calls a handler that takes all arguments of the signal or none.
    template <class Handler, class... Arguments>
    static void Hand(const Handler& handler, Arguments&&... arguments) {
        if constexpr (std::is_invocable_v<const Handler&, Arguments...>)
            handler(std::forward<Arguments>(arguments)...);
        else
            handler();
    }

    void Terminate();
    static void KeepForever(std::shared_ptr<Form> form);
    /// Lets go of every form without a word, at the end of the program.
    static void ReleaseAll();
    /// The loaded form that the widget stands on; null if there is none.
    static std::shared_ptr<Form> Of(const QWidget* widget);

    void FinishControls();
    void Discard();
    void MakeVisible();
    void PlaceDialog();
    void TakeFirstFocus();
    QWidget* OuterWindow() const;
    void Resized();
    void FollowFocus(const QFocusEvent& event, QWidget* field);
    /// The button that Enter or Esc presses; null if there is none.
    QPushButton* ButtonFor(const QKeyEvent& key) const;
    bool HandleKey(const QKeyEvent& key);

    Design m_design;
    QPointer<QWidget> m_surface;
    std::unique_ptr<State> m; ///< of one load
};

} // namespace forms
