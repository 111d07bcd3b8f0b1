#include "platform/engine/EngineError.h"

using namespace Qt::StringLiterals;

namespace engine {

QString EngineText(const EngineError& error, const QString& first, const QString& second) {
    // Not QString::arg: a name may itself hold a place mark, and a text without marks is no mistake.
    return QString::fromUtf16(error.text).split(u"%1"_s).replaceInStrings(u"%2"_s, second).join(first);
}

void RaiseEngine(const EngineError& error, const QString& first, const QString& second) {
    throw runtime::Failure(error, EngineText(error, first, second));
}

UnsyncedCommit::UnsyncedCommit()
    : Failure(
          DiskOrNetworkFailure,
          EngineText(DiskOrNetworkFailure) +
              QStringLiteral(" Изменения внесены в файл, но диск не подтвердил, что они сохранятся при сбое "
                             "питания.")) {
}

} // namespace engine
