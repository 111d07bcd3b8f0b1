#include "platform/forms/CommonDialog.h"

#include "platform/forms/FileWindow.h"

#include <QDir>
#include <QPointer>

namespace forms {

namespace {

/// The pairs text|pattern as the toolkit wants them: the pattern in brackets behind the text.
QStringList NameFilters(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString pattern = parts[i + 1];
        pattern.replace(u';', u' ');
        QString text = parts[i];
        const QString bracket = QStringLiteral("(%1)").arg(parts[i + 1]);
        if (text.endsWith(bracket))
            text.chop(bracket.size());
        filters.append(QStringLiteral("%1 (%2)").arg(text.trimmed(), pattern));
    }
    return filters;
}

/// The extension of the first pattern; empty if it is a wildcard itself.
QString FirstSuffix(const QString& filter) {
    const QString pattern = filter.section(u'|', 1, 1).section(u';', 0, 0);
    const QString suffix = pattern.section(u'.', -1);
    return suffix.contains(u'*') ? QString() : suffix;
}

} // namespace

void CommonDialog::ShowOpen(QWidget* owner) {
    Show(owner, false);
}

void CommonDialog::ShowSave(QWidget* owner) {
    Show(owner, true);
}

void CommonDialog::Show(QWidget* owner, bool save) {
    // The owner may go while the dialog is up and takes it along: so it is no local object.
    const QPointer<FileWindow> dialog = new FileWindow(owner, save, Flags);
    dialog->setObjectName(m_name);
    dialog->setDirectory(InitDir);
    dialog->setNameFilters(NameFilters(Filter));
    if (save)
        dialog->setDefaultSuffix(FirstSuffix(Filter));
    if (!FileName.isEmpty())
        dialog->selectFile(FileName);
    const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
    FileName = chosen ? QDir::toNativeSeparators(dialog->selectedFiles().value(0)) : QString();
    delete dialog.data();
}

} // namespace forms
