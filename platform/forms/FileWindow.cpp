#include "platform/forms/FileWindow.h"

#include "platform/forms/CommonDialog.h"
#include "platform/forms/MsgBox.h"

#include <QDir>
#include <QFileInfo>

namespace forms {

FileWindow::FileWindow(QWidget* owner, bool save, int flags)
    : QFileDialog(owner, save ? QStringLiteral("Сохранить как") : QStringLiteral("Открыть"))
    , m_flags(flags) {
    // The toolkit's own dialog: the system's might ask about overwriting, or speak another language.
    setOption(DontUseNativeDialog);
    setOption(DontConfirmOverwrite);
    setAcceptMode(save ? AcceptSave : AcceptOpen);
    setFileMode(AnyFile); // what has to exist is checked here
}

void FileWindow::accept() {
    const QString path = selectedFiles().value(0);
    if (QFileInfo(path).isDir() || IsAcceptable(path))
        QFileDialog::accept();
}

bool FileWindow::IsAcceptable(const QString& path) const {
    const QFileInfo file(path);
    const bool fileMissing = (m_flags & cdlOFNFileMustExist) && !file.exists();
    const bool folderMissing = (m_flags & cdlOFNPathMustExist) && !file.absoluteDir().exists();
    if (!fileMissing && !folderMissing)
        return true;
    const QString shown = QDir::toNativeSeparators(path);
    if (folderMissing)
        MsgBox(shown + QStringLiteral("\r\nТакой папки нет. Проверьте правильность пути."),
               Icon::Exclamation);
    else
        MsgBox(shown + QStringLiteral("\r\nФайл не найден. Проверьте правильность имени файла."),
               Icon::Exclamation);
    return false;
}

} // namespace forms
