#include "platform/runtime/SettingsFile.h"

#include "platform/runtime/DiskSync.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/IniFile.h"
#include "platform/runtime/System.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace runtime {

namespace {

void Check(const std::error_code& error) {
    if (error)
        Raise(IsDiskFull(error) ? DiskFull : DeviceIOError);
}

void MakeFolderOf(const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    if (QFileInfo(folder).isDir())
        return;
    if (!QDir().mkpath(folder))
        Raise(PathFileAccess);
    Check(SyncFolderOf(folder));
}

/// Gives the name to a whole new file; the folder may not know of it yet.
void Write(const QString& path, const QByteArray& text) {
    QSaveFile file(path);
    ForgetLastError();
    if (!file.open(QSaveFile::WriteOnly))
        Raise(IsDiskFull(WriteErrorOf(file)) ? DiskFull : PathFileAccess);
    ForgetLastError();
    if (file.write(text) != text.size())
        Check(WriteErrorOf(file));
    Check(SyncFile(file)); // the last step of QSaveFile would pass over what fails in it
    ForgetLastError();
    if (!file.commit())
        Check(WriteErrorOf(file));
}

} // namespace

SettingsFile::SettingsFile(QString path)
    : m_path(std::move(path)) {
}

QByteArray SettingsFile::Read() const {
    const QFileInfo info(m_path);
    if (!info.exists())
        return {};
    QFile file(m_path);
    if (!info.isFile() || !file.open(QFile::ReadOnly))
        Raise(PathFileAccess);
    QByteArray text = file.readAll();
    if (file.error() != QFile::NoError)
        Raise(DeviceIOError);
    return text;
}

void SettingsFile::Replace(const QByteArray& text) const {
    MakeFolderOf(m_path);
    const bool isNew = !QFileInfo::exists(m_path);
    const QByteArray before = Read();
    Write(m_path, text);
    if (const std::error_code error = SyncFolderOf(m_path)) {
        // A power cut could bring back the old file: so it had better be the one that is there now.
        if (isNew)
            QFile::remove(m_path);
        else
            Write(m_path, before);
        Check(error);
    }
}

std::optional<QString> SettingsFile::Value(const QStringList& names) const {
    return IniFile(Read()).Value(names);
}

void SettingsFile::Put(const QStringList& names, const QString& value) {
    IniFile content(Read());
    content.Put(names, value);
    Replace(content.Text());
}

void SettingsFile::Remove(const QStringList& names) {
    IniFile content(Read());
    if (!content.Remove(names))
        Raise(InvalidCall);
    Replace(content.Text());
}

} // namespace runtime
