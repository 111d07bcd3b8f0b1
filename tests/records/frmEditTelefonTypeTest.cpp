#include "records/frmEditTelefonType.h"

#include "platform/engine/EngineError.h"
#include "tests/records/RecordsTest.h"

#include <QLayout>
#include <QLineEdit>
#include <QListWidget>

namespace {

constexpr auto Dialog = "frmEditTelefonTypeDialog";
const QString Absent = QStringLiteral(
    "Нарушена целостность базы данных:\r\nв базе отсутствуют записи типов телефонных номеров.");
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

TEST_F(frmEditTelefonTypeTest, TypesAreAddedAndRenamed) {
    const QString duplicate = engine::EngineText(engine::DuplicateKey);
    const QString addHead = QStringLiteral("frmEditTelefonType функция cmdAdd_Click:");
    const QString editHead = QStringLiteral("frmEditTelefonType функция cmdEdit_Click:");
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
        {"cmdAdd", "Сад", Qt::Key_Return, "11|Сад"},
        {"cmdAdd", " Д'Артаньян ", Qt::Key_Return, "11| Д^Артаньян "},
        {"cmdAdd", "Сад", Qt::Key_Return, "10|Сад", {}, 6}, // the first of the user's own codes
        {"cmdAdd", "ДАЧА", Qt::Key_Return, "10|Дача", ErrorText(addHead, engine::DuplicateKey, duplicate)},
        {"cmdAdd", "Сад", Qt::Key_Return, "32767|Дача",
         ErrorText(addHead, engine::NumberOutOfRange, engine::EngineText(engine::NumberOutOfRange)), 32767},
        {"cmdAdd", "Сад", closeBox, "10|Дача",
         ErrorText(addHead, runtime::TypeMismatch, runtime::RuntimeText(runtime::TypeMismatch))},
        {"cmdEdit", "Сад", Qt::Key_Return, "10|Сад"},
        {"cmdEdit", "Сад", Qt::Key_Escape, "10|Дача"},
        {"cmdEdit", "Сад", closeBox, "10|Дача"},
        {"cmdEdit", "рабочий телефон", Qt::Key_Return, "10|Дача",
         ErrorText(editHead, engine::DuplicateKey, duplicate)},
        {"cmdEdit", "Сад", Qt::Key_Return, "4|Основной телефон", Absent, 10, true},
        {"cmdDelete", nullptr, Qt::Key_Return, "4|Основной телефон", Absent, 10, true},
    };
    AddCard(1, QStringLiteral("Иванов"));
    AddPhone(1, 10, QStringLiteral("111"));
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.button << ' ' << row.last.toStdString() << ' ' << row.end);
        Run(QStringLiteral("DELETE FROM t01 WHERE t01code > 4"));
        AddType(row.code, QStringLiteral("Дача"));
        Open();
        Select(4);
        if (row.isGone)
            Run(QStringLiteral("DELETE FROM t01 WHERE t01code > 4"));
        {
            test::Answers answers;
            if (row.typed)
                answers.Modal(QLatin1String(Dialog), [&](QWidget& window) {
                    Press(Qt::Key_Home);
                    Press(Qt::Key_End, Qt::ShiftModifier);
                    Type(QString::fromUtf8(row.typed));
                    row.end == closeBox ? static_cast<void>(window.close()) : Press(row.end);
                });
            if (!row.box.isEmpty())
                answers.Box(row.box, forms::Icon::Critical);
            ClickButton(m_form, row.button);
        }
        EXPECT_FALSE(IsOpen(Dialog));
        EXPECT_EQ(Rows(TypesInFile).mid(0, 4), m_starting);
        EXPECT_EQ(Rows(TypesInFile).last(), row.last);
        EXPECT_EQ(Listed().last(), row.last.section(u'|', 1)) << "the list shows what there is";
        if (row.last == u"10|Сад") {
            TakeKeyboard();
            EXPECT_EQ(FocusName(), QStringLiteral("lstTelefonType"));
        }
        if (row.last.startsWith(u"11")) {
            EXPECT_FALSE(IsEnabled("cmdEdit")) << "the first entry is selected again";
        }
        m_form->Unload();
    }
    EXPECT_EQ(Rows(QStringLiteral("SELECT a02code FROM a02")), QStringList{"10"});
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
        answers.Box(Absent, forms::Icon::Critical);
        answers.Box(ErrorText(QStringLiteral("frmEditTelefonType функция FillList:"),
                              runtime::InvalidPropertyValue,
                              runtime::RuntimeText(runtime::InvalidPropertyValue)),
                    forms::Icon::Critical);
        Open();
    }
    EXPECT_FALSE(IsEnabled("cmdDelete"));
    EXPECT_FALSE(IsEnabled("cmdEdit"));
    {
        test::Answers answers;
        answers.Modal(QLatin1String(Dialog), [](QWidget&) {
            Type(QStringLiteral("Дача"));
            Press(Qt::Key_Return);
        });
        ClickButton(m_form, "cmdAdd");
    }
    EXPECT_EQ(Rows(TypesInFile), QStringList{"10|Дача"});
    EXPECT_FALSE(IsEnabled("cmdDelete")) << "an only entry is a first one";
}
