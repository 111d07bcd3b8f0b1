// Somebody at work in the started program: writes a row and leaves at once. What the boxes say goes to
// stdout. With ZAVELIK_FULL_DISK nothing can be written any more once the row has been added.

#include "platform/forms/MdiForm.h"
#include "shared/Declaration.h"
#include "tests/support/Answers.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QTimer>

#include <iostream>
#include <optional>

namespace {

void WorkAndLeave() {
    static auto* boxes = new test::Boxes;
    qAddPostRoutine([] {
        std::cout << boxes->Take().join(u'\n').toStdString() << std::flush;
        delete boxes;
    });
    gDatabase->Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (1)"), engine::dbFailOnError);
    static std::optional<test::SmallDisk> disk; // to the end
    if (qEnvironmentVariableIsSet("ZAVELIK_FULL_DISK"))
        disk.emplace(1);
    forms::MdiForm::Current()->Window()->close();
}

void Begin() {
    QTimer::singleShot(0, WorkAndLeave);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(Begin)
