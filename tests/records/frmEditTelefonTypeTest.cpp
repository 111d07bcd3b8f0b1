#include "records/frmEditTelefonType.h"

#include "platform/engine/EngineError.h"
#include "tests/records/RecordsTest.h"

#include <QLayout>
#include <QLineEdit>
#include <QListWidget>

#include <limits>

namespace {

constexpr auto Dialog = "frmEditTelefonTypeDialog";
const QString TypesInFile = QStringLiteral("SELECT t01code, t01cval FROM t01 ORDER BY t01ctid");

class frmEditTelefonTypeTest : public RecordsTest {
protected:
    void Open() {
        m_form = forms::Form::Create<frmEditTelefonType>();
        m_form->Show();
    }
    QStringList Listed() const {
        QStringList texts;
        const auto& list = Control<QListWidget>(m_form, "lstTelefonType");
        for (int i = 0; i < list.count(); ++i)
            texts += list.item(i)->text();
        return texts;
    }
    void Select(int row) const {
        auto& list = Control<QListWidget>(m_form, "lstTelefonType");
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
    }
    bool IsEnabled(const char* button) const { return Control<QWidget>(m_form, button).isEnabled(); }
    void AddType(int code, const QString& name) {
        Run(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, %1, '%2')")
                .arg(code)
                .arg(name));
    }
    /// Presses the button, types the name into the dialog and ends it by the key.
    void Change(const char* button, const QString& name, Qt::Key end,
                const std::function<void(test::Answers&)>& expect = {}) {
        test::Answers answers;
        answers.Modal(QLatin1String(Dialog), [&](QWidget&) {
            Press(Qt::Key_Home);
            Press(Qt::Key_End, Qt::ShiftModifier);
            Type(name);
            Press(end);
        });
        if (expect)
            expect(answers);
        ClickButton(m_form, button);
        EXPECT_FALSE(IsOpen(Dialog));
    }
    void Add(const QString& name, const std::function<void(test::Answers&)>& expect = {}) {
        Change("cmdAdd", name, Qt::Key_Return, expect);
    }

    std::shared_ptr<forms::Form> m_form;
    const QStringList m_starting{QStringLiteral("1|Домашний телефон"), QStringLiteral("2|Мобильный телефон"),
                                 QStringLiteral("3|Рабочий телефон"), QStringLiteral("4|Основной телефон")};
};

} // namespace

TEST_F(frmEditTelefonTypeTest, ListsTypesAsTheyWereCreatedAndProtectsTheFirstFour) {
    AddType(12, QStringLiteral("Факс"));
    AddType(10, QStringLiteral("Дача"));
    Open();
    EXPECT_EQ(m_form->Caption(), QStringLiteral("Редакт. типов телефон. номеров"));
    EXPECT_EQ(Listed(), QStringList({"Домашний телефон", "Мобильный телефон", "Рабочий телефон",
                                     "Основной телефон", "Факс", "Дача"}));
    for (const int row : {0, 4, 3, 5, 1}) {
        Select(row);
        EXPECT_EQ(IsEnabled("cmdEdit"), row > 3) << row;
        EXPECT_EQ(IsEnabled("cmdDelete"), row > 3) << row;
        EXPECT_TRUE(IsEnabled("cmdAdd"));
    }
}

TEST_F(frmEditTelefonTypeTest, TheListStaysOffTheButtonsInANarrowTile) {
    Open();
    auto& button = Control<QWidget>(m_form, "cmdEdit");
    m_form->Surface()->layout()->setGeometry(QRect(0, 0, button.width() * 3 / 2, 4 * button.height()));
    EXPECT_FALSE(Control<QListWidget>(m_form, "lstTelefonType").geometry().intersects(button.geometry()));
}

TEST_F(frmEditTelefonTypeTest, NewTypesGetCodesFromTenUpAndTheirTextAsTyped) {
    Open();
    Add(QStringLiteral("Дача"));
    Add(QStringLiteral(" Д'Артаньян "));
    EXPECT_EQ(Rows(TypesInFile), m_starting + QStringList({"10|Дача", "11| Д^Артаньян "}));
    EXPECT_EQ(Listed().mid(4), QStringList({"Дача", " Д^Артаньян "}));
    EXPECT_FALSE(IsEnabled("cmdEdit")) << "the first entry is selected again";
}

