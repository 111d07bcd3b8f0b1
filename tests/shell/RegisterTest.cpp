#include "platform/runtime/Failure.h"
#include "platform/runtime/Settings.h"
#include "tests/shell/StartedProgram.h"

#include <QFile>

using forms::Icon;

namespace {

class Register : public test::Program {
protected:
    static QString Text(const QString& head, int number) {
        return forms::ErrorText(head, {number, runtime::RuntimeText(number)});
    }
    static QString AskText(const QString& routine, int number) {
        return Text(QStringLiteral("Класс clsRegister функция ") + routine + u':', number) +
               QStringLiteral("\r\nПродолжить работу программы?");
    }

    /// A store in a place where nothing can be written.
    void SpoilStore() const {
        QFile file(Path(QStringLiteral("file")));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        runtime::UseSettingsFile(Path(QStringLiteral("file/store.ini")));
    }
};

const QString Key = QStringLiteral("DB_Path");

} // namespace

TEST_F(Register, ValuesAreAddressedByTheCurrentSection) {
    const test::Answers answers;
    clsRegister settings;
    EXPECT_EQ(settings.GetSectionName(), QStringLiteral("General"));
    EXPECT_EQ(settings.GetKeyVal(Key), QString());

    settings.SaveKeyVal(Key, QStringLiteral("/книга"));
    settings.SetSection(QStringLiteral("Other"));
    EXPECT_EQ(settings.GetSectionName(), QStringLiteral("Other"));
    EXPECT_EQ(settings.GetKeyVal(Key), QString());
    settings.SaveKeyVal(Key, QStringLiteral("/other"));
    settings.DeleteSection(QStringLiteral("General"));
    EXPECT_EQ(settings.GetSectionName(), QStringLiteral("Other"));
    EXPECT_EQ(settings.GetKeyVal(Key), QStringLiteral("/other"));

    EXPECT_EQ(clsRegister().GetKeyVal(Key), QString());
    settings.DeleteKey(Key);
    EXPECT_EQ(settings.GetKeyVal(Key), QString());
    clsRegister().SaveKeyVal(Key, QStringLiteral("/again"));
    settings.DeleteAllSection();
    EXPECT_EQ(clsRegister().GetKeyVal(Key), QString());
}

TEST_F(Register, AStoreThatCannotBeWrittenShowsABoxAndGoesOn) {
    SpoilStore();
    test::Answers answers;
    answers.Box(Text(QStringLiteral("Класс clsRegister функция SaveKeyVal:"), runtime::PathFileAccess),
                Icon::Critical);
    clsRegister().SaveKeyVal(Key, QStringLiteral("/книга"));
    EXPECT_TRUE(answers.Done());
    EXPECT_EQ(runtime::GetSetting(QStringLiteral("Zavelik"), QStringLiteral("General"), Key), QString());
}

TEST_F(Register, AFailedDeletionAsksWhetherToGoOn) {
    const struct {
        const char* routine;
        void (*run)(clsRegister&);
    } rows[] = {
        {"DeleteKey", [](clsRegister& settings) { settings.DeleteKey(Key); }},
        {"DeleteSection", [](clsRegister& settings) { settings.DeleteSection(QStringLiteral("none")); }},
        {"DeleteAllSection", [](clsRegister& settings) { settings.DeleteAllSection(); }},
    };
    for (const auto& row : rows) {
        const QString text = AskText(QString::fromLatin1(row.routine), runtime::InvalidCall);
        const runtime::EndTrap trap;
        test::Answers answers;
        clsRegister settings;
        answers.Question(text, true, false, Icon::Critical);
        EXPECT_NO_THROW(row.run(settings)) << row.routine;
        answers.Question(text, false, false, Icon::Critical);
        EXPECT_THROW(row.run(settings), runtime::ProcessEnded) << row.routine;
    }
}
