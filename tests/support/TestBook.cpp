#include "tests/support/TestBook.h"

#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Settings.h"

#include <QDir>
#include <sqlite3.h>

#include <memory>
#include <stdexcept>

namespace test {

TestFolder::TestFolder() {
    if (!m_folder.isValid())
        throw std::runtime_error("no temporary folder");
    runtime::UseSettingsFile(Path(QStringLiteral("settings")));
}

TestFolder::~TestFolder() {
    runtime::UseSettingsFile(QString());
}

QString TestFolder::Path(const QString& name) const {
    return QDir::toNativeSeparators(m_folder.filePath(name));
}

QStringList ReadRows(const QString& path, const QString& sql) {
    sqlite3* connection = nullptr;
    int result = sqlite3_open_v2(path.toUtf8().constData(), &connection, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> closer(connection, &sqlite3_close);
    QStringList rows;
    const auto add = [](void* to, int count, char** values, char**) {
        QStringList row;
        for (int column = 0; column < count; ++column)
            row += values[column] ? QString::fromUtf8(values[column]) : QStringLiteral("NULL");
        static_cast<QStringList*>(to)->append(row.join(u'|'));
        return 0;
    };
    if (result == SQLITE_OK) {
        sqlite3_busy_timeout(connection, 5000);
        engine::functions::RegisterCollations(connection); // the indexes of the file need them
        result = sqlite3_exec(connection, sql.toUtf8().constData(), add, &rows, nullptr);
    }
    if (result != SQLITE_OK)
        throw std::runtime_error("cannot read " + path.toStdString() + ": " + sqlite3_errmsg(connection));
    return rows;
}

QString Integrity(const QString& path) {
    return ReadRows(path, QStringLiteral("PRAGMA integrity_check")).join(u'\n');
}

} // namespace test