TEST_F(frmEditTelefonTypeTest, TheDialogRefusesBlanksAndTakesAtMost50Characters) {
    Open();
    test::Answers answers;
    answers.Modal(QLatin1String(Dialog), [&](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Добавление"));
        auto* field = window.findChild<QLineEdit*>("txtNewValue");
        EXPECT_EQ(FocusName(), field->objectName());
        Type(QStringLiteral("   "));
        Press(Qt::Key_Return);
        EXPECT_TRUE(window.isVisible());
        Type(QString(60, QLatin1Char('x')));
        EXPECT_EQ(field->text().size(), 50);
        Press(Qt::Key_Escape);
    });
    answers.Box(
        QStringLiteral("Поле 'Новое значение' нельзя оставлять пустым или заполнять одними пробелами."),
        forms::Icon::Exclamation);
    ClickButton(m_form, "cmdAdd");
    EXPECT_EQ(Rows(TypesInFile), m_starting);
}

TEST_F(frmEditTelefonTypeTest, ANameThatExistsInAnotherCaseIsRefusedByTheEngine) {
    AddType(10, QStringLiteral("Дача"));
    Open();
    const QString text = engine::EngineText(engine::DuplicateKey);
    Add(QStringLiteral("ДАЧА"), [&](test::Answers& answers) {
        answers.Box(
            ErrorText(QStringLiteral("frmEditTelefonType функция cmdAdd_Click:"), engine::DuplicateKey, text),
            forms::Icon::Critical);
    });
    Select(4);
    Change("cmdEdit", QStringLiteral("рабочий телефон"), Qt::Key_Return, [&](test::Answers& answers) {
        answers.Box(ErrorText(QStringLiteral("frmEditTelefonType функция cmdEdit_Click:"),
                              engine::DuplicateKey, text),
                    forms::Icon::Critical);
    });
    EXPECT_EQ(Rows(TypesInFile), m_starting + QStringList{"10|Дача"});
}

TEST_F(frmEditTelefonTypeTest, ACodePast16BitsIsRefused) {
    AddType(std::numeric_limits<std::int16_t>::max(), QStringLiteral("Последний"));
    Open();
    Add(QStringLiteral("Лишний"), [](test::Answers& answers) {
        answers.Box(ErrorText(QStringLiteral("frmEditTelefonType функция cmdAdd_Click:"),
                              engine::NumberOutOfRange, engine::EngineText(engine::NumberOutOfRange)),
                    forms::Icon::Critical);
    });
    EXPECT_EQ(Rows(TypesInFile), m_starting + QStringList{"32767|Последний"});
}

TEST_F(frmEditTelefonTypeTest, EditRenamesAndCancelDoesNot) {
    AddCard(1, QStringLiteral("Иванов"));
    AddType(10, QStringLiteral("Дача"));
    AddPhone(1, 10, QStringLiteral("111"));
    Open();
    Select(4);
    Change("cmdEdit", QStringLiteral("Сад"), Qt::Key_Escape);
    EXPECT_EQ(Rows(TypesInFile).last(), QStringLiteral("10|Дача"));
    Change("cmdEdit", QStringLiteral("Сад"), Qt::Key_Return);
    EXPECT_EQ(Rows(TypesInFile).last(), QStringLiteral("10|Сад"));
    EXPECT_EQ(Listed().last(), QStringLiteral("Сад"));
    TakeKeyboard();
    EXPECT_EQ(QApplication::focusWidget(), &Control<QWidget>(m_form, "lstTelefonType"));
    EXPECT_EQ(Rows(QStringLiteral("SELECT a02code FROM a02")), QStringList{"10"});
}

TEST_F(frmEditTelefonTypeTest, ATypeThatIsGoneIsTold) {
    const auto expectBox = [](test::Answers& answers) {
        answers.Box(QStringLiteral("Нарушена целостность базы данных:\r\n"
                                   "в базе отсутствуют записи типов телефонных номеров."),
                    forms::Icon::Critical);
    };
    for (const bool edits : {true, false}) {
        AddType(10, QStringLiteral("Дача"));
        m_form.reset();
        Open();
        Select(4);
        Run(QStringLiteral("DELETE FROM t01 WHERE t01code = 10"));
        if (edits) {
            Change("cmdEdit", QStringLiteral("Сад"), Qt::Key_Return, expectBox);
        } else {
            test::Answers answers;
            expectBox(answers);
            ClickButton(m_form, "cmdDelete");
        }
        EXPECT_EQ(Listed().size(), 4) << "the list shows what there is";
        m_form->Unload();
    }
}

