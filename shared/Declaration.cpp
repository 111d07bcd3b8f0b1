#include "shared/Declaration.h"

std::shared_ptr<engine::Workspace> gWorkspace;
std::shared_ptr<engine::Database> gDatabase;

clsRegister& gRegister() {
    static clsRegister instance;
    return instance;
}

void WriteToDisk() {
    engine::DBEngine::Commit();
}

forms::Program ThisProgram() {
    return {.title = QString::fromUtf16(AppTitle),
            .texts = QStringLiteral("../share/zavelik/translations"),
            .writeToDisk = WriteToDisk};
}
