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

    /// Texts without a value are empty.
    static void AddCard(int id, const QString& last, const QString& first = "", const QString& middle = "",
                        const QString& memo = "") {
        WindowTest::AddCard(id, last, first, middle, memo);
    }

    QStringList Cards() const {
        return Rows("SELECT a01clid, a01last, a01frst, a01midl, a01memo, a01bith FROM a01 ORDER BY a01clid");
    }
    QStringList Phones() const {
        return Rows("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02clid, a02code, a02rcid");
    }

    QString bookPath = Path();
    std::shared_ptr<frmRecords> list = forms::Form::Create<frmRecords>();
};

} // namespace test
