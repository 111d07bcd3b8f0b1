#include "platform/forms/FileWindow.h"

#include "platform/forms/Asking.h"
#include "platform/forms/CommonDialog.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/System.h"

#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QListView>
#include <QScreen>
#include <QShowEvent>
#include <QStandardPaths>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace forms {

namespace {

enum Column { NameColumn, SizeColumn, TypeColumn, DateColumn };

/// Sizes in the units that people here know; the locale has no names for those of the toolkit.
class SizeDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto* files = qobject_cast<const QFileSystemModel*>(index.model());
        if (files && !files->isDir(index))
            option->text =
                QLocale().formattedDataSize(files->size(index), 1, QLocale::DataSizeTraditionalFormat);
    }
};

} // namespace

FileWindow::FileWindow(QWidget* owner, bool save, int flags)
    : QFileDialog(owner, save ? QStringLiteral("Сохранить как") : QStringLiteral("Открыть"))
    , m_flags(flags) {
    setOption(DontUseNativeDialog, !runtime::OffersFileDialogs());
    setOption(DontConfirmOverwrite);
    setAcceptMode(save ? AcceptSave : AcceptOpen);
    if (IsSystems()) {
        setFileMode((flags & cdlOFNFileMustExist) != 0 ? ExistingFile : AnyFile);
        return;
    }
    setFileMode(AnyFile); // what has to exist is checked here
    AddPlaces();
    WidenColumns();
}

FileWindow::~FileWindow() {
    QList<QUrl> places = sidebarUrls();
    places.removeIf([this](const QUrl& place) { return m_added.contains(place); });
    setSidebarUrls(places); // which other programs find in their dialogs
}

void FileWindow::showEvent(QShowEvent* event) {
    QFileDialog::showEvent(event);
    if (!event->spontaneous())
        Asking::Centre(*this, parentWidget());
}

/// Where people keep their books and tables.
void FileWindow::AddPlaces() {
    QList<QUrl> places = sidebarUrls();
    for (const auto kind : {QStandardPaths::DocumentsLocation, QStandardPaths::DesktopLocation,
                            QStandardPaths::DownloadLocation}) {
        const QString folder = QStandardPaths::writableLocation(kind);
        const QUrl place = QUrl::fromLocalFile(folder);
        if (!QFileInfo(folder).isDir() || places.contains(place))
            continue;
        places += place;
        m_added += place;
    }
    setSidebarUrls(places);
    if (auto* list = findChild<QListView*>(QStringLiteral("sidebar")))
        list->setMinimumWidth(std::min(list->sizeHintForColumn(0) + list->fontMetrics().height(),
                                       24 * list->fontMetrics().averageCharWidth()));
}

void FileWindow::WidenColumns() {
    auto* files = findChild<QTreeView*>(QStringLiteral("treeView"));
    if (!files)
        return;
    files->setItemDelegateForColumn(SizeColumn, new SizeDelegate(files));
    QHeaderView* header = files->header();
    int width = 0;
    const auto widen = [&](int column, const QString& longest) {
        const int needed =
            files->fontMetrics().horizontalAdvance(longest) + 2 * files->fontMetrics().height();
        header->resizeSection(column, std::max(header->sectionSize(column), needed));
        width += header->sectionSize(column);
    };
    widen(NameColumn, QString(24, u'x'));
    widen(SizeColumn, QStringLiteral("1023,9 МБ"));
    widen(TypeColumn, QString(16, u'x'));
    widen(DateColumn, QStringLiteral("00.00.0000 00:00"));
    width += width / 4 + style()->pixelMetric(QStyle::PM_ScrollBarExtent); // side bar, margins
    const QSize wanted = size().expandedTo(QSize(width, 30 * fontMetrics().height()));
    resize(wanted.boundedTo(screen()->availableSize() * 0.9));
}

bool FileWindow::IsSystems() const {
    return !findChild<QTreeView*>(QStringLiteral("treeView"));
}

void FileWindow::accept() {
    const QString path = selectedFiles().value(0);
    if (IsSystems() || QFileInfo(path).isDir() || IsAcceptable(path))
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
