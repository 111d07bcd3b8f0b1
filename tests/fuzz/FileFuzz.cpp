// Any bytes as a database file, opened as at the start of the program. An input is a list of changes to a
// sound file, or, where its first byte says so, the file itself. It ends in a failure or in a book that can
// be listed, written and closed; what is not written to keeps its bytes.
#include "database/General.h"
#include "database/Schema.h"
#include "platform/runtime/Failure.h"
#include "shared/Declaration.h"
#include "tests/fuzz/Changes.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/EndTrap.h"

#include <QDir>
#include <QEvent>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include <array>

namespace {

using fuzz::Require;

constexpr std::uint8_t wholeFile = 0xFF;
// In the first byte: the file is written to as well, and raised before, which takes long.
constexpr std::uint8_t writes = 0x40;
constexpr std::uint8_t raises = 0x20;

/// Closes each box that the program shows.
class BoxCloser : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (auto* box = qobject_cast<QMessageBox*>(watched); box && event->type() == QEvent::Show)
            QTimer::singleShot(0, box, [box] { box->done(0); });
        return false;
    }
};

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class Start {
public:
    Start()
        : m_path(m_folder.filePath(QStringLiteral("f.mdb"))) {
        m_application.installEventFilter(&m_closer);
        for (const int version : {3, 2, 1})
            m_sound[static_cast<std::size_t>(version - 1)] = MakeBook(version);
    }

    const QByteArray& Sound(std::uint8_t choice) const { return m_sound[choice % m_sound.size()]; }

    void Open(const QByteArray& bytes, std::uint8_t ways) const {
        {
            QFile file(m_path);
            Require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                    file.write(bytes) == bytes.size());
        }
        const bool accepted = Use(ways);
        gDatabase.reset();
        gWorkspace.reset();
        Require((accepted && (ways != 0 || HasWriteAheadLog(bytes))) || ReadAll(m_path) == bytes);
        Require(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden) ==
                QStringList(QStringLiteral("f.mdb")));
    }

private:
    /// A book with rows in every table, a text over several pages and free pages.
    QByteArray MakeBook(int version) const {
        QFile::remove(m_path);
        const auto book = engine::DBEngine::Workspaces(0)->CreateDatabase(
            m_path, QString::fromUtf16(engine::dbLangGeneral));
        const auto run = [&book](const QString& sql) { book->Execute(sql, engine::dbFailOnError); };
        run(schema::CreateA01(version > 1));
        run(schema::CreateA02());
        run(schema::CreateT01());
        run(schema::CreateV00());
        run(QStringLiteral("CREATE TABLE gone (g LONGTEXT)"));
        run(QStringLiteral("CREATE TABLE notes (n LONGTEXT)"));
        if (version > 1) {
            run(schema::CreateT02());
            run(schema::CreateT03());
        }
        if (version > 2)
            run(schema::CreateA03());
        for (const char* table : {"gone", "notes"})
            run(QStringLiteral("INSERT INTO %1 VALUES ('%2')")
                    .arg(QLatin1String(table), QString(6000, u'я')));
        run(QStringLiteral("DROP TABLE gone"));
        run(QStringLiteral("INSERT INTO v00 VALUES (%1)").arg(version));
        run(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 1, 'Домашний телефон')"));
        for (int card = 1; card <= 40; ++card) {
            run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01memo) VALUES (%1, 'Иванов', '%2')")
                    .arg(QString::number(card), QString(60, u'з')));
            run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, 1, '5-%1')")
                    .arg(card));
        }
        book->Close();
        return ReadAll(m_path);
    }

    /// Made by other means; a file that is accepted does without from then on.
    static bool HasWriteAheadLog(const QByteArray& bytes) {
        constexpr qsizetype readVersion = 19;
        return bytes.size() > readVersion && bytes[readVersion] == 2;
    }

    /// False if the file is refused.
    bool Use(std::uint8_t ways) const {
        const test::EndTrap trap;
        try {
            gWorkspace = engine::DBEngine::Workspaces(0);
            gDatabase = gWorkspace->OpenDatabase(m_path);
        } catch (const runtime::Failure& failure) {
            Require(!failure.description().isEmpty());
            return false;
        }
        if ((ways & raises) != 0) {
            try {
                General::UpdateBaseIfNeed();
            } catch (const test::ProcessEnded&) {
                return false;
            }
        }
        for (const char* query :
             {"SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl", "SELECT * FROM v00",
              "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code",
              "SELECT * FROM a03", "SELECT * FROM t03, t02 WHERE t03code = t02rcid", "SELECT * FROM notes"})
            List(QString::fromLatin1(query));
        if ((ways & writes) != 0)
            Write();
        try {
            gDatabase->Close();
        } catch (const runtime::Failure&) {
            gDatabase->Close();
        }
        return true;
    }

    static void List(const QString& query) {
        try {
            auto rows = gDatabase->OpenRecordset(query);
            for (; !rows.EndOfFile(); rows.MoveNext()) {
                for (int i = 0; i < rows.FieldsCount(); ++i)
                    static_cast<void>(rows.Fields(i).Text());
            }
        } catch (const runtime::Failure&) {
        }
    }

    static void Write() {
        for (const char* statement :
             {"INSERT INTO a01 (a01clid, a01last) VALUES (900, 'Новая')", "UPDATE a01 SET a01memo = 'x'",
              "DELETE FROM a02 WHERE a02clid = 1",
              "INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (900, 1, '1')", "DELETE FROM notes"}) {
            try {
                gDatabase->Execute(QString::fromUtf8(statement), engine::dbFailOnError);
                engine::DBEngine::Commit();
            } catch (const runtime::Failure&) {
            }
        }
    }

    int m_count = 1;
    std::array<char, 5> m_name{"fuzz"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    /// Never deleted: at the end of the process the toolkit's own objects go first.
    forms::Application& m_application = *new forms::Application(m_count, m_arguments.data(), ThisProgram());
    BoxCloser m_closer;
    QTemporaryDir m_folder;
    QString m_path;
    std::array<QByteArray, 3> m_sound;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const Start start;
    const QByteArrayView rest = fuzz::Bytes(data, size).sliced(1);
    if (data[0] == wholeFile)
        start.Open(rest.toByteArray(), 0);
    else
        start.Open(fuzz::Changed(start.Sound(data[0] & ~(writes | raises)), rest),
                   data[0] & (writes | raises));
    return 0;
}
