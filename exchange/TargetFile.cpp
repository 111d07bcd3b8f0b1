#include "exchange/TargetFile.h"

#include "platform/forms/CommonDialog.h"
#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"

namespace exchange {

QString AskTargetFile(const forms::Form& list, const QString& filter) {
    forms::CommonDialog cdlExtract(QStringLiteral("cdlExtract"));
    cdlExtract.InitDir = runtime::ProgramFolder();
    cdlExtract.Flags = forms::cdlOFNPathMustExist;
    cdlExtract.Filter = filter;
    cdlExtract.ShowSave(list.Surface());
    return cdlExtract.FileName;
}

bool AskOverwrite(const QString& fileName) {
    return forms::AskNo(QStringLiteral("Файл '") + fileName +
                        QStringLiteral("' уже существует. Перезаписать его?"));
}

} // namespace exchange
