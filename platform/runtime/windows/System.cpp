#include "platform/runtime/System.h"

#include "platform/runtime/windows/Handle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace runtime {

namespace {

struct KnownError {
    DWORD code;
    std::errc condition;
};

constexpr auto knownErrors = std::to_array<KnownError>({
    {ERROR_FILE_NOT_FOUND, std::errc::no_such_file_or_directory},
    {ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory},
    {ERROR_INVALID_DRIVE, std::errc::no_such_file_or_directory},
    {ERROR_BAD_NETPATH, std::errc::no_such_file_or_directory},
    {ERROR_BAD_NET_NAME, std::errc::no_such_file_or_directory},
    {ERROR_DIRECTORY, std::errc::not_a_directory},
    {ERROR_ACCESS_DENIED, std::errc::permission_denied},
    {ERROR_SHARING_VIOLATION, std::errc::permission_denied},
    {ERROR_LOCK_VIOLATION, std::errc::permission_denied},
    {ERROR_WRITE_PROTECT, std::errc::read_only_file_system},
    {ERROR_FILE_EXISTS, std::errc::file_exists},
    {ERROR_ALREADY_EXISTS, std::errc::file_exists},
    {ERROR_INVALID_NAME, std::errc::invalid_argument},
    {ERROR_BAD_PATHNAME, std::errc::invalid_argument},
    {ERROR_FILENAME_EXCED_RANGE, std::errc::filename_too_long},
    {ERROR_DISK_FULL, std::errc::no_space_on_device},
    {ERROR_HANDLE_DISK_FULL, std::errc::no_space_on_device},
    {1295 /* of the user's share */, std::errc::no_space_on_device},
    {ERROR_FILE_TOO_LARGE, std::errc::file_too_large},
    {ERROR_NOT_SUPPORTED, std::errc::not_supported},
    {ERROR_INVALID_FUNCTION, std::errc::not_supported},
    {ERROR_INVALID_PARAMETER, std::errc::not_supported},
    {ERROR_NOT_SAME_DEVICE, std::errc::cross_device_link},
});

/// The parts of a path below its drive or share.
QStringList PartsOf(const QString& path) {
    return QDir::fromNativeSeparators(path).split(u'/', Qt::SkipEmptyParts);
}

} // namespace

QString NativePath(const QString& path) {
    constexpr qsizetype longestPlain = 240; // a folder may hold 8.3 names behind it
    QString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (native.size() > longestPlain && !native.startsWith(QLatin1String("\\\\?\\"))) {
        if (native.startsWith(QLatin1String("\\\\")))
            native = QStringLiteral("\\\\?\\UNC") + native.mid(1);
        else
            native.prepend(QLatin1String("\\\\?\\"));
    }
    return native;
}

std::wstring WidePath(const QString& path) {
    return NativePath(path).toStdWString();
}

std::error_code LastError() {
    const DWORD code = ::GetLastError();
    if (code == ERROR_SUCCESS)
        return {};
    const auto known = std::ranges::find(knownErrors, code, &KnownError::code);
    return std::make_error_code(known == knownErrors.end() ? std::errc::io_error : known->condition);
}

void ForgetLastError() {
    ::SetLastError(ERROR_SUCCESS);
}

bool IsPossiblePath(const QString& path) {
    constexpr qsizetype longestPath = 32000;
    constexpr qsizetype longestName = 255;
    static const QRegularExpression forbidden(QStringLiteral("[<>\"|?*:\\x{0}-\\x{1f}]"));
    if (path.size() > longestPath || !path.isValidUtf16())
        return false;
    if (NamesDevice(path))
        return true;
    QStringList parts = PartsOf(path);
    if (!parts.isEmpty() && parts.front().size() == 2 && parts.front().endsWith(u':'))
        parts.removeFirst();
    return std::ranges::none_of(
        parts, [&](const QString& part) { return part.size() > longestName || part.contains(forbidden); });
}

bool NamesDevice(const QString& path) {
    static const QRegularExpression device(
        QStringLiteral(
            "^(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[1-9\\x{b9}\\x{b2}\\x{b3}]) *([.:].*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QString plain = QDir::fromNativeSeparators(path);
    const QStringList parts = PartsOf(path);
    return plain.startsWith(QLatin1String("//./")) || plain.startsWith(QLatin1String("//?/")) ||
           (!parts.isEmpty() && device.match(parts.back()).hasMatch());
}

// The attributes of a folder tell nothing of the user's rights; the making of a file does.
bool MayMakeFilesIn(const QString& folder) {
    const QString trial =
        QDir(folder).filePath(QStringLiteral(".zavelik-%1.trial").arg(::GetCurrentProcessId()));
    const HANDLE made =
        ::CreateFileW(WidePath(trial).c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (made == INVALID_HANDLE_VALUE)
        return false;
    ::CloseHandle(made);
    return true;
}

// The system itself keeps users from writing there.
bool IsSystemFolder(const QString&) {
    return false;
}

bool OffersFileDialogs() {
    return true;
}

void MarkHidden(const QString& path) {
    if (QFileInfo(path).fileName().startsWith(u'.'))
        ::SetFileAttributesW(WidePath(path).c_str(), FILE_ATTRIBUTE_HIDDEN);
}

std::error_code OpenAtOnce(QFile& file) {
    if (NamesDevice(file.fileName()))
        return std::make_error_code(std::errc::no_such_device);
    ForgetLastError();
    if (file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    const std::error_code error = LastError();
    return error ? error : std::make_error_code(std::errc::io_error);
}

} // namespace runtime
