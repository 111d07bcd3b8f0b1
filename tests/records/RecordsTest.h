#pragma once

#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

#include <functional>

/// A new book in the running program, and the ways of a user to its cards.
class RecordsTest : public test::WindowTest {
protected:
    static void AddCard(int id, const QString& last, const QString& first = {}, const QString& middle = {},
                        const QString& remark = {}, const QString& bith = {});
    static void AddPhone(int card, int code, const QString& number);
    static void RemoveTypes() { Run(QStringLiteral("DELETE FROM t01")); }

    static bool IsOpen(const char* name) { return !Windows(name).empty(); }
    static QString FocusName();
    static void ClickButton(const std::shared_ptr<forms::Form>& window, const char* name);
    using WindowTest::Fill;
    static void Fill(const std::shared_ptr<forms::Form>& window, const char* field, const QString& text);

    /// A new filter with its list, as the menu opens it, and the list filled with all cards.
    std::shared_ptr<ListForm> OpenPair();
    std::shared_ptr<ListForm> OpenFilledList();
    static void Find(const std::shared_ptr<forms::Form>& filter) { ClickButton(filter, "cmdFind"); }

    static forms::FlexGrid& Grid(const std::shared_ptr<ListForm>& list);
    /// The texts of one column below the header.
    static QStringList Column(const std::shared_ptr<ListForm>& list, int column = 0);
    /// Chooses in the list's context menu; `expect` adds the boxes that the command shows.
    static void ChooseInMenu(const std::shared_ptr<ListForm>& list, const char* entry,
                             const std::function<void(test::Answers&)>& expect = {});
    /// The card that the entry opens for the row; null if none came.
    static std::shared_ptr<forms::Form> OpenCard(const std::shared_ptr<ListForm>& list, const char* entry,
                                                 int row = 1);

    static QString ErrorText(const QString& head, int number, const QString& description);
};
