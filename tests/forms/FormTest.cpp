// The life of windows: load, activation, unload, what keys press, and which rules run before.

#include "SampleForms.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "tests/support/Answers.h"
#include "tests/support/Keys.h"
#include "tests/support/WindowWalk.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QTest>

using forms::Form;
using forms::Kind;

namespace {

/// What was told but for the fields that were left on the way.
QString WithoutLeft(QString told) {
    return told.remove(QRegularExpression(QStringLiteral("\\w\\.left"))).simplified();
}

} // namespace

class FormTest : public testing::Test {
protected:
    void SetUp() override {
        frame = Form::Create<SampleFrame>();
        frame->Show();
        QTest::qWait(0);
        Told().clear();
    }

    template <class T = SampleForm>
    std::shared_ptr<T> Make(const QString& name, Kind kind = Kind::Child,
                            forms::Border border = forms::Border::Fixed) {
        return Form::Create<T>(name, kind, border);
    }

    static QMdiSubWindow* FrameOf(const Form& form) {
        return qobject_cast<QMdiSubWindow*>(form.Surface()->parentWidget());
    }

    std::shared_ptr<SampleFrame> frame;
};

TEST_F(FormTest, LoadedStateAndObjectAreTwoThings) {
    auto form = Make(QStringLiteral("a"));
    EXPECT_FALSE(form->IsLoaded());
    EXPECT_EQ(form->Tag(), QStringLiteral("0")) << "reading a property loads";
    EXPECT_TRUE(form->IsLoaded());
    EXPECT_FALSE(form->Visible());
    EXPECT_EQ(TakeTold(), QStringLiteral("a.load"));

    form->SetTag(QStringLiteral("1"));
    form->Show();
    form->txtFirst->setText(QStringLiteral("x"));
    EXPECT_TRUE(form->Visible());
    EXPECT_GT(form->resized, 0) << "the Resize event comes before the first activation";
    EXPECT_EQ(TakeTold(), QStringLiteral("a.load a.activate").mid(7));

    form->Unload();
    form->Unload();
    EXPECT_EQ(TakeTold(), QStringLiteral("a.unload"));
    form->Show();
    EXPECT_EQ(form->Tag(), QStringLiteral("0")) << "loaded again, blank";
    EXPECT_EQ(form->txtFirst->text(), QString());
    EXPECT_EQ(TakeTold(), QStringLiteral("a.load a.activate"));

    const std::weak_ptr<Form> weak = form;
    form.reset();
    EXPECT_FALSE(weak.expired()) << "the table of loaded forms holds it";
    weak.lock()->Unload();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(TakeTold(), QStringLiteral("a.unload a.terminate"));
}

TEST_F(FormTest, NamesTitlesAndSizesStandOnOrdinaryWidgets) {
    const auto fixed = Make(QStringLiteral("frmFixed"));
    const auto sizable = Make(QStringLiteral("frmSizable"), Kind::Child, forms::Border::Sizable);
    fixed->Show();
    sizable->Show();
    EXPECT_EQ(frame->Area()->subWindowList().size(), 2);
    for (const auto& form : {fixed, sizable}) {
        const QMdiSubWindow* window = FrameOf(*form);
        EXPECT_EQ(window->objectName(), form->Name());
        EXPECT_EQ(form->Surface()->objectName(), form->Name());
        EXPECT_EQ(window->windowTitle(), form->Caption());
        EXPECT_EQ(form->Width(), forms::ToTwips(window->width()));
        EXPECT_EQ(form->Height(), forms::ToTwips(window->height()));
    }
    sizable->SetCaption(QStringLiteral("Новое"));
    EXPECT_EQ(FrameOf(*sizable)->windowTitle(), QStringLiteral("Новое"));
    EXPECT_EQ(sizable->Surface()->windowTitle(), QStringLiteral("Новое"));

    EXPECT_EQ(FrameOf(*sizable)->size(), QSize(400, 300));
    sizable->SetHeight(forms::ToTwips(350));
    EXPECT_EQ(FrameOf(*sizable)->height(), 350);

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
    const auto a = Make(QStringLiteral("a"));
    const auto b = Make(QStringLiteral("b"));
    const auto c = Make(QStringLiteral("c"));
    a->Show();
    b->Show();
    c->Show();
    EXPECT_EQ(WithoutLeft(TakeTold()),
              QStringLiteral("a.load a.activate b.load b.activate c.load c.activate"));
    EXPECT_EQ(frame->ActiveForm(), c);

    struct Step {
        const char* what;
        std::function<void()> act;
        const char* told;
        std::shared_ptr<Form> active;
    };
    const Step steps[] = {
        {"showing the active child", [&] { c->Show(); }, "", c},
        {"showing another", [&] { a->Show(); }, "a.activate", a},
        {"a click into another", [&] { QTest::mouseClick(b->txtFirst, Qt::LeftButton); }, "b.activate", b},
        {"the program loses and regains the focus",
         [&] {
             QWidget other;
             other.show();
             QApplication::setActiveWindow(&other);
             QTest::qWait(1);
             QApplication::setActiveWindow(frame->Window());
             QTest::qWait(1);
         },
         "", b},
        {"a message box over it",
         [&] {
             test::Answers answers;
             answers.Box(QStringLiteral("Текст"), forms::Icon::Information);
             forms::MsgBox(QStringLiteral("Текст"), forms::Icon::Information);
             QTest::qWait(1);
         },
         "", b},
        {"hiding the active child: the next in the z order", [&] { b->SetVisible(false); }, "a.activate", a},
        {"hiding one behind", [&] { c->SetVisible(false); }, "", a},
        {"a hidden one shown again", [&] { c->SetVisible(true); }, "c.activate", c},
        {"unloading the active child", [&] { c->Unload(); }, "c.unload a.activate", a},
        {"hiding the last", [&] { a->SetVisible(false); }, "", nullptr},
        {"and showing it again", [&] { a->SetVisible(true); }, "a.activate", a},
    };
    for (const Step& step : steps) {
        step.act();
        EXPECT_EQ(WithoutLeft(TakeTold()).toStdString(), step.told) << step.what;
        EXPECT_EQ(frame->ActiveForm(), step.active) << step.what;
    }
}

