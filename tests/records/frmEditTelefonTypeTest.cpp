#include "records/frmEditTelefonType.h"

#include "platform/engine/EngineError.h"
#include "tests/records/RecordsTest.h"

#include <QLayout>

namespace {

constexpr auto Dialog = "frmEditTelefonTypeDialog";
const QString Absent =
    "Нарушена целостность базы данных:\r\nв базе отсутствуют записи типов телефонных номеров.";
const QString TypesInFile = "SELECT t01code, t01cval FROM t01 ORDER BY t01ctid";

class frmEditTelefonTypeTest : public RecordsTest {
protected:
    void Open() {
        m_form = forms::Form::Create<frmEditTelefonType>();
        m_form->Show();
    }
    QStringList Listed() const {
        QStringList texts;
        for (int i = 0; i < Types(m_form).count(); ++i)
            texts += Types(m_form).item(i)->text();
        return texts;
    }
    static void AddType(int code, const QString& name) {
        Run(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, %1, '%2')")
                .arg(code)
                .arg(name));
    }

    Window m_form;
    const QStringList m_starting{"1|Домашний телефон", "2|Мобильный телефон", "3|Рабочий телефон",
                                 "4|Основной телефон"};
};

} // namespace

TEST_F(frmEditTelefonTypeTest, ListsTypesAsTheyWereCreatedAndProtectsTheFirstFour) {
    AddType(12, "Факс");
    AddType(10, "Дача");
    Open();
    EXPECT_EQ(Listed().mid(3), QStringList({"Основной телефон", "Факс", "Дача"}));
    for (const int row : {0, 4, 3, 5}) {
        PickType(m_form, row);
        EXPECT_EQ(IsEnabled(m_form, "cmdEdit"), row > 3) << row;
        EXPECT_EQ(IsEnabled(m_form, "cmdDelete"), row > 3) << row;
    }
    // In a narrow tile the list stays off the buttons.
    const QWidget& button = Control(m_form, "cmdEdit");
    m_form->Surface()->layout()->setGeometry(QRect(0, 0, button.width() * 3 / 2, 4 * button.height()));
    EXPECT_FALSE(Types(m_form).geometry().intersects(button.geometry()));
}

TEST_F(frmEditTelefonTypeTest, TypesAreAddedAndRenamed) {
    const auto addBox = [](int number) {
        return test::ErrorStart("frmEditTelefonType функция cmdAdd_Click:", number);
    };
    constexpr auto closeBox = Qt::Key_unknown;
    const struct {
        const char* button;
        const char* typed;
        Qt::Key end;  ///< of the dialog
        QString last; ///< type in the file behind it
        QString box = {};
        int code = 10;       ///< of the type that is there before, and selected
        bool isGone = false; ///< by then
    } rows[] = {
        {"cmdAdd", " Д'Артаньян ", Qt::Key_Return, "11| Д^Артаньян "},
        {"cmdAdd", "Сад", Qt::Key_Return, "10|Сад", {}, 6}, // the first of the user's own codes
        {"cmdAdd", "ДАЧА", Qt::Key_Return, "10|Дача", addBox(engine::DuplicateKey)},
        {"cmdAdd", "Сад", Qt::Key_Return, "32767|Дача", addBox(engine::NumberOutOfRange), 32767},
        {"cmdAdd", "Сад", closeBox, "10|Дача", addBox(runtime::TypeMismatch)},
        {"cmdEdit", "Сад", Qt::Key_Return, "10|Сад"},
        {"cmdEdit", "Сад", Qt::Key_Escape, "10|Дача"},
        {"cmdEdit", "Сад", closeBox, "10|Дача"},
        {"cmdEdit", "рабочий телефон", Qt::Key_Return, "10|Дача",
         test::ErrorStart("frmEditTelefonType функция cmdEdit_Click:", engine::DuplicateKey)},
        {"cmdEdit", "Сад", Qt::Key_Return, "4|Основной телефон", Absent, 10, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.button << ' ' << row.last.toStdString() << ' ' << row.end);
        Run("DELETE FROM t01 WHERE t01code > 4");
        AddType(row.code, "Дача");
        Open();
        PickType(m_form, 4);
        if (row.isGone)
            Run("DELETE FROM t01 WHERE t01code > 4");
        {
            test::Answers answers;
            answers.Modal(Dialog, [&](QWidget& window) {
                Press(Qt::Key_A, Qt::ControlModifier);
                Type(row.typed);
                row.end == closeBox ? static_cast<void>(window.close()) : Press(row.end);
            });
            if (!row.box.isEmpty())
                answers.BoxStarting(row.box, forms::Icon::Critical);
            ClickButton(m_form, row.button);
        }
        EXPECT_EQ(Rows(TypesInFile).mid(0, 4), m_starting);
        EXPECT_EQ(Rows(TypesInFile).last(), row.last);
        EXPECT_EQ(Listed().last(), row.last.section(u'|', 1)) << "the list shows what there is";
        if (row.last == "10|Сад") {
            EXPECT_EQ(FocusName(), "lstTelefonType");
            EXPECT_EQ(Types(m_form).currentRow(), 0);
        }
        m_form->Unload();
    }
}

