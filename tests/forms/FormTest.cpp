// The life of windows: load, activation, unload, what keys press, and which rules run before.

#include "SampleForms.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "tests/support/Answers.h"
#include "tests/support/Keys.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QTest>

using forms::Form;
using forms::Kind;

namespace {

/// What was told but for the fields on the way.
std::string Heard(bool withFields = false) {
    QString told = TakeTold();
    if (!withFields)
        told.remove(QRegularExpression(QStringLiteral("\\w\\.(left|got)")));
    return told.simplified().toStdString();
}

void LoseAndRegainTheFocus(const QWidget& frame) {
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTest::qWait(1);
    QApplication::setActiveWindow(frame.window());
    QTest::qWait(1);
}

void ShowBox() {
    test::Answers answers;
    answers.Box(QStringLiteral("Текст"), forms::Icon::Information);
    forms::MsgBox(QStringLiteral("Текст"), forms::Icon::Information);
    QTest::qWait(1);
}

} // namespace

class FormTest : public testing::Test {
protected:
    void SetUp() override {
        frame = Form::Create<SampleFrame>();
        frame->Show();
        QTest::qWait(0);
        TakeTold();
    }

    static std::shared_ptr<SampleForm> Make(const char* name, Kind kind = Kind::Child) {
        return Form::Create<SampleForm>(QString::fromLatin1(name), kind);
    }
    static std::shared_ptr<SampleForm> Open(const char* name, Kind kind = Kind::Child) {
        auto form = Make(name, kind);
        form->Show();
        TakeTold();
        return form;
    }

    static QMdiSubWindow* FrameOf(const Form& form) {
        return qobject_cast<QMdiSubWindow*>(form.Surface()->parentWidget());
    }

    std::shared_ptr<SampleFrame> frame;
};

TEST_F(FormTest, LoadedStateAndObjectAreTwoThings) {
    auto form = Make("a");
    EXPECT_FALSE(form->IsLoaded());
    EXPECT_EQ(form->Tag(), QStringLiteral("0")) << "reading a property loads";
    EXPECT_FALSE(form->Surface()->isVisible());
    EXPECT_EQ(Heard(), "a.load");

    form->SetTag(QStringLiteral("1"));
    form->Show();
    form->txtFirst->setText(QStringLiteral("x"));
    EXPECT_GT(form->resized, 0) << "the Resize event comes before the first activation";
    EXPECT_EQ(Heard(), "a.activate");

    form->Unload();
    form->Unload();
    EXPECT_EQ(Heard(true), "a.unload");
    form->Show();
    EXPECT_EQ(form->Tag(), QStringLiteral("0")) << "loaded again, blank";
    EXPECT_EQ(form->txtFirst->text(), QString());
    EXPECT_EQ(Heard(true), "a.load a.activate");

    const std::weak_ptr<Form> weak = form;
    form.reset();
    EXPECT_FALSE(weak.expired()) << "the table of loaded forms holds it";
    FrameOf(*weak.lock())->close();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(Heard(true), "a.unload a.terminate");
}

TEST_F(FormTest, AFixedWindowFollowsItsContentAlone) {
    const auto fixed = Open("frmFixed");
    fixed->SetCaption(QStringLiteral("Новое"));
    EXPECT_EQ(FrameOf(*fixed)->windowTitle(), QStringLiteral("Новое"));
    EXPECT_EQ(fixed->Width(), forms::ToTwips(FrameOf(*fixed)->width()));
    QMdiSubWindow* window = FrameOf(*fixed);
    EXPECT_FALSE(window->windowFlags() & Qt::WindowMinMaxButtonsHint);
    const QSize size = window->size();
    window->resize(size * 2);
    EXPECT_EQ(window->size(), size) << "a fixed window keeps its size";
    QFont large = fixed->Surface()->font();
    large.setPointSize(large.pointSize() * 2);
    fixed->Surface()->setFont(large);
    QTest::qWait(1);
    EXPECT_GT(window->height(), size.height()) << "but follows its content";
}

TEST_F(FormTest, ActivationFollowsTheChangeOfTheActiveChild) {
    const auto a = Make("a");
    const auto b = Make("b");
    const auto c = Make("c");
    struct Step {
        const char* what;
        std::function<void()> act;
        const char* told;
        std::shared_ptr<Form> active;
    };
    const Step steps[] = {
        {"first shows",
         [&] {
             a->Show();
             b->Show();
             c->Show();
         },
         "a.load a.activate b.load b.activate c.load c.activate", c},
        {"showing the active child", [&] { c->Show(); }, "", c},
        {"showing another", [&] { a->Show(); }, "a.activate", a},
        {"a click into another", [&] { QTest::mouseClick(b->txtFirst, Qt::LeftButton); }, "b.activate", b},
        {"another program", [&] { LoseAndRegainTheFocus(*frame->Window()); }, "", b},
        {"a message box over it", ShowBox, "", b},
        {"hiding the active child: the next in the z order", [&] { b->SetVisible(false); }, "a.activate", a},
        {"hiding one behind", [&] { c->SetVisible(false); }, "", a},
        {"a hidden one shown again", [&] { c->SetVisible(true); }, "c.activate", c},
        {"unloading the active child", [&] { c->Unload(); }, "c.unload a.activate", a},
        {"hiding the last", [&] { a->SetVisible(false); }, "", nullptr},
        {"and showing it again", [&] { a->SetVisible(true); }, "a.activate", a},
    };
    for (const Step& step : steps) {
        step.act();
        EXPECT_EQ(Heard(), step.told) << step.what;
        EXPECT_EQ(frame->ActiveForm(), step.active) << step.what;
    }
}