TEST_F(FormTest, FormMayUnloadItselfInAnyHandler) {
    const auto unloadSelf = [](SampleForm* form) { return [form] { form->Unload(); }; };
    struct Case {
        const char* handler;
        std::function<void(SampleForm*)> arrange;
        std::function<void(SampleForm*)> act;
    };
    const auto nothing = [](SampleForm*) {};
    const Case cases[] = {
        {"load", [&](SampleForm* form) { form->inLoad = unloadSelf(form); }, nothing},
        {"activate", [&](SampleForm* form) { form->inActivate = unloadSelf(form); }, nothing},
        {"click", [&](SampleForm* form) { form->inFind = unloadSelf(form); },
         [](SampleForm* form) { QTest::mouseClick(form->cmdFind, Qt::LeftButton); }},
        {"enter", [&](SampleForm* form) { form->inFind = unloadSelf(form); },
         [](SampleForm* form) { QTest::keyClick(form->txtFirst, Qt::Key_Return); }},
        {"unload", [&](SampleForm* form) { form->inUnload = unloadSelf(form); },
         [](SampleForm* form) { form->Unload(); }},
    };
    const auto brief = Make(QStringLiteral("brief"));
    brief->inLoad = unloadSelf(brief.get());
    EXPECT_EQ(brief->Tag(), QStringLiteral("0")) << "its properties are then those of the design";
    EXPECT_FALSE(brief->Visible());
    for (const Kind kind : {Kind::Child, Kind::Dialog}) {
        for (const Case& c : cases) {
            auto form = Make(QStringLiteral("a"), kind);
            const std::weak_ptr<Form> weak = form;
            c.arrange(form.get());
            form->Show();
            SampleForm* bare = form.get();
            form.reset();
            if (!weak.expired())
                c.act(bare);
            EXPECT_TRUE(weak.expired()) << c.handler;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            EXPECT_TRUE(frame->Area()->subWindowList().isEmpty()) << c.handler;
        }
    }
}

TEST_F(FormTest, CloseBoxUnloads) {
    const auto child = Make(QStringLiteral("a"));
    child->Show();
    FrameOf(*child)->close();
    EXPECT_EQ(TakeTold(), QStringLiteral("a.load a.activate a.unload"));

    const auto dialog = Make(QStringLiteral("d"), Kind::Dialog);
    test::Answers answers;
    answers.Modal(QStringLiteral("d"), [](QWidget& window) { window.close(); });
    dialog->Show(true);
    QTest::qWait(1);
    EXPECT_TRUE(frame->Window()->isActiveWindow());
    EXPECT_FALSE(dialog->IsLoaded());
    EXPECT_EQ(dialog->Tag(), QStringLiteral("0"));
}

