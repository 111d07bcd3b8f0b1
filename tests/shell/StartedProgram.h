#pragma once

#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "shell/frmMain.h"
#include "tests/support/Answers.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

namespace test {

/// A program that has not run yet, with a folder and a settings store of its own; whatever it opened is gone
/// afterwards.
class Program : public testing::Test {
protected:
    ~Program() override {
        for (const std::shared_ptr<forms::Form>& form : forms::Form::Loaded())
            form->Unload();
        gDatabase.reset();
        gWorkspace.reset();
    }

    QString Path(const QString& name = QStringLiteral("book.mdb")) const { return m_folder.Path(name); }

    /// A file of the current version without reference data; `versions` are the rows of v00.
    void MakeBook(const QStringList& versions = {QStringLiteral("3")}) const {
        const auto workspace = engine::DBEngine::Workspaces(0);
        const auto db = workspace->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral));
        db->Execute(QStringLiteral("CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)"));
        for (const QString& version : versions)
            db->Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (") + version + u')');
        db->Close();
    }

    static void Store(const QString& path) { gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path); }
    static QString Stored() { return gRegister().GetKeyVal(QStringLiteral("DB_Path")); }

    /// Starts the program on a book.
    void Start() const {
        MakeBook();
        Store(Path());
        General::Main();
        ASSERT_NE(forms::MdiForm::Current(), nullptr);
    }

    static QMainWindow& Window() { return *forms::MdiForm::Current()->Window(); }
    static void Choose(const char* command) {
        auto* action = Window().findChild<QAction*>(QString::fromLatin1(command));
        ASSERT_NE(action, nullptr) << command;
        action->trigger();
    }
    /// Names of the visible child windows.
    static QStringList Children() {
        QStringList names;
        for (const std::shared_ptr<forms::Form>& form : forms::Form::Loaded()) {
            if (form.get() != forms::MdiForm::Current() && form->Visible())
                names += form->Name();
        }
        return names;
    }

private:
    TestFolder m_folder;
};

} // namespace test