TEST_F(frmEditTelefonTypeTest, DeletingATypeTakesItsPhonesAfterOneQuestion) {
    AddCard(1, "Иванов");
    AddType(10, "Без телефонов");
    AddType(11, "С пробелами");
    AddType(12, "С номерами");
    AddPhone(1, 1, "111");
    AddPhone(1, 11, "  ");
    AddPhone(1, 12, " ");
    AddPhone(1, 12, "222");
    const struct {
        int row;
        const char* answer; ///< to the question, if any
        const char* types;  ///< behind the first four
        const char* phones;
    } steps[] = {
        {6, "no", "10 11 12", "1 11 12 12"},
        {4, "", "11 12", "1 11 12 12"},
        {4, "", "12", "1 12 12"}, // blank numbers go without a question
        {4, "yes", "", "1"},
    };
    Open();
    for (const auto& step : steps) {
        PickType(m_form, step.row);
        test::Answers answers;
        if (*step.answer)
            answers.Question("В книге присутствуют записи с этим типом телефона. При удалении данного типа "
                             "телефона эти записи также будут удалены. Вы согласны?",
                             *step.answer == 'y', false);
        ClickButton(m_form, "cmdDelete");
        EXPECT_EQ(Rows("SELECT t01code FROM t01 ORDER BY t01ctid").mid(4).join(u' '), step.types);
        EXPECT_EQ(Rows("SELECT a02code FROM a02 ORDER BY a02rcid").join(u' '), step.phones) << step.types;
    }
}

// The dialog refuses blanks and takes at most 50 characters.
TEST_F(frmEditTelefonTypeTest, ATableWithoutTypesIsToldAndTheFirstOneGetsTen) {
    Run("DELETE FROM t01");
    test::Answers answers;
    answers.Box(Absent, forms::Icon::Critical)
        .Failure("frmEditTelefonType функция FillList:", runtime::InvalidPropertyValue);
    Open();
    answers.Modal(Dialog, [](QWidget& window) {
        Type("   ");
        Press(Qt::Key_Return);
        EXPECT_TRUE(window.isVisible());
        Fill(ControlOf(window, "txtNewValue"), QString(60, u'x'));
        Press(Qt::Key_Return);
    });
    answers.Box("Поле 'Новое значение' нельзя оставлять пустым или заполнять одними пробелами.",
                forms::Icon::Exclamation);
    ClickButton(m_form, "cmdAdd");
    EXPECT_EQ(Rows(TypesInFile), QStringList{"10|" + QString(50, u'x')});
    EXPECT_FALSE(IsEnabled(m_form, "cmdDelete")) << "an only entry is a first one";
}
