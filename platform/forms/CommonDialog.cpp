#include "platform/forms/CommonDialog.h"

#include "platform/forms/FileWindow.h"

#include <QDir>
#include <QPointer>

namespace forms {

void CommonDialog::Show(QWidget* owner, bool save) {
    // The owner may go while the dialog is up and takes it along: so it is no local object.
    const QPointer<FileWindow> dialog = new FileWindow(owner, save, Flags);
    dialog->setObjectName(m_name);
    dialog->setDirectory(InitDir);
    dialog->setNameFilter(Filter.section(u'|', 0, 0));
    if (save)
        dialog->setDefaultSuffix(Filter.section(u'.', -1));
    if (!FileName.isEmpty())
        dialog->selectFile(FileName);
    const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
    FileName = chosen ? QDir::toNativeSeparators(dialog->selectedFiles().value(0)) : QString();
    delete dialog.data();
}

} // namespace forms
