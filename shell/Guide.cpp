#include "shell/Guide.h"

#include "platform/forms/MsgBox.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

void ShowGuide() {
    // Installed; beside the program, as an archive is unpacked; in the folder of a build.
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char* folder : {"../share/doc/zavelik", "doc", "guide"}) {
        const QFileInfo page(
            program.filePath(QString::fromLatin1(folder) + QStringLiteral("/ru/index.html")));
        if (page.isFile() && QDesktopServices::openUrl(QUrl::fromLocalFile(page.canonicalFilePath())))
            return;
    }
    forms::MsgBox(QStringLiteral("Руководство не установлено."), forms::Icon::Information);
}