TEST_F(frmEditTelefonTypeTest, TheDialogsCloseBoxLeavesAnEmptyAnswer) {
    AddType(10, QStringLiteral("Дача"));
    Open();
    Select(4);
    const auto closeBox = [](QWidget& window) {
        Type(QStringLiteral("x"));
        window.close();
    };
    {
        test::Answers answers;
        answers.Modal(QLatin1String(Dialog), closeBox);
        ClickButton(m_form, "cmdEdit");
    }
    {
        test::Answers answers;
        answers.Modal(QLatin1String(Dialog), closeBox);
        answers.Box(ErrorText(QStringLiteral("frmEditTelefonType функция cmdAdd_Click:"),
                              runtime::TypeMismatch, runtime::RuntimeText(runtime::TypeMismatch)),
                    forms::Icon::Critical);
        ClickButton(m_form, "cmdAdd");
    }
    EXPECT_FALSE(IsOpen(Dialog));
    EXPECT_EQ(Rows(TypesInFile), m_starting + QStringList{"10|Дача"});
}

TEST_F(frmEditTelefonTypeTest, DeletingATypeTakesItsPhonesAfterOneQuestion) {
    const QString question = QStringLiteral(
        "В книге присутствуют записи с этим типом телефона. При удалении данного типа телефона эти записи "
        "также будут удалены. Вы согласны?");
    AddCard(1, QStringLiteral("Иванов"));
    AddType(10, QStringLiteral("Без телефонов"));
    AddType(11, QStringLiteral("С пробелами"));
    AddType(12, QStringLiteral("С номерами"));
    AddPhone(1, 1, QStringLiteral("111"));
    AddPhone(1, 11, QStringLiteral("  "));
    AddPhone(1, 12, QStringLiteral(" "));
    AddPhone(1, 12, QStringLiteral("222"));
    AddPhone(1, 12, QStringLiteral("333"));
    const QString phones = QStringLiteral("SELECT a02code FROM a02 ORDER BY a02rcid");
    const auto remove = [&](int row, const std::function<void(test::Answers&)>& expect = {}) {
        Select(row);
        test::Answers answers;
        if (expect)
            expect(answers);
        ClickButton(m_form, "cmdDelete");
    };
    Open();
    remove(6, [&](test::Answers& answers) { answers.Question(question, false, false); });
    EXPECT_EQ(Rows(phones), QStringList({"1", "11", "12", "12", "12"})) << "no deletes nothing";
    remove(4);
    EXPECT_EQ(Listed().mid(4), QStringList({"С пробелами", "С номерами"}));
    remove(4);
    EXPECT_EQ(Rows(phones), QStringList({"1", "12", "12", "12"})) << "blank numbers go without a question";
    remove(4, [&](test::Answers& answers) { answers.Question(question, true, false); });
    EXPECT_EQ(Rows(phones), QStringList{"1"});
    EXPECT_EQ(Rows(TypesInFile), m_starting);
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01clid FROM a01")), QStringList{"1"}) << "the cards stay";
}

TEST_F(frmEditTelefonTypeTest, ATableWithoutTypesIsToldAndTheFirstOneGetsTen) {
    RemoveTypes();
    {
        test::Answers answers;
        answers.Box(QStringLiteral("Нарушена целостность базы данных:\r\n"
                                   "в базе отсутствуют записи типов телефонных номеров."),
                    forms::Icon::Critical);
        answers.Box(ErrorText(QStringLiteral("frmEditTelefonType функция FillList:"),
                              runtime::InvalidPropertyValue,
                              runtime::RuntimeText(runtime::InvalidPropertyValue)),
                    forms::Icon::Critical);
        Open();
    }
    EXPECT_FALSE(IsEnabled("cmdDelete"));
    EXPECT_FALSE(IsEnabled("cmdEdit"));
    Add(QStringLiteral("Дача"));
    EXPECT_EQ(Rows(TypesInFile), QStringList{"10|Дача"});
    EXPECT_FALSE(IsEnabled("cmdDelete")) << "an only entry is a first one";
}