TEST_F(FormTest, ModalShowEndsWhenTheWindowIsHiddenAndKeepsWhatItHolds) {
    const auto child = Make(QStringLiteral("a"));
    child->Show();
    const auto dialog = Make(QStringLiteral("d"), Kind::Dialog);
    dialog->inFind = [&] {
        dialog->SetTag(QStringLiteral("1"));
        dialog->SetVisible(false);
    };
    for (int round = 0; round < 2; ++round) {
        TakeTold();
        test::Answers answers;
        answers.Modal(QStringLiteral("d"), [&](QWidget& window) {
            EXPECT_EQ(&window, dialog->Surface());
            EXPECT_EQ(window.windowTitle(), dialog->Caption());
            EXPECT_LT((window.frameGeometry().center() - frame->Window()->frameGeometry().center())
                          .manhattanLength(),
                      8)
                << "centred on its owner";
            test::Type(dialog->txtFirst, QStringLiteral("x"));
            QTest::keyClick(dialog->txtFirst, Qt::Key_Return);
        });
        dialog->Show(true);
        QTest::qWait(1);
        EXPECT_TRUE(frame->Window()->isActiveWindow());
        EXPECT_EQ(dialog->Tag(), QStringLiteral("1"));
        EXPECT_EQ(dialog->txtFirst->text(), QString(round + 1, u'x'));
        const QString told = TakeTold();
        EXPECT_EQ(told.contains(QStringLiteral("d.load")), round == 0);
        EXPECT_EQ(told.count(QStringLiteral("d.activate")), 1);
        EXPECT_FALSE(told.contains(QStringLiteral("a.activate"))) << "the child stayed the active one";
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
        const auto form = Make(QStringLiteral("a"), kind);
        form->Show();
        auto* box = new QCheckBox(form->Surface());
        auto* group = new QGroupBox(form->Surface());
        auto* inGroup = new QLineEdit(group);
        box->installEventFilter(&theme);
        group->installEventFilter(&theme);
        box->show();
        group->show();
        EXPECT_TRUE(form->cmdFind->isDefault()) << "marked";
        EXPECT_TRUE(form->txtFirst->hasFocus() || form->Surface()->focusWidget() == form->txtFirst);

        struct Case {
            QWidget* focus;
            Qt::Key key;
            const char* told;
        };
        const Case cases[] = {
            {form->txtFirst, Qt::Key_Return, "find"},   {form->txtFirst, Qt::Key_Enter, "find"},
            {form->txtFirst, Qt::Key_Escape, "cancel"}, {form->txtLines, Qt::Key_Escape, "cancel"},
            {form->txtLines, Qt::Key_Return, ""},       {form->cmdOther, Qt::Key_Return, "other"},
            {form->cmdOther, Qt::Key_Escape, "cancel"}, {form->cmdCancel, Qt::Key_Enter, "cancel"},
            {form->cmdOther, Qt::Key_Space, "other"},   {box, Qt::Key_Return, "find"},
            {inGroup, Qt::Key_Return, "find"},
        };
        for (const Case& c : cases) {
            c.focus->setFocus();
            TakeTold();
            QTest::keyClick(c.focus, c.key);
            const QString told =
                WithoutLeft(TakeTold()).remove(QStringLiteral("a.")).remove(QStringLiteral("()"));
            EXPECT_EQ(told.toStdString(), c.told) << c.focus->objectName().toStdString() << " " << c.key;
        }
        form->cmdFind->setEnabled(false);
        for (QWidget* field : std::initializer_list<QWidget*>{form->txtFirst, box}) {
            field->setFocus();
            TakeTold();
            QTest::keyClick(field, Qt::Key_Return);
            EXPECT_EQ(WithoutLeft(TakeTold()), QString()) << "a disabled default button is not pressed";
        }
        EXPECT_FALSE(box->isChecked());
        form->Unload();
    }
}

