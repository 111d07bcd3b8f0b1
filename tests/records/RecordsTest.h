#pragma once

#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

#include <QLineEdit>
#include <QListWidget>

/// A new book in the running program, and the ways of a user to its cards.
class RecordsTest : public test::WindowTest {
protected:
    using Window = std::shared_ptr<forms::Form>;
    using List = std::shared_ptr<ListForm>;

    /// A new filter with its list, as the menu opens it, and the list filled with all cards.
    static List OpenPair() {
        Choose("mnuBookRecords");
        return std::static_pointer_cast<ListForm>(Last("frmRecords"));
    }
    static List OpenFilledList() {
        List list = OpenPair();
        Find();
        return list;
    }
    static void Find() { ClickButton(Last("frmRecordsFilter"), "cmdFind"); }

    static forms::FlexGrid& Grid(const List& list) { return Control<forms::FlexGrid>(list, "gridRecords"); }
    /// The texts of one column below the header.
    static QStringList Column(const List& list, int column = 0) { return Listed(Grid(list), {column}); }
    /// The card that the entry opens for the row; null if none came.
    static Window OpenCard(const List& list, const char* entry, int row = 1) {
        const std::size_t before = Windows("frmEditRecords").size();
        Grid(list).SetRow(row);
        ChooseInMenu(list, entry);
        const auto cards = Windows("frmEditRecords");
        return cards.size() > before ? cards.back() : nullptr;
    }

    static QListWidget& Types(const Window& window) { return Control<QListWidget>(window, "lstTelefonType"); }
    static void PickType(const Window& window, int row) {
        QListWidget& list = Types(window);
        Click(*list.viewport(), list.visualItemRect(list.item(row)).center());
    }
    static bool IsEnabled(const Window& window, const char* control) {
        return Control(window, control).isEnabled();
    }
};
