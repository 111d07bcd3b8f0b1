// The life of windows: load, activation, unload, what keys press, and which rules run before.

#include "platform/forms/Controls.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "tests/support/Answers.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QMainWindow>
#include <QMenu>
#include <QRegularExpression>
#include <QTest>
#include <QVBoxLayout>

using forms::Form;
using forms::Kind;

namespace {

/// What the windows tell of their life, in order.
QStringList told;

/// The same, which is forgotten then; without the fields on the way.
std::string Heard(bool withFields = false) {
    QString heard = std::exchange(told, {}).join(u' ');
    if (!withFields)
        heard.remove(QRegularExpression(QStringLiteral("\\w\\.(left|got)")));
    return heard.simplified().toStdString();
}

class SampleForm : public Form {
public:
    SampleForm(const QString& name, Kind kind)
        : Form({.name = name,
                .caption = QStringLiteral("Окно ") + name,
                .kind = kind,
                .border = forms::Border::Fixed,
                .tag = QStringLiteral("0")}) {}

    void Nothing() { Tell(QStringLiteral("nothing")); }

    /// Runs inside each event with its name.
    std::function<void(const QString&)> inEvent = [](const QString&) {};

    QLineEdit* txtFirst = nullptr;
    QLineEdit* txtSecond = nullptr;
    QPushButton* cmdFind = nullptr;
    QPushButton* cmdCancel = nullptr;

protected:
    void CreateControls(QWidget* surface) override {
        txtFirst = forms::MakeTextBox(QStringLiteral("txtFirst"), 50, surface);
        txtSecond = forms::MakeTextBox(QStringLiteral("txtSecond"), 0, surface);
        cmdFind = forms::MakeButton(QStringLiteral("cmdFind"), QStringLiteral("&Find"), surface);
        cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), surface);
        auto* layout = new QVBoxLayout(surface);
        for (QWidget* control : std::initializer_list<QWidget*>{txtFirst, txtSecond, cmdFind, cmdCancel})
            layout->addWidget(control);
        SetDefaultButton(cmdFind);
        SetCancelButton(cmdCancel);
        OnLostFocus(txtFirst, [this] {
            forms::ReplaceApostrophes(txtFirst);
            Tell(QStringLiteral("left"));
        });
        OnGotFocus(txtSecond, [this] { Tell(QStringLiteral("got")); });
        On(cmdFind, &QPushButton::clicked,
           [this] { Tell(QStringLiteral("find(%1)").arg(txtFirst->text())); });
        On(cmdCancel, &QPushButton::clicked, [this] { Tell(QStringLiteral("cancel")); });
    }
    void Form_Load() override { Tell(QStringLiteral("load")); }
    void Form_Activate() override { Tell(QStringLiteral("activate")); }
    void Form_Unload() override { Tell(QStringLiteral("unload")); }

private:
    void Tell(const QString& what) {
        told.append(Name() + u'.' + what);
        inEvent(what);
    }
};

/// A frame with a context menu, whose command fails.
class SampleFrame final : public forms::MdiForm {
public:
    SampleFrame()
        : MdiForm({.name = QStringLiteral("frmMain"),
                   .caption = {},
                   .kind = Kind::Frame,
                   .tag = {},
                   .size = QSize(760, 700)}) {}

protected:
    void CreateControls(QWidget* /*surface*/) override {
        AddCommand(AddMenu(QStringLiteral("mnuContext"), QStringLiteral("Меню"), false),
                   QStringLiteral("mnuContextFail"), QStringLiteral("Сбой"),
                   [] { runtime::Raise(runtime::DivisionByZero); });
    }
};

void LoseAndRegainTheFocus(const QWidget& frame) {
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTest::qWait(1);
    QApplication::setActiveWindow(frame.window());
    QTest::qWait(1);
}

} // namespace

class FormTest : public testing::Test {
protected:
    void SetUp() override {
        frame = Form::Create<SampleFrame>();
        frame->Show();
        QTest::qWait(0);
        Heard();
    }

    static std::shared_ptr<SampleForm> Make(const char* name, Kind kind = Kind::Child) {
        return Form::Create<SampleForm>(QString::fromLatin1(name), kind);
    }
    static std::shared_ptr<SampleForm> Open(const char* name, Kind kind = Kind::Child) {
        auto form = Make(name, kind);
        form->Show();
        Heard();
        return form;
    }

    std::shared_ptr<SampleFrame> frame;
};

TEST_F(FormTest, ActivationFollowsTheChangeOfTheActiveChild) {
    const auto a = Make("a");
    const auto b = Make("b");
    const auto c = Make("c");
    const std::tuple<const char*, std::function<void()>, const char*, std::shared_ptr<Form>> steps[] = {
        {"first shows",
         [&] {
             a->Show();
             b->Show();
             c->Show();
         },
         "a.load a.activate b.load b.activate c.load c.activate", c},
        {"showing another", [&] { a->Show(); }, "a.activate", a},
        {"a click into another", [&] { QTest::mouseClick(b->txtFirst, Qt::LeftButton); }, "b.activate", b},
        {"another program", [&] { LoseAndRegainTheFocus(*frame->Window()); }, "", b},
        {"hiding the active child: the next in the z order", [&] { b->SetVisible(false); }, "a.activate", a},
        {"showing the one behind", [&] { c->SetVisible(true); }, "c.activate", c},
        {"unloading the active child", [&] { c->Unload(); }, "c.unload a.activate", a},
        {"hiding the last", [&] { a->SetVisible(false); }, "", nullptr},
        {"and showing it again", [&] { a->SetVisible(true); }, "a.activate", a},
    };
    for (const auto& [what, act, heard, active] : steps) {
        act();
        EXPECT_EQ(Heard(), heard) << what;
        EXPECT_EQ(frame->ActiveForm(), active) << what;
    }
}

