#include "platform/engine/EngineError.h"
#include "tests/shell/StartedProgram.h"

#include <QFile>
#include <QFileInfo>

using forms::Icon;

namespace {

/// The stored path leads to a file of the old format.
class OldBook : public test::Program {
protected:
    void Store(const char* name) const {
        ASSERT_TRUE(
            QFile::copy(QStringLiteral(ZAVELIK_TEST_DATA "/jet/") + QString::fromLatin1(name), Path()));
        QFile::setPermissions(Path(), QFile::ReadOwner | QFile::WriteOwner);
        Program::Store(Path());
    }

    QString Question() const {
        return QStringLiteral("Файл ") + Path() +
               QStringLiteral(
                   " создан прежней версией программы. Преобразовать его в новый формат? Прежний файл "
                   "сохранится рядом под именем book.jet4.mdb.");
    }
    bool IsKept() const { return QFile::exists(Path(QStringLiteral("book.jet4.mdb"))); }
};

} // namespace

TEST_F(OldBook, OnNoTheStartEndsAndNothingChanges) {
    Store("v1-old.mdb");
    test::Answers answers;
    answers.Question(Question(), false, true);
    General::Main();
    EXPECT_TRUE(answers.Done());
    EXPECT_EQ(forms::MdiForm::Current(), nullptr);
    EXPECT_EQ(gDatabase, nullptr);
    EXPECT_EQ(Stored(), Path());
    EXPECT_EQ(QFileInfo(Path()).size(), 184320);
    EXPECT_FALSE(IsKept());
}

TEST_F(OldBook, OnYesTheProgramRunsOnTheConvertedFileAtTheCurrentVersion) {
    Store("v1-old.mdb");
    test::Answers answers;
    answers.Question(Question(), true, true).BoxStarting(QStringLiteral("Файл ") + Path(), Icon::Information);
    General::Main();
    ASSERT_NE(forms::MdiForm::Current(), nullptr);
    EXPECT_TRUE(IsKept());
    EXPECT_EQ(gDatabase->OpenRecordset(QStringLiteral("SELECT COUNT(*) FROM a01")).Fields(0).Value().Long(),
              11);
    EXPECT_EQ(gDatabase->OpenRecordset(QStringLiteral("SELECT v00vrid FROM v00")).Fields(0).Value().Long(),
              3);
}

TEST_F(OldBook, ADamagedOneGivesOneBoxAndEndsTheStart) {
    Store("broken-page.mdb");
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("Функция Main:\r\nпроизошла ошибка №") +
                            QString::number(engine::CannotOpenDatabase),
                        Icon::Critical);
    General::Main();
    EXPECT_EQ(forms::MdiForm::Current(), nullptr);
    EXPECT_FALSE(IsKept());
}
