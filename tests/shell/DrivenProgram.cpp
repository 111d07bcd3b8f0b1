// Somebody at work in the started program: adds a card and leaves at once. What the boxes say goes to stdout.
// With ZAVELIK_FULL_DISK, a folder, nothing can be written there once the card has been added.

#include "platform/forms/MdiForm.h"
#include "shared/Declaration.h"
#include "tests/support/Answers.h"
#include "tests/support/FaultyCalls.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QTimer>

#include <cerrno>
#include <iostream>
#include <optional>

namespace {

bool diskIsFull = false;

int Judge(test::FaultyCalls::Call call, const std::string&) {
    return diskIsFull && call == test::FaultyCalls::Call::Write ? ENOSPC : 0;
}

void WorkAndLeave() {
    gDatabase->Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (1, 'Яя')"),
                       engine::dbFailOnError);
    diskIsFull = true;
    forms::MdiForm::Current()->Window()->close();
}

void Begin() {
    static test::Boxes* boxes = nullptr;
    static std::optional<test::FaultyCalls> disk;
    if (const QByteArray folder = qgetenv("ZAVELIK_FULL_DISK"); !folder.isEmpty())
        disk.emplace(folder.toStdString(), Judge);
    QTimer::singleShot(0, [] {
        boxes = new test::Boxes;
        WorkAndLeave();
    });
    qAddPostRoutine([] {
        std::cout << boxes->Take().join(u'\n').toStdString() << std::flush;
        delete boxes;
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(Begin)
