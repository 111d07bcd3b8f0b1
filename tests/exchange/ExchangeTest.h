#pragma once

#include "database/General.h"
#include "records/frmRecords.h"
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
        Store(bookPath);
        list->Show();
    }

    /// A file in the folder of the book.
    QString Beside(const QString& name) const { return Path(name); }

    /// Texts without a value are empty.
    static void AddCard(int id, const QString& last, const QString& first = QStringLiteral(""),
                        const QString& middle = QStringLiteral(""),
                        const QString& memo = QStringLiteral("")) {
        WindowTest::AddCard(id, last, first, middle, memo);
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
