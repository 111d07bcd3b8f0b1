// Any bytes as a database file. An input is a list of changes to a sound file, or, where its first byte says
// so, the file itself. It ends in a failure or in a book that can be listed, written and closed; what is not
// written to keeps its bytes.
#include "database/Schema.h"
#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "tests/fuzz/Changes.h"
#include "tests/fuzz/Fuzz.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using fuzz::FailureOf;
using fuzz::Require;

constexpr std::uint8_t wholeFile = 0xFF;
constexpr std::uint8_t writes = 0x40; ///< in the first byte: the file is written to as well

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class Book {
public:
    /// One with rows in several tables, a text over several pages and free pages.
    Book()
        : m_path(m_folder.filePath(QStringLiteral("f.mdb"))) {
        const auto book = m_workspace->CreateDatabase(m_path, QString::fromUtf16(engine::dbLangGeneral));
        const auto run = [&book](const QString& sql) { book->Execute(sql, engine::dbFailOnError); };
        for (const QString& table : {schema::CreateA01(true), schema::CreateA02(), schema::CreateT01(),
                                     schema::CreateV00(), QStringLiteral("CREATE TABLE gone (g LONGTEXT)"),
                                     QStringLiteral("CREATE TABLE notes (n LONGTEXT)")})
            run(table);
        for (const char* table : {"gone", "notes"})
            run(QStringLiteral("INSERT INTO %1 VALUES ('%2')")
                    .arg(QLatin1String(table), QString(6000, u'я')));
        run(QStringLiteral("DROP TABLE gone"));
        for (int card = 1; card <= 40; ++card) {
            run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01memo) VALUES (%1, 'Иванов', '%2')")
                    .arg(QString::number(card), QString(60, u'з')));
            run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, 1, '5-%1')")
                    .arg(card));
        }
        book->Close();
        m_sound = ReadAll(m_path);
    }

    const QByteArray& Sound() const { return m_sound; }

    void Open(const QByteArray& bytes, bool written) const {
        QFile file(m_path);
        Require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size());
        file.close();
        std::shared_ptr<engine::Database> book;
        const int failure = FailureOf([&] { book = m_workspace->OpenDatabase(m_path); });
        Require(failure == 0 || failure == engine::UnrecognisedFormat || failure == engine::OlderFormat ||
                failure == engine::CannotOpenDatabase);
        if (book)
            Use(*book, written);
        book.reset();
        // Made by other means with a log of its own; a file that is accepted does without from then on.
        const bool hasLog = bytes.size() > 19 && bytes[19] == 2;
        Require((failure == 0 && (written || hasLog)) || ReadAll(m_path) == bytes);
        Require(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden) ==
                QStringList(QStringLiteral("f.mdb")));
    }

private:
    static void Use(engine::Database& book, bool written) {
        for (const char* query : {"SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl", "SELECT * FROM v00",
                                  "SELECT * FROM a01, a02 WHERE a01clid = a02clid", "SELECT * FROM notes"})
            FailureOf([&] {
                auto rows = book.OpenRecordset(QString::fromLatin1(query));
                for (; !rows.EndOfFile(); rows.MoveNext()) {
                    for (int i = 0; i < rows.FieldsCount(); ++i)
                        static_cast<void>(rows.Fields(i).Text());
                }
            });
        if (written) {
            for (const char* statement :
                 {"INSERT INTO a01 (a01clid, a01last) VALUES (900, 'Новая')", "UPDATE a01 SET a01memo = 'x'",
                  "DELETE FROM a02 WHERE a02clid = 1", "DELETE FROM notes"})
                FailureOf([&] { book.Execute(QString::fromUtf8(statement), engine::dbFailOnError); });
            FailureOf(engine::DBEngine::Commit);
        }
        if (FailureOf([&] { book.Close(); }) != 0)
            book.Close();
    }

    QTemporaryDir m_folder;
    QString m_path;
    std::shared_ptr<engine::Workspace> m_workspace = engine::DBEngine::Workspaces(0);
    QByteArray m_sound;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    static const Book book;
    const QByteArrayView rest = fuzz::Bytes(data, size).sliced(1);
    if (data[0] == wholeFile)
        book.Open(rest.toByteArray(), false);
    else
        book.Open(fuzz::Changed(book.Sound(), rest), (data[0] & writes) != 0);
    return 0;
}