TEST_F(FormTest, ModalShowEndsWhenTheWindowIsHiddenAndKeepsWhatItHolds) {
    const auto child = Open("a");
    const auto dialog = Make("d", Kind::Dialog);
    dialog->inEvent = [&](const QString& what) {
        if (what == u"cancel")
            dialog->Unload();
        else if (what.startsWith(u"find"))
            dialog->SetVisible(false);
    };
    const std::tuple<Qt::Key, const char*, bool> rounds[] = {
        {Qt::Key_Return, "d.load d.activate d.find(x)", true},
        {Qt::Key_Return, "d.activate d.find(xx)", true},
        {Qt::Key_Escape, "d.activate d.cancel d.unload", false},
    };
    for (const auto& [key, heard, stays] : rounds) {
        test::Answers answers;
        answers.Modal(QStringLiteral("d"), [&, key = key](QWidget& window) {
            const QPoint middle = frame->Window()->frameGeometry().center();
            EXPECT_LT((window.frameGeometry().center() - middle).manhattanLength(), 8) << "of its owner";
            QTest::keyClicks(dialog->txtFirst, QStringLiteral("x"));
            QTest::keyClick(dialog->txtFirst, key);
        });
        dialog->Show(true);
        QTest::qWait(1);
        EXPECT_TRUE(frame->Window()->isActiveWindow());
        EXPECT_EQ(Heard(), heard) << "the child stayed the active one";
        EXPECT_EQ(dialog->IsLoaded(), stays) << heard;
    }
}

TEST_F(FormTest, EnterAndEscPressTheButtons) {
    for (const Kind kind : {Kind::Child, Kind::Dialog}) {
        const auto form = Open("a", kind);
        auto* box = new QCheckBox(form->Surface());
        box->show();
        EXPECT_TRUE(form->cmdFind->isDefault()) << "marked";
        EXPECT_EQ(form->Surface()->focusWidget(), form->txtFirst);
        const std::tuple<QWidget*, Qt::Key, const char*> rows[] = {
            {form->txtFirst, Qt::Key_Return, "a.find()"},
            {form->txtFirst, Qt::Key_Escape, "a.cancel"},
            {form->cmdCancel, Qt::Key_Enter, "a.cancel"},
            {form->cmdFind, Qt::Key_Escape, "a.cancel"},
            {box, Qt::Key_Return, "a.find()"},
        };
        const auto press = [](QWidget* focus, Qt::Key key) {
            focus->setFocus();
            Heard();
            QTest::keyClick(focus, key);
            return Heard();
        };
        for (const auto& [focus, key, heard] : rows)
            EXPECT_EQ(press(focus, key), heard) << focus->objectName().toStdString() << " " << key;
        EXPECT_FALSE(box->isChecked());
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
        QApplication::sendEvent(form->txtFirst, &held);
        EXPECT_EQ(Heard(), "") << "a key held down presses once";
        form->cmdFind->setEnabled(false);
        EXPECT_EQ(press(form->txtFirst, Qt::Key_Return), "");
        form->Unload();
    }
}

TEST_F(FormTest, RulesOfAllFieldsRunBeforeAnyActionReadsThem) {
    const auto form = Open("a");
    const std::tuple<const char*, const char*, std::function<void(QWidget*)>> rows[] = {
        {"Enter", "a.find(О^Нил)", [](QWidget* focus) { QTest::keyClick(focus, Qt::Key_Return); }},
        {"assistive tool", "a.find(О^Нил)",
         [&](QWidget*) {
             auto* button = QAccessible::queryAccessibleInterface(form->cmdFind);
             button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
         }},
        {"command", "a.nothing", [&](QWidget*) { frame->CallActive(&SampleForm::Nothing); }},
    };
    for (const auto& [way, heard, act] : rows) {
        SCOPED_TRACE(way);
        for (QWidget* focus : {form->txtFirst, form->txtSecond}) {
            focus->setFocus();
            form->txtFirst->setText(QStringLiteral("О'Нил"));
            Heard();
            act(focus);
            // Some keep the button down visibly before it acts.
            EXPECT_TRUE(QTest::qWaitFor(
                [last = QString::fromUtf8(heard)] { return !told.isEmpty() && told.last() == last; }));
            EXPECT_EQ(form->txtFirst->text(), QStringLiteral("О^Нил"));
        }
    }
}

TEST_F(FormTest, LeavingAndEnteringAFieldAreMovesInsideTheProgram) {
    const auto form = Open("a");
    QTest::qWait(1);
    form->txtFirst->setFocus();
    Heard();
    QTest::keyClick(form->txtFirst, Qt::Key_Tab);
    EXPECT_EQ(Heard(true), "a.left a.got");

    const std::pair<const char*, std::function<void()>> rows[] = {
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
            Heard();
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
    form->inEvent = [](const QString&) { runtime::Raise(runtime::DivisionByZero); };
    form->Show();
    EXPECT_TRUE(form->Surface()->isVisible()) << "a load that fails leaves the window";
    form->cmdFind->click();
    frame->Window()->findChild<QAction*>(QStringLiteral("mnuContextFail"))->trigger();
    form->Unload();
    EXPECT_FALSE(form->IsLoaded());
}
