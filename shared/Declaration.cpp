#include "shared/Declaration.h"

std::shared_ptr<engine::Workspace> gWorkspace;
std::shared_ptr<engine::Database> gDatabase;

clsRegister& gRegister() {
    static clsRegister instance;
    return instance;
}
