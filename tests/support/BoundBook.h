#pragma once

#include "platform/forms/Form.h"
#include "shared/Declaration.h"
#include "tests/support/Answers.h"
#include "tests/support/EndTrap.h"
#include "tests/support/TestBook.h"

namespace test {

/// Something is bound to the process-wide objects while the test runs, and nothing afterwards. An end of the
/// process that nobody expects fails the test.
class Unbound : public FolderTest {
protected:
    ~Unbound() override { Unbind(); }

    /// The end of the program: of its windows, then of what they use.
    static void Unbind() {
        for (const auto& form : forms::Form::Loaded())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        gDatabase.reset();
        gWorkspace.reset();
    }

    static void Execute(const QString& sql) { Run(sql); }
    static void Run(const QString& sql) { gDatabase->Execute(sql, engine::dbFailOnError); }
    static void Store(const QString& path) { gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path); }
    static QString Stored() { return gRegister().GetKeyVal(QStringLiteral("DB_Path")); }

private:
    EndTrap m_trap;
};

/// An empty file is bound.
class BoundBase : public Unbound {
protected:
    BoundBase() {
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = Create(Path());
    }
};

} // namespace test