TEST_F(FormTest, FormMayUnloadItselfInAnyHandler) {
    using Event = std::function<void()> SampleForm::*;
    const auto nothing = [](SampleForm*) {};
    const std::tuple<const char*, Event, std::function<void(SampleForm*)>> rows[] = {
        {"load", &SampleForm::inLoad, nothing},
        {"activate", &SampleForm::inActivate, nothing},
        {"click", &SampleForm::inFind,
         [](SampleForm* form) { QTest::mouseClick(form->cmdFind, Qt::LeftButton); }},
        {"enter", &SampleForm::inFind,
         [](SampleForm* form) { QTest::keyClick(form->txtFirst, Qt::Key_Return); }},
        {"unload", &SampleForm::inUnload, [](SampleForm* form) { form->Unload(); }},
    };
    for (const Kind kind : {Kind::Child, Kind::Dialog}) {
        for (const auto& [name, event, act] : rows) {
            auto form = Make("a", kind);
            SampleForm* const bare = form.get();
            const std::weak_ptr<Form> weak = form;
            bare->*event = [bare] { bare->Unload(); };
            form->Show();
            form.reset();
            if (!weak.expired())
                act(bare);
            EXPECT_TRUE(weak.expired()) << name;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            EXPECT_EQ(frame->Window()->findChild<QMdiSubWindow*>(), nullptr) << name;
        }
    }
    const auto brief = Make("brief");
    brief->inLoad = [&] { brief->Unload(); };
    EXPECT_EQ(brief->Tag(), QStringLiteral("0")) << "its properties are then those of the design";
    EXPECT_FALSE(brief->IsLoaded());
}

TEST_F(FormTest, ModalShowEndsWhenTheWindowIsHiddenAndKeepsWhatItHolds) {
    const auto child = Open("a");
    const auto dialog = Make("d", Kind::Dialog);
    dialog->inFind = [&] {
        dialog->SetTag(QStringLiteral("1"));
        dialog->SetVisible(false);
    };
    const struct {
        std::function<void(QWidget&)> end;
        const char* told;
        QString text;
    } rounds[] = {
        {[&](QWidget&) { QTest::keyClick(dialog->txtFirst, Qt::Key_Return); }, "d.load d.activate d.find(x)",
         QStringLiteral("x")},
        {[&](QWidget&) { QTest::keyClick(dialog->txtFirst, Qt::Key_Return); }, "d.activate d.find(xx)",
         QStringLiteral("xx")},
        {[](QWidget& window) { window.close(); }, "d.activate d.unload", {}},
    };
    for (const auto& round : rounds) {
        test::Answers answers;
        answers.Modal(QStringLiteral("d"), [&](QWidget& window) {
            EXPECT_EQ(&window, dialog->Surface());
            EXPECT_EQ(window.windowTitle(), dialog->Caption());
            EXPECT_LT((window.frameGeometry().center() - frame->Window()->frameGeometry().center())
                          .manhattanLength(),
                      8)
                << "centred on its owner";
            test::Type(dialog->txtFirst, QStringLiteral("x"));
            round.end(window);
        });
        dialog->Show(true);
        QTest::qWait(1);
        EXPECT_TRUE(frame->Window()->isActiveWindow());
        EXPECT_EQ(Heard(), round.told) << "the child stayed the active one";
        EXPECT_EQ(dialog->IsLoaded(), !round.text.isNull());
        if (dialog->IsLoaded()) {
            EXPECT_EQ(dialog->Tag() + dialog->txtFirst->text(), u'1' + round.text);
        }
    }
}

/// What a platform theme may let a check box and a frame do with Enter.
class Theme final : public QObject {
protected:
    bool eventFilter(QObject* control, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Return)
            return false;
        if (auto* box = qobject_cast<QCheckBox*>(control))
            box->click();
        event->accept();
        return true;
    }
};

