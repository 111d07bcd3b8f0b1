#include "tests/support/TestBook.h"

#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Settings.h"

#include <QDir>
#include <sqlite3.h>

#include <memory>
#include <stdexcept>

namespace test {

namespace {

struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Closer>;
using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

Connection Open(const QString& path) {
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(path.toUtf8().constData(), &connection, SQLITE_OPEN_READONLY, nullptr);
    Connection opened(connection);
    if (result != SQLITE_OK)
        throw std::runtime_error("cannot open " + path.toStdString() + ": " + sqlite3_errmsg(connection));
    sqlite3_busy_timeout(connection, 5000);
    engine::functions::RegisterCollations(connection); // the indexes of the file need them
    return opened;
}

QString Text(sqlite3_stmt* statement, int column) {
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return QStringLiteral("NULL");
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
}

} // namespace

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
    const Connection connection = Open(path);
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v2(connection.get(), sql.toUtf8().constData(), -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(connection.get()));
    QStringList rows;
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(statement.get())) == SQLITE_ROW) {
        QStringList values;
        for (int column = 0; column < sqlite3_column_count(statement.get()); ++column)
            values.append(Text(statement.get(), column));
        rows.append(values.join(u'|'));
    }
    if (step != SQLITE_DONE)
        throw std::runtime_error(sqlite3_errmsg(connection.get()));
    return rows;
}

QString Integrity(const QString& path) {
    return ReadRows(path, QStringLiteral("PRAGMA integrity_check")).join(u'\n');
}

} // namespace test
