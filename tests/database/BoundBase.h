#pragma once

#include "database/General.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Failure.h"
#include "shared/Declaration.h"
#include "tests/support/Answers.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

namespace test {

/// Start of the standard error box of a routine for a failure of that number.
inline QString ErrorStart(const QString& head, int number) {
    return head + QStringLiteral("\r\nпроизошла ошибка №") + QString::number(number) + u' ';
}

/// Something is bound to the process-wide objects while the test runs, and nothing afterwards.
class Unbound : public testing::Test {
protected:
    ~Unbound() override {
        gDatabase.reset();
        gWorkspace.reset();
    }

    QString Path(const QString& name = QStringLiteral("book.mdb")) const { return m_folder.Path(name); }

    /// What a second connection reads from the file.
    QStringList Rows(const QString& sql) const {
        engine::DBEngine::Commit();
        return ReadRows(Path(), sql);
    }
    QString Row(const QString& sql) const { return Rows(sql).join(u'\n'); }

private:
    TestFolder m_folder;
};

/// An empty file is bound.
class BoundBase : public Unbound {
protected:
    BoundBase() {
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral));
    }

    void Execute(const QString& sql) { gDatabase->Execute(sql, engine::dbFailOnError); }
};

} // namespace test
