#pragma once

#include "platform/engine/dao/Recordset.h"

#include <QString>

#include <functional>
#include <memory>

namespace engine {

class Connection;
class NewFile;
class Workspace;

/// OpenRecordset type: an updatable view; the only one in use, and the default for a query.
inline constexpr int dbOpenDynaset = 2;
/// Execute option: any failure is raised and the statement undone.
inline constexpr int dbFailOnError = 128;
/// CreateDatabase option of the file format; the only one known.
inline constexpr int dbVersion40 = 64;
/// CreateDatabase locale that the program passes; sorting follows the Russian alphabet whatever it says.
inline constexpr auto dbLangGeneral = u";LANGID=0x0409;CP=1252;COUNTRY=0";

/// A column of a table definition.
class TableField {
public:
    QString Name() const;
    DataType Type() const;
    int Size() const;      ///< characters of a text column, else 0
    bool Required() const; ///< NOT NULL
    bool AllowZeroLength() const;
    /// Whether the text column takes the empty text; rows already there are not looked at. Failure 3027 on a
    /// read-only file, 3211 if the table is in use elsewhere.
    void SetAllowZeroLength(bool allow);

private:
    friend class TableDef;
    std::weak_ptr<Connection> m_connection;
    QString m_table;
    QString m_name;
};

/// A table of the file.
class TableDef {
public:
    QString Name() const { return m_name; }
    /// By name, case ignored, or place; failure 3265 for an unknown one.
    TableField Fields(const QString& name) const;
    TableField Fields(int index) const;
    int FieldsCount() const;

private:
    friend class Database;
    std::weak_ptr<Connection> m_connection;
    QString m_name;
};

/// An open database file: one connection. Made by Workspace. The last reference closes it.
class Database {
public:
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    QString Name() const; ///< the path as it was given

    /// Runs one statement that returns no rows, atomically. With dbFailOnError any failure is raised; without
    /// it rows that fail on keys or rules are left out without a word, while wrong text and unknown names
    /// still raise. Failure 3065 for a SELECT. The change is durable at the latest at the next
    /// DBEngine::Commit.
    void Execute(const QString& sql, int options = 0);
    /// Rows that the last Execute changed.
    int RecordsAffected() const;

    /// Runs a query, or opens a table by its name. Failure 3219 for a statement that returns no rows; it is
    /// not run. `stop` is asked many times a second while the statement runs and its rows are read; once it
    /// says yes, the statement ends with failure 32001. It must not use the database.
    Recordset OpenRecordset(const QString& sql, int type = dbOpenDynaset,
                            const std::function<bool()>& stop = {});

    /// A table by name, case ignored; failure 3265 for an unknown one.
    TableDef TableDefs(const QString& name);
    QStringList TableNames();

    /// Makes pending statements durable, closes the result sets and the file. Failure 3420 if closed already.
    /// A file of PrepareDatabase gets its name with that; if it cannot get it, failures as there, the file is
    /// closed all the same.
    void Close();
    /// Closes without making anything durable, and takes away the file if PrepareDatabase has made it. Any
    /// number of times.
    void Discard() noexcept;
    bool IsOpen() const;

private:
    friend class Workspace;
    explicit Database(std::shared_ptr<Connection> connection, std::unique_ptr<NewFile> file = {});
    std::unique_ptr<NewFile> m_newFile; ///< outlives the connection
    std::shared_ptr<Connection> m_connection;
};

} // namespace engine