TEST_F(FormTest, EnterAndEscPressTheButtons) {
    Theme theme;
    for (const Kind kind : {Kind::Child, Kind::Dialog}) {
        const auto form = Open("a", kind);
        auto* box = new QCheckBox(form->Surface());
        auto* group = new QGroupBox(form->Surface());
        auto* inGroup = new QLineEdit(group);
        for (QWidget* control : {static_cast<QWidget*>(box), static_cast<QWidget*>(group)}) {
            control->installEventFilter(&theme);
            control->show();
        }
        EXPECT_TRUE(form->cmdFind->isDefault()) << "marked";
        EXPECT_TRUE(form->txtFirst->hasFocus() || form->Surface()->focusWidget() == form->txtFirst);

        const std::tuple<QWidget*, Qt::Key, const char*> rows[] = {
            {form->txtFirst, Qt::Key_Return, "a.find()"}, {form->txtFirst, Qt::Key_Enter, "a.find()"},
            {form->txtFirst, Qt::Key_Escape, "a.cancel"}, {form->txtLines, Qt::Key_Escape, "a.cancel"},
            {form->txtLines, Qt::Key_Return, ""},         {form->cmdOther, Qt::Key_Return, "a.other"},
            {form->cmdOther, Qt::Key_Escape, "a.cancel"}, {form->cmdCancel, Qt::Key_Enter, "a.cancel"},
            {form->cmdOther, Qt::Key_Space, "a.other"},   {box, Qt::Key_Return, "a.find()"},
            {inGroup, Qt::Key_Return, "a.find()"},        {nullptr, {}, "disabled from here"},
            {form->txtFirst, Qt::Key_Return, ""},         {box, Qt::Key_Return, ""},
        };
        for (const auto& [focus, key, told] : rows) {
            if (!focus) {
                form->cmdFind->setEnabled(false);
                continue;
            }
            focus->setFocus();
            TakeTold();
            QTest::keyClick(focus, key);
            EXPECT_EQ(Heard(), told) << focus->objectName().toStdString() << " " << key;
        }
        EXPECT_FALSE(box->isChecked());
        form->Unload();
    }
}

TEST_F(FormTest, RulesOfAllFieldsRunBeforeAnyActionReadsThem) {
    const auto form = Open("a");
    const std::tuple<const char*, const char*, std::function<void(QWidget*)>> rows[] = {
        {"Enter", "a.find(О^Нил)", [](QWidget* focus) { QTest::keyClick(focus, Qt::Key_Return); }},
        {"Esc", "a.cancel", [](QWidget* focus) { QTest::keyClick(focus, Qt::Key_Escape); }},
        {"mouse", "a.find(О^Нил)", [&](QWidget*) { QTest::mouseClick(form->cmdFind, Qt::LeftButton); }},
        {"assistive tool", "a.find(О^Нил)",
         [&](QWidget*) {
             auto* button = QAccessible::queryAccessibleInterface(form->cmdFind);
             button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
         }},
        {"accelerator", "a.find(О^Нил)",
         [&](QWidget*) { QTest::keyClick(frame->Window()->windowHandle(), Qt::Key_F, Qt::AltModifier); }},
        {"command", "a.nothing", [&](QWidget*) { frame->CallActive(&SampleForm::Nothing); }},
    };
    for (const auto& [way, told, act] : rows) {
        SCOPED_TRACE(way);
        for (QWidget* focus : {form->txtFirst, form->txtSecond}) {
            focus->setFocus();
            form->txtFirst->setText(QStringLiteral("О'Нил"));
            TakeTold();
            act(focus);
            // Some keep the button down visibly before it acts.
            EXPECT_TRUE(QTest::qWaitFor(
                [&, last = QString::fromUtf8(told)] { return !Told().isEmpty() && Told().last() == last; }));
            EXPECT_EQ(form->txtFirst->text(), QStringLiteral("О^Нил"));
        }
    }
}

TEST_F(FormTest, LeavingAndEnteringAFieldAreMovesInsideTheProgram) {
    const auto form = Open("a");
    QTest::qWait(1);
    form->txtFirst->setFocus();
    TakeTold();
    QTest::keyClick(form->txtFirst, Qt::Key_Tab);
    EXPECT_EQ(Heard(true), "a.left a.got");

    const std::pair<const char*, std::function<void()>> rows[] = {
        {"a message box", ShowBox},
        {"a menu",
         [&] {
             test::Answers answers;
             answers.Menu(QStringLiteral("mnuContext"), QString());
             frame->PopupMenu(QStringLiteral("mnuContext"), QPoint(10, 10));
         }},
        {"another program", [&] { LoseAndRegainTheFocus(*frame->Window()); }},
    };
    for (const auto& [name, act] : rows) {
        for (QWidget* field : {form->txtFirst, form->txtSecond}) {
            field->setFocus();
            TakeTold();
            act();
            EXPECT_EQ(form->Surface()->focusWidget(), field) << name;
            EXPECT_EQ(Heard(true), "") << name << " is no way out of the field";
        }
    }
}

TEST_F(FormTest, FailureThatEscapesAHandlerIsShownAndTheProgramGoesOn) {
    test::Answers answers;
    for (int i = 0; i < 5; ++i)
        answers.Box(QStringLiteral("произошла ошибка №11 Деление на 0"), forms::Icon::Critical);
    const auto form = Make("a");
    form->inLoad = form->inActivate = form->inFind =
        form->inUnload = [] { runtime::Raise(runtime::DivisionByZero); };
    form->Show();
    EXPECT_TRUE(form->Surface()->isVisible()) << "a load that fails leaves the window";
    form->cmdFind->click();
    frame->Window()->findChild<QAction*>(QStringLiteral("mnuContextFail"))->trigger();
    form->Unload();
    EXPECT_FALSE(form->IsLoaded());
}