TEST_F(FormTest, RulesOfAllFieldsRunBeforeAnyActionReadsThem) {
    const auto form = Make(QStringLiteral("a"));
    form->Show();
    struct Case {
        const char* way;
        const char* told;
        std::function<void(QWidget* focus)> act;
    };
    const Case cases[] = {
        {"Enter", "find", [&](QWidget* focus) { QTest::keyClick(focus, Qt::Key_Return); }},
        {"Esc", "cancel", [&](QWidget* focus) { QTest::keyClick(focus, Qt::Key_Escape); }},
        {"mouse", "find", [&](QWidget*) { QTest::mouseClick(form->cmdFind, Qt::LeftButton); }},
        {"assistive tool", "find",
         [&](QWidget*) {
             auto* button = QAccessible::queryAccessibleInterface(form->cmdFind);
             button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
             QTest::qWait(200);
         }},
        {"accelerator", "find",
         [&](QWidget*) {
             QTest::keyClick(frame->Window()->windowHandle(), Qt::Key_F, Qt::AltModifier);
             QTest::qWait(200); // the button stays down visibly
         }},
        {"command", "nothing", [&](QWidget*) { frame->CallActive(&SampleForm::Nothing); }},
    };
    for (const Case& c : cases) {
        for (QWidget* focus : {form->txtFirst, form->txtSecond}) {
            focus->setFocus();
            form->txtFirst->setText(QStringLiteral("О'Нил"));
            TakeTold();
            c.act(focus);
            EXPECT_EQ(TakeTold().section(u' ', -1).toStdString(),
                      "a." + std::string(c.told) + (c.told == std::string("find") ? "(О^Нил)" : ""))
                << c.way;
            EXPECT_EQ(form->txtFirst->text(), QStringLiteral("О^Нил")) << c.way;
        }
    }
}

TEST_F(FormTest, LeavingAndEnteringAFieldAreMovesInsideTheProgram) {
    const auto form = Make(QStringLiteral("a"));
    form->Show();
    QTest::qWait(1);
    form->txtFirst->setFocus();
    TakeTold();
    QTest::keyClick(form->txtFirst, Qt::Key_Tab);
    EXPECT_EQ(TakeTold(), QStringLiteral("a.left a.got"));

    test::Answers answers;
    answers.Box(QStringLiteral("Текст"), forms::Icon::Critical);
    forms::MsgBox(QStringLiteral("Текст"), forms::Icon::Critical);
    QTest::qWait(1);
    EXPECT_EQ(TakeTold(), QString()) << "a message box is no way out of the field";
    form->txtFirst->setFocus();
    answers.Menu(QStringLiteral("mnuContext"), QString());
    TakeTold();
    frame->PopupMenu(QStringLiteral("mnuContext"), QPoint(10, 10));
    EXPECT_EQ(TakeTold(), QString()) << "nor is a menu";
    for (QWidget* field : {form->txtFirst, form->txtSecond}) {
        field->setFocus();
        TakeTold();
        QWidget other;
        other.show();
        QApplication::setActiveWindow(&other);
        QApplication::setActiveWindow(frame->Window());
        EXPECT_TRUE(field->hasFocus());
        EXPECT_EQ(TakeTold(), QString()) << "nor is another program";
    }
}

TEST_F(FormTest, AFormSeesTheKeysThatNoControlTakes) {
    const auto form = Make(QStringLiteral("a"));
    form->Show();
    for (QWidget* focus :
         {static_cast<QWidget*>(form->txtFirst), form->txtLines, static_cast<QWidget*>(form->cmdOther)}) {
        focus->setFocus();
        TakeTold();
        QTest::keyClick(focus, Qt::Key_F9, Qt::ShiftModifier);
        EXPECT_EQ(TakeTold(), QStringLiteral("a.F9"));
    }
    test::Type(form->txtSecond, QStringLiteral("ы"));
    EXPECT_EQ(form->txtSecond->text(), QStringLiteral("ы")) << "other keys reach the control";
}

TEST_F(FormTest, FailureThatEscapesAHandlerIsShownAndTheProgramGoesOn) {
    const QString text = QStringLiteral("произошла ошибка №11 Деление на 0");
    const auto fail = [] { runtime::Raise(runtime::DivisionByZero); };
    test::Answers answers;
    for (int i = 0; i < 5; ++i)
        answers.Box(text, forms::Icon::Critical);
    const auto form = Make(QStringLiteral("a"));
    form->inLoad = form->inActivate = form->inFind = form->inUnload = fail;
    form->Show();
    EXPECT_TRUE(form->Visible()) << "a load that fails leaves the window";
    form->cmdFind->click();
    frame->Window()->findChild<QAction*>(QStringLiteral("mnuBookFail"))->trigger();
    form->Unload();
    EXPECT_FALSE(form->IsLoaded());
}

TEST_F(FormTest, WalkOverAWindowFindsWhatIsMissing) {
    const auto form = Make(QStringLiteral("a"));
    form->Load();
    EXPECT_EQ(test::WindowFaults(*form->Surface()), QStringList());
    form->txtFirst->setObjectName(QString());
    form->txtSecond->setAccessibleName(QString());
    form->cmdOther->setObjectName(QStringLiteral("cmdCancel"));
    form->cmdCancel->setText(QStringLiteral("&From"));
    EXPECT_EQ(test::WindowFaults(*form->Surface()).size(), 4);
}
