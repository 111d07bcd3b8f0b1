#pragma once

#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

/// A new book in the running program, and the ways of a user to its cards.
class RecordsTest : public test::WindowTest {
protected:
    static void RemoveTypes() { Run(QStringLiteral("DELETE FROM t01")); }

    /// A new filter with its list, as the menu opens it, and the list filled with all cards.
    std::shared_ptr<ListForm> OpenPair();
    std::shared_ptr<ListForm> OpenFilledList();
    static void Find(const std::shared_ptr<forms::Form>& filter) { ClickButton(filter, "cmdFind"); }

    static forms::FlexGrid& Grid(const std::shared_ptr<ListForm>& list);
    /// The texts of one column below the header.
    static QStringList Column(const std::shared_ptr<ListForm>& list, int column = 0);
    /// The card that the entry opens for the row; null if none came.
    static std::shared_ptr<forms::Form> OpenCard(const std::shared_ptr<ListForm>& list, const char* entry,
                                                 int row = 1);

    static QString ErrorText(const QString& head, int number, const QString& description);
};
