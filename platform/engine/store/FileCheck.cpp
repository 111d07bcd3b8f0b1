#include "platform/engine/store/FileCheck.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/store/Statement.h"
#include "platform/runtime/DiskSync.h"
#include "platform/runtime/System.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace engine {

namespace {

std::filesystem::path FilePath(const QString& path) {
    return {path.toStdU16String()};
}

// The older formats of this engine's family begin alike: a mark, then 0 for the format before the last.
bool IsOlderFormat(QByteArrayView header) {
    return header.size() > 20 && header.sliced(4).startsWith("Standard ") &&
           header.sliced(16, 4) == QByteArrayView(" DB\0", 4) && header[20] == 0;
}

QByteArray ReadHeader(const QString& path) {
    QFile file(path);
    if (const std::error_code error = runtime::OpenAtOnce(file))
        RaiseEngine(error == std::errc::no_such_file_or_directory ? FileNotFound : CannotOpenFile, path);
    QByteArray header = file.read(headerSize);
    if (header.isEmpty() && file.error() != QFileDevice::NoError)
        RaiseEngine(DiskOrNetworkFailure);
    return header;
}

// The check of a file tells in words alone that a page could not be read, of free pages and long values even
// without a code; anything else that it finds is damage.
int CodeIn(const QString& finding) {
    constexpr auto mark = QLatin1String("error code=");
    if (finding.contains(QLatin1String("failed to get page")))
        return SQLITE_IOERR_READ;
    const qsizetype place = finding.indexOf(mark);
    const QStringView code = QStringView(finding).mid(place + mark.size());
    const auto end = std::ranges::find_if_not(code, [](QChar character) { return character.isDigit(); });
    const int number = place < 0 ? 0 : code.left(end - code.begin()).toInt();
    return (number & 0xff) == SQLITE_IOERR ? number : SQLITE_CORRUPT;
}

} // namespace

void CheckFolder(const QString& path) {
    if (path.trimmed().isEmpty() || path.contains(QChar::Null))
        RaiseEngine(InvalidPath, path);
    std::error_code error;
    const auto folder = std::filesystem::absolute(FilePath(path), error).parent_path();
    if (error || !std::filesystem::is_directory(folder, error)) {
        if (error == std::errc::permission_denied)
            RaiseEngine(CannotOpenFile, path);
        RaiseEngine(InvalidPath, path);
    }
}

void CheckDatabaseFile(const QString& path) {
    if (runtime::NamesDevice(path))
        RaiseEngine(UnrecognisedFormat, path);
    CheckFolder(path);
    if (!runtime::IsPossiblePath(path))
        RaiseEngine(InvalidPath, path);
    std::error_code error;
    const auto status = std::filesystem::status(FilePath(path), error);
    switch (status.type()) {
    case std::filesystem::file_type::regular:
        break;
    case std::filesystem::file_type::not_found:
        RaiseEngine(error == std::errc::not_a_directory ? InvalidPath : FileNotFound, path);
    case std::filesystem::file_type::directory:
        RaiseEngine(InvalidPath, path);
    case std::filesystem::file_type::none:
    case std::filesystem::file_type::unknown:
        RaiseEngine(error == std::errc::permission_denied ? CannotOpenFile : InvalidPath, path);
    default:
        RaiseEngine(UnrecognisedFormat, path);
    }
    const QByteArray header = ReadHeader(path);
    if (IsOlderFormat(header))
        RaiseEngine(OlderFormat);
    if (!IsHeaderOfOurs(header))
        RaiseEngine(UnrecognisedFormat, path);
}

bool IsHeaderOfOurs(QByteArrayView bytes) {
    return bytes.size() == headerSize && bytes.startsWith(sqliteMagic) &&
           qFromBigEndian<qint32>(bytes.data() + applicationIdOffset) == applicationId;
}

// The name stands at the end, followed by its length, the sum of its bytes and a mark. SQLite adds the bytes
// as the machine's char has them, with a sign or without.
bool JournalNamesAFile(const QString& journal) {
    constexpr qint64 tailSize = 16;
    constexpr qint64 longestName = 1 << 16; // SQLite itself passes over names that are much shorter
    constexpr auto mark = QByteArrayView("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
    QFile file(journal);
    if (!QFileInfo(journal).isFile() || !file.open(QIODevice::ReadOnly) || !file.seek(file.size() - tailSize))
        return false;
    const QByteArray tail = file.read(tailSize);
    if (tail.size() != tailSize || !tail.endsWith(mark))
        return false;
    const auto length = qFromBigEndian<quint32>(tail.constData());
    const auto sum = qFromBigEndian<quint32>(tail.constData() + sizeof length);
    if (length == 0 || length > longestName || !file.seek(file.size() - tailSize - length))
        return false;
    quint32 withSign = 0;
    quint32 without = 0;
    for (const char byte : file.read(length)) {
        withSign += static_cast<quint32>(static_cast<signed char>(byte));
        without += static_cast<unsigned char>(byte);
    }
    return sum == withSign || sum == without;
}

void CheckSound(const Sqlite& db, const QString& file, const QString& path) {
    if (db.Number("PRAGMA application_id") != applicationId)
        RaiseEngine(UnrecognisedFormat, path);
    // SQLite takes what is missing of the last page for zeros.
    const std::int64_t whole = db.Number("PRAGMA page_count") * db.Number("PRAGMA page_size");
    if (QFileInfo(file).size() < whole) // looked at last: others may let it grow meanwhile
        RaiseEngine(CannotOpenDatabase, path);
    // Columns that are worked out one from the other can keep any reader busy for ever.
    if (db.Number("SELECT count(*) FROM sqlite_schema AS s, pragma_table_xinfo(s.name) AS c WHERE s.type "
                  "= 'table' AND s.rootpage <> 0 AND c.hidden > 1") != 0)
        RaiseEngine(UnrecognisedFormat, path);
    // Rows older than a rule may break it, and the file is sound all the same.
    db.Run("PRAGMA ignore_check_constraints = ON", Doing::Open);
    Statement check(db, u"PRAGMA quick_check(1)", Doing::Open);
    if (const QString finding = check.Next() ? check.Text(0) : QString(); finding != QLatin1String("ok"))
        throw db.FailureOf(CodeIn(finding), Doing::Open);
    db.Run("PRAGMA ignore_check_constraints = OFF", Doing::Open);
}

} // namespace engine
