#pragma once

#include "database/General.h"
#include "records/frmRecords.h"
#include "shared/Declaration.h"
#include "tests/support/WindowTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace test {

/// The program on a new book, with a list for the extract routines to stand on.
class ExchangeTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        gRegister().SetSection(QStringLiteral("General"));
        gRegister().SaveKeyVal(QStringLiteral("DB_Path"), bookPath);
        list->Show();
    }

    /// A file in the folder of the book.
    QString Beside(const QString& name) const {
        return QDir::toNativeSeparators(QFileInfo(bookPath).path() + u'/' + name);
    }

    static void Execute(const QString& sql) { gDatabase->Execute(sql, engine::dbFailOnError); }

    static void AddCard(int id, const QString& last, const QString& first = {}, const QString& middle = {},
                        const QString& memo = {}) {
        Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo) VALUES "
                               "(%1, '%2', '%3', '%4', '%5')")
                    .arg(QString::number(id), last, first, middle, memo));
    }

    static void AddPhone(int card, int code, const QString& number) {
        Execute(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, '%3')")
                    .arg(QString::number(card), QString::number(code), number));
    }

    /// That many cards without names, numbered from 1.
    static void AddManyCards(int count) {
        gWorkspace->BeginTrans();
        for (int id = 1; id <= count; ++id)
            Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'Ц')").arg(id));
        gWorkspace->CommitTrans();
    }

    QStringList Cards() const {
        return Rows(QStringLiteral("SELECT a01clid, a01last, a01frst, a01midl, a01memo, a01bith FROM a01 "
                                   "ORDER BY a01clid"));
    }
    QStringList Phones() const {
        return Rows(QStringLiteral("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02clid, a02code, "
                                   "a02rcid"));
    }

    QString bookPath = Path();
    std::shared_ptr<frmRecords> list = forms::Form::Create<frmRecords>();
};

} // namespace test
