#include "platform/runtime/Process.h"
#include "tests/support/WindowTest.h"

using forms::Icon;

namespace {

class Register : public test::Program {};

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

TEST_F(Register, AFailedDeletionAsksWhetherToGoOn) {
    const std::pair<const char*, std::function<void(clsRegister&)>> rows[] = {
        {"DeleteKey", [](clsRegister& settings) { settings.DeleteKey(Key); }},
        {"DeleteSection", [](clsRegister& settings) { settings.DeleteSection(QStringLiteral("none")); }},
        {"DeleteAllSection", [](clsRegister& settings) { settings.DeleteAllSection(); }},
    };
    for (const auto& [routine, run] : rows) {
        const QString text =
            forms::ErrorText(QStringLiteral("Класс clsRegister функция %1:").arg(QLatin1String(routine)),
                             {runtime::InvalidCall, runtime::RuntimeText(runtime::InvalidCall)}) +
            QStringLiteral("\r\nПродолжить работу программы?");
        const runtime::EndTrap trap;
        test::Answers answers;
        clsRegister settings;
        answers.Question(text, true, false, Icon::Critical).Question(text, false, false, Icon::Critical);
        EXPECT_NO_THROW(run(settings)) << routine;
        EXPECT_THROW(run(settings), runtime::ProcessEnded) << routine;
    }
}
